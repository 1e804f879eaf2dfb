// Logs from several threads, then ends in one of the ways in which applications end:
//
//     ExitFromThread.exe LOGFILE exit         exit() in a second thread, the main thread waiting
//     ExitFromThread.exe LOGFILE process      ExitProcess() in a second thread
//     ExitFromThread.exe LOGFILE main         return from main while threads go on logging
//
// The exit code is 7.

#include <Kelpkit/Log.h>

#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

using namespace KELPKIT;

namespace
{

constexpr int kExitCode = 7;

void LogLines(int count)
{
    for (int line = 0; line < count; ++line)
        CLogMsg::LogMsg(LV_INFO, L"线程 text");
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    if (argc != 3)
        return 1;
    const std::wstring logFile = argv[1];
    const std::wstring way = argv[2];
    const std::wstring propertyFile = logFile + L".properties";
    std::ofstream(propertyFile.c_str()) << "log4cplus.rootLogger=TRACE, fileAppender\n"
                                           "log4cplus.appender.fileAppender=log4cplus::FileAppender\n"
                                           "log4cplus.appender.fileAppender.layout=log4cplus::SimpleLayout\n";
    CLogMsg::SetProperties(propertyFile);
    CLogMsg::SetLogPath(logFile);

    std::thread threads[4];
    for (std::thread& thread : threads)
        thread = std::thread(LogLines, 200);
    for (std::thread& thread : threads)
        thread.join();

    if (way == L"main") {
        static std::atomic<int> started = 0;
        for (int thread = 0; thread < 4; ++thread) {
            std::thread([] {
                ++started;
                while (true)
                    LogLines(1);
            }).detach();
        }
        while (started != 4)
            ::Sleep(1);
        return kExitCode;
    }
    std::thread last([&way] {
        LogLines(1);
        if (way == L"exit")
            std::exit(kExitCode);
        ::ExitProcess(kExitCode);
    });
    last.join();
    return 1;
}
