// Counts up in the element "n" of a configuration file, with logins that bear the number, until it is killed or cannot
// write:
//
//     ConfigWriter.exe FILE

#include <Kelpkit/XmlConfig.h>

#include <cstddef>
#include <string>
#include <vector>

int wmain(int argc, wchar_t** argv)
{
    if (argc != 2)
        return 1;
    KELPKIT::CXMLConfig config(argv[1]);
    int n = config.GetXmlInt(L"n");
    do {
        const std::wstring number = std::to_wstring(n);
        config.WriteShellXmlUsrs(std::vector<KELPKIT::StUsrPwd>(static_cast<std::size_t>(n % 3) + 1, {number, number}));
    } while (config.WriteXmlInt(++n, L"n"));
    return 2;
}
