// Repeats every exported operation in one process, and fails if anything that it holds of the system has grown after
// the first hundredth, or if a result changes:
//
//     Soak.exe ROUNDS ROUNDS_WITH_PROGRAMS
//
// Operations that start no program are called in each round, those that work on files or ask the network in every tenth.
// Those that do start one are called in rounds spread over all. A table at the end has the calls and times of each.

#include <Kelpkit/Kelpkit.h> // first: MFC stands no windows.h before it

#include "childexe/Doubles.h"
#include "support/FileContents.h"
#include "support/FolderTree.h"
#include "support/HandleCount.h"
#include "support/Operations.h"
#include "support/Resources.h"
#include "support/TempFolder.h"

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace
{

using Clock = std::chrono::steady_clock;

double Seconds(Clock::duration time)
{
    return std::chrono::duration<double>(time).count();
}

// In how many rounds an operation is called once.
int Interval(const test::Operation& operation)
{
    constexpr int kOfSlowOnes = 10;
    const std::string& name = operation.names.front();
    const bool isSlow =
        operation.prepare || name.find("CAutoCreateFolder") != name.npos || name.find("GetHostIP") != name.npos;
    return isSlow ? kOfSlowOnes : 1;
}

// An operation, and what has come of it.
struct Row {
    explicit Row(const test::Operation& repeated) : operation(&repeated), interval(Interval(repeated)) {}

    const test::Operation* operation;
    int interval;
    std::string result;
    int calls = 0;
    Clock::duration time = {};

    void Call(const std::wstring& folder)
    {
        operation->Prepare(folder);
        const Clock::time_point start = Clock::now();
        const std::string now = operation->call(folder);
        time += Clock::now() - start;
        if (calls++ != 0 && now != result)
            throw std::runtime_error(operation->names.front() + " gave " + now + " and not " + result);
        result = now;
    }
};

// The operations that start programs, with real ones.
class Programs
{
public:
    explicit Programs(std::wstring folder) : m_folder(std::move(folder)) { s_handles = 0; }

    // The handles that are open by contract: of a process and its first thread for each start. And what Wine's own wait
    // leaves.
    static std::size_t Handles() { return s_handles; }

    void Call()
    {
        Convert();
        Host();
        s_handles += 4;
    }

private:
    void Convert()
    {
        test::WriteFileBytes(m_folder + L"\\model.qmx", "QMX 1\nname gear\nv 0 0 1\n");
        std::wstring hsf;
        std::wstring qmx;
        std::wstring error;
        if (!KELPKIT::ConvertHoopsQmx(m_folder + L"\\model.qmx", L"full", L"model", hsf, qmx, error) || hsf.empty() ||
            !::DeleteFileW(qmx.c_str()) || !::DeleteFileW(hsf.c_str()))
            throw std::runtime_error("the model is not upgraded");
    }

    void Host()
    {
        KELPKIT::ChildExe child;
        const CRect place(10, 20, 310, 220);
        if (!child.CreateSubWindow(m_host.Handle(), test::ChildWindow().c_str()) || !child.AddSubWindow(place) ||
            !child.MoveSubWindow(place) || !child.HasSubWindow())
            throw std::runtime_error("the program is not hosted");
        child.UpdateSubWindow();
        const HWND window = ::GetWindow(m_host.Handle(), GW_CHILD);
        if (!child.CloseSubWindow() || !test::HostWindow::WaitUntil([window] { return !::IsWindow(window); }))
            throw std::runtime_error("the hosted window does not close");
    }

    static inline std::size_t s_handles;

    const std::wstring m_folder;
    const test::HostWindow m_host;
    const test::ImportPatch m_sleep{"Sleep", +[](DWORD milliseconds) { ::Sleep(milliseconds / 100); }};
    const test::ImportPatch m_wait{"WaitForInputIdle", +[](HANDLE process, DWORD milliseconds) -> DWORD {
                                       const std::size_t before = test::HandleCount();
                                       const DWORD result = ::WaitForInputIdle(process, milliseconds);
                                       s_handles += test::HandleCount() - before;
                                       return result;
                                   }};
};

void Print(const char* when, const test::Resources& resources, std::size_t byContract)
{
    std::printf("  %-14s %8zu %12zu %6zu %6zu %8zu %14zu\n", when, resources.handles, byContract, resources.gdiObjects,
                resources.userObjects, resources.threads, resources.privateBytes);
    std::fflush(stdout);
}

// Whether nothing has grown but the handles of the contract. The heap moves a little.
bool IsLevel(const test::Resources& early, const test::Resources& late, std::size_t newByContract)
{
    constexpr std::size_t kHeapNoise = 512 << 10;
    return late.handles == early.handles + newByContract && late.gdiObjects <= early.gdiObjects &&
           late.userObjects <= early.userObjects && late.threads <= early.threads &&
           late.privateBytes <= early.privateBytes + kHeapNoise;
}

void PrintTimes(std::vector<Row> rows)
{
    std::sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) { return a.time > b.time; });
    std::printf("      calls  us/call  operation\n");
    for (const Row& row : rows)
        std::printf("  %9d %8.1f  %s\n", row.calls, Seconds(row.time) * 1e6 / row.calls,
                    row.operation->names.front().c_str());
}

