// A stand-in for Pelvane.exe, which upgrades model files.
//
//     Pelvane.exe INPUT MODE OUTPUT
//
// Reads the model file INPUT and writes OUTPUT_new.qmx and, where the model has geometry, OUTPUT_new.hsf into INPUT's
// folder. A model file is a text: "QMX 1" in the first line, then one line for each property ("name gear"), then one
// for each vertex ("v 0 0 1"). The upgraded model begins with "QMX 2" and leaves the vertices to the .hsf file.
//
// MODE is "full", or one of these, to try what a caller does then:
//     qmx-only  hsf-only  none    writes only this
//     fail                        reads the input, writes nothing, exit code 3
//     slow                        takes two seconds, then does as "full"
//
// Exit codes: 0 done, 1 wrong arguments, 2 the input cannot be read or is no model, 3 failed, 4 an output cannot be
// written.

#include <windows.h>

#include <fstream>
#include <string>
#include <vector>

namespace
{

enum ExitCode { kDone, kWrongArguments, kNoModel, kFailed, kNotWritten };

struct Model {
    std::vector<std::string> properties;
    std::vector<std::string> vertices;
};

bool Read(const std::wstring& path, Model& model)
{
    std::ifstream file(path.c_str());
    std::string line;
    if (!std::getline(file, line) || line != "QMX 1")
        return false;
    while (std::getline(file, line)) {
        if (line.compare(0, 2, "v ") == 0)
            model.vertices.push_back(line);
        else if (!line.empty())
            model.properties.push_back(line);
    }
    return file.eof();
}

bool Write(const std::wstring& path, const std::string& header, const std::vector<std::string>& lines)
{
    std::ofstream file(path.c_str(), std::ios::trunc);
    file << header << '\n';
    for (const std::string& line : lines)
        file << line << '\n';
    return file.flush().good();
}

std::wstring FolderOf(const std::wstring& path)
{
    return path.substr(0, path.find_last_of(L"\\/") + 1);
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    if (argc != 4)
        return kWrongArguments;
    const std::wstring input = argv[1];
    const std::wstring mode = argv[2];
    const std::wstring output = FolderOf(input) + argv[3];

    Model model;
    if (!Read(input, model))
        return kNoModel;
    if (mode == L"fail")
        return kFailed;
    if (mode == L"slow")
        ::Sleep(2000);

    const bool full = mode == L"full" || mode == L"slow";
    if (!full && mode != L"qmx-only" && mode != L"hsf-only" && mode != L"none")
        return kWrongArguments;
    const std::string vertexCount = "vertices " + std::to_string(model.vertices.size());
    if (full || mode == L"qmx-only") {
        std::vector<std::string> lines = model.properties;
        lines.push_back(vertexCount);
        if (!Write(output + L"_new.qmx", "QMX 2", lines))
            return kNotWritten;
    }
    if ((full && !model.vertices.empty()) || mode == L"hsf-only") {
        if (!Write(output + L"_new.hsf", "HSF " + vertexCount, model.vertices))
            return kNotWritten;
    }
    return kDone;
}
