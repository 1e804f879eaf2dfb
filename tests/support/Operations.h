#pragma once

#include "support/ImportPatch.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace test
{

// An exported operation at work, for tests that repeat it or disturb it.
struct Operation {
    enum Trait : unsigned {
        kOneThread = 1,     // not to be called by several threads at once
        kStartsProgram = 2, // which FakePrograms spares it
        kPiecemeal = 4,     // what it leaves may be a part where it was cut short
        kConfiguresLog = 8, // which is log4cplus's doing
    };

    // As the lists of exports have them: more than one where they belong together.
    std::vector<std::string> names;

    // Calls it, in a folder of the caller's own, and returns what came of it: the same each time.
    std::function<std::string(const std::wstring& folder)> call;

    unsigned traits = 0;

    // Before each call; may be empty.
    std::function<void(const std::wstring& folder)> prepare = nullptr;

    // What the call left in the folder; may be empty.
    std::function<std::string(const std::wstring& folder)> left = nullptr;

    // The results, besides the usual one, by which it may say that memory ran out.
    std::vector<std::string> failures = {};

    bool Is(Trait trait) const { return (traits & trait) != 0; }
    void Prepare(const std::wstring& folder) const
    {
        if (prepare)
            prepare(folder);
    }
    std::string Left(const std::wstring& folder) const { return left ? left(folder) : std::string(); }

    // For the messages of tests.
    friend std::ostream& operator<<(std::ostream& out, const Operation& operation) { return out << operation.names[0]; }
};

// Each exported operation of Kelpkit.dll and XMLParser.dll, and each of IXMLTree.
const std::vector<Operation>& Operations();

// The log goes to a file in the folder while it lives.
class LogToFile
{
public:
    explicit LogToFile(const std::wstring& folder);
    LogToFile(const LogToFile&) = delete;
    LogToFile& operator=(const LogToFile&) = delete;
    ~LogToFile();
};

// Programs that Kelpkit starts are none, and have run at once; there is one window, which is theirs; waiting takes no
// time; and the converter is there.
class FakePrograms
{
public:
    FakePrograms();

private:
    ImportPatch m_createProcess;
    ImportPatch m_waitForIdle;
    ImportPatch m_sleep;
    ImportPatch m_pathExists;
    ImportPatch m_enumerate;
    ImportPatch m_processOfWindow;
    ImportPatch m_parent;
    ImportPatch m_setParent;
    ImportPatch m_setStyle;
    ImportPatch m_move;
    ImportPatch m_show;
    ImportPatch m_order;
    ImportPatch m_post;
    ImportPatch m_isWindow;
};

} // namespace test