std::vector<Row> RowsWithoutPrograms()
{
    std::vector<Row> rows;
    for (const test::Operation& operation : test::Operations()) {
        if (!operation.Is(test::Operation::kStartsProgram))
            rows.emplace_back(operation);
    }
    return rows;
}

bool Soak(int rounds, int programRounds)
{
    const test::TempFolder folder(L"soak");
    const test::LogToFile log(folder.Path());
    std::vector<Row> rows = RowsWithoutPrograms();
    Programs programs(folder.Path());
    std::printf("soak: %zu operations, %d rounds, %d of them with programs\n", rows.size(), rounds, programRounds);
    std::printf("  %-14s %8s %12s %6s %6s %8s %14s\n", "", "handles", "by contract", "GDI", "USER", "threads",
                "private bytes");

    const Clock::time_point start = Clock::now();
    Print("at the start", test::CurrentResources(), 0);
    test::Resources early = {};
    std::size_t earlyByContract = 0;
    int programsDone = 0;
    for (int round = 1; round <= rounds; ++round) {
        for (Row& row : rows) {
            if (round % row.interval == 0)
                row.Call(folder.Path());
        }
        // At least one in the first hundredth, which brings what the first one of all brings.
        const int programsDue = 1 + static_cast<int>(static_cast<long long>(round) * (programRounds - 1) / rounds);
        for (; programsDone < programsDue; ++programsDone)
            programs.Call();
        if (round == rounds / 100) {
            early = test::CurrentResources();
            earlyByContract = Programs::Handles();
            Print("after 1 %", early, earlyByContract);
        }
        if (round % (rounds / 10) == 0 && round != rounds) {
            const std::string part = "after " + std::to_string(100LL * round / rounds) + " %";
            Print(part.c_str(), test::CurrentResources(), Programs::Handles());
        }
    }
    const test::Resources late = test::CurrentResources();
    Print("at the end", late, Programs::Handles());
    PrintTimes(rows);
    const bool isLevel = IsLevel(early, late, Programs::Handles() - earlyByContract);
    std::printf("soak: %.0f s, %s\n", Seconds(Clock::now() - start), isLevel ? "level" : "NOT LEVEL");
    return isLevel;
}

} // namespace

int main(int argc, char** argv)
{
    const auto number = [&](int place) { return argc == 3 ? std::strtol(argv[place], nullptr, 10) : 0; };
    const int rounds = number(1);
    const int programRounds = number(2);
    // Each operation is to be called in the first hundredth.
    if (rounds < 1000 || programRounds < 1) {
        std::fprintf(stderr, "Soak.exe ROUNDS ROUNDS_WITH_PROGRAMS; 1000 and 1 at least\n");
        return 2;
    }
    try {
        return Soak(rounds, programRounds) ? 0 : 1;
    } catch (const std::exception& failure) {
        std::printf("soak: FAILED: %s\n", failure.what());
        return 1;
    }
}
