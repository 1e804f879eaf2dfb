// Counts up in the element "n" of a configuration file, until it is killed:
//
//     ConfigWriter.exe FILE

#include <Kelpkit/XmlConfig.h>

#include <string>

int wmain(int argc, wchar_t** argv)
{
    if (argc != 2)
        return 1;
    KELPKIT::CXMLConfig config(argv[1]);
    config.WriteXmlString(std::wstring(100000, L'x'), L"text");
    for (int n = config.GetXmlInt(L"n") + 1; true; ++n)
        config.WriteXmlInt(n, L"n");
}
