// Runs a program's benchmarks group by group and writes what they measured as one JSON document.
//
//     XBench REPORT.json ROUNDS [--benchmark_... ...]
//
// --benchmark_filter chooses groups, by "operation|size". In each round of a group, Kelpkit and its peers take turns.

#include "Bench.h"

#include <fstream>
#include <iostream>
#include <regex>
#include <vector>

namespace bench
{
namespace
{

std::vector<std::string> g_groups;

// One document for all groups.
class Document : public benchmark::JSONReporter
{
public:
    bool ReportContext(const Context& context) override
    {
        if (!m_begun)
            m_begun = JSONReporter::ReportContext(context);
        return m_begun;
    }

    void Finalize() override {}

    void End()
    {
        if (m_begun)
            JSONReporter::Finalize();
    }

private:
    bool m_begun = false;
};

// A regular expression that matches the text.
std::string Literal(const std::string& text)
{
    return std::regex_replace(text, std::regex(R"([.^$|()\[\]{}*+?\\])"), R"(\$&)");
}

} // namespace

void AddGroup(const std::string& group)
{
    g_groups.push_back(group);
}

} // namespace bench

int main(int argc, char** argv) // NOLINT(bugprone-exception-escape): it ends the program, which is right
{
    using namespace bench;
    benchmark::Initialize(&argc, argv);
    if (argc != 3) {
        std::cerr << "usage: " << argv[0] << " REPORT.json ROUNDS [--benchmark_... ...]\n";
        return 2;
    }
    const int rounds = std::stoi(argv[2]);
    std::ofstream file(argv[1]);
    Document document;
    document.SetOutputStream(&file);
    document.SetErrorStream(&std::cerr);

    Register();
    const std::string filter = benchmark::GetBenchmarkFilter();
    const std::regex chosen(filter.empty() ? "." : filter);
    for (const std::string& group : g_groups) {
        if (!std::regex_search(group, chosen))
            continue;
        std::cerr << "  " << group << '\n';
        for (int round = 0; round < rounds; ++round)
            benchmark::RunSpecifiedBenchmarks(&document, '^' + Literal(group) + "\\|");
    }
    document.End();
    return file.flush() ? 0 : 1;
}
