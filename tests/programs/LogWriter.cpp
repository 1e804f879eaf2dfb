// Writes COUNT messages "NAME 0", "NAME 1", ... to the log at the level ERROR. Where PROPERTIES is empty, the log is
// left without a configuration.
//
//     LogWriter.exe PROPERTIES LOG NAME COUNT

#include <Kelpkit/Log.h>

#include <string>

int wmain(int argc, wchar_t** argv)
{
    if (argc != 5)
        return 1;
    const std::wstring properties = argv[1];
    if (!properties.empty()) {
        KELPKIT::CLogMsg::SetProperties(properties);
        KELPKIT::CLogMsg::SetLogPath(argv[2]);
    }
    for (int i = 0; i < std::stoi(argv[4]); ++i)
        KELPKIT::CLogMsg::LogMsg(KELPKIT::LV_ERROR, (argv[3] + (L" " + std::to_wstring(i))).c_str());
    return 0;
}
