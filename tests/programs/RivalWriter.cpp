// Writes to a configuration file from two threads at once, and ends with the number of writes that failed:
//
//     RivalWriter.exe FILE COUNT
//
// Each thread writes COUNT times, to the element "a" or "b".

#include <Kelpkit/XmlConfig.h>

#include <atomic>
#include <string>
#include <thread>

int wmain(int argc, wchar_t** argv)
{
    if (argc != 3)
        return -1;
    std::atomic<int> failures = 0;
    const auto write = [&](const wchar_t* key) {
        KELPKIT::CXMLConfig config(argv[1]);
        for (int count = std::stoi(argv[2]); count > 0; --count)
            failures += config.WriteXmlInt(count, key) ? 0 : 1;
    };
    std::thread other(write, L"a");
    write(L"b");
    other.join();
    return failures;
}
