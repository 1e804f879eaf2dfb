#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

// Shows steps one to a line, with the result and the time that each took, and keeps count of those that went wrong.
class Tour
{
public:
    // What a step gave, and whether it is as it should be.
    struct Result {
        std::wstring text;
        bool right;
    };

    Tour(std::wstring folder, bool showsIdentity) : m_folder(std::move(folder)), m_showsIdentity(showsIdentity) {}

    // The working folder, ending in a backslash.
    const std::wstring& Folder() const { return m_folder; }

    // What identifies the machine, as it may be shown.
    std::wstring Identity(const std::wstring& text) const;

    void Section(const std::wstring& title);
    void Step(const std::wstring& name, const std::function<Result()>& action);

    // A line of text below a step.
    static void Note(const std::wstring& text);

    // Says how each section went, in a table, and all; returns the number of steps that went wrong.
    int Summary() const;

private:
    using Duration = std::chrono::steady_clock::duration;

    struct Tally {
        std::wstring title;
        int steps;
        int wrong;
        Duration duration;
    };

    static void Print(const Tally& tally);

    std::wstring m_folder;
    bool m_showsIdentity;
    std::vector<Tally> m_sections;
};

// The sections, one for each family of the library.
void ShowModelUpgrade(Tour& tour);
void ShowLog(Tour& tour);
void ShowText(Tour& tour);
void ShowColors(Tour& tour);
void ShowFiles(Tour& tour);
void ShowChildPrograms(Tour& tour);
void ShowSystem(Tour& tour);
void ShowXmlConfig(Tour& tour);
void ShowTimes(Tour& tour);
void ShowCrash(Tour& tour);

// The arguments that make the tour call Crash() or Throw() and nothing else.
constexpr const wchar_t* kCrashArgument = L"--crash";
constexpr const wchar_t* kThrowArgument = L"--throw";

// Asks for a crash dump and crashes.
void Crash();

// Asks for a crash dump and throws an exception.
void Throw();

// The log file of the tour.
std::wstring LogFile(const Tour& tour);

// "true" or "false".
std::wstring Text(bool value);

// The bytes of a file, as far as it can be read.
std::string Contents(const std::wstring& path);

// Bytes as "D6 D0".
std::wstring Hex(const std::string& bytes);
