#include "support/Operations.h"
#include "support/FileContents.h"
#include "support/Process.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>

namespace
{

std::set<std::string> Exports(const wchar_t* list)
{
    std::istringstream lines(test::ReadFileBytes(test::BesideThisProgram(list)));
    std::set<std::string> names;
    for (std::string name; std::getline(lines, name);) {
        if (!name.empty() && name.back() == '\r')
            name.pop_back();
        names.insert(name);
    }
    return names;
}

} // namespace

TEST(Operations, AreAllThatIsExported)
{
    std::set<std::string> exported = Exports(L"Kelpkit.exports.txt");
    exported.merge(Exports(L"XMLParser.exports.txt"));
    ASSERT_GT(exported.size(), 100U);
    std::set<std::string> shown;
    for (const test::Operation& operation : test::Operations()) {
        for (const std::string& name : operation.names) {
            EXPECT_TRUE(shown.insert(name).second) << "twice: " << name;
            EXPECT_TRUE(exported.count(name) != 0 || name.rfind("IXMLTree::", 0) == 0) << "not exported: " << name;
        }
    }
    for (const std::string& name : exported)
        EXPECT_EQ(shown.count(name), 1U) << "not among the operations: " << name;
}
