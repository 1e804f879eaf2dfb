#include <Kelpkit/Files.h>

#include <gtest/gtest.h>

#include <utility>

using namespace KELPKIT;

TEST(GetFileDir, KeepsAllUpToTheLastBackslash)
{
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"C:\\a\\b.txt", L"C:\\a\\"},
        {L"C:\\a\\", L"C:\\a\\"},
        {L"\\", L"\\"},
        {L"\\\\server\\share\\x", L"\\\\server\\share\\"},
        {L"C:\\模型\\图 1\\x", L"C:\\模型\\图 1\\"},
        {L"C:/a\\b/c", L"C:/a\\"},
    };
    for (const auto& [path, folder] : cases)
        EXPECT_EQ(GetFileDir(path), folder);
}

TEST(GetFileDir, ReturnsAPathWithoutBackslashUnchanged)
{
    EXPECT_EQ(GetFileDir(L"name.txt"), L"name.txt");
    EXPECT_EQ(GetFileDir(L"C:/a/b.txt"), L"C:/a/b.txt");
    EXPECT_EQ(GetFileDir(L""), L"");
}

TEST(GetFileExtion, IsWhatStandsBehindTheLastDot)
{
    EXPECT_EQ(GetFileExtion(L"archive.tar.gz"), L"gz");
    EXPECT_EQ(GetFileExtion(L"C:\\a.TXT"), L"TXT");
    EXPECT_EQ(GetFileExtion(L"a."), L"");
    EXPECT_EQ(GetFileExtion(L".hidden"), L"hidden");
    EXPECT_EQ(GetFileExtion(L"a.图"), L"图");
}

TEST(GetFileExtion, IsEmptyWithoutADot)
{
    EXPECT_EQ(GetFileExtion(L"noext"), L"");
    EXPECT_EQ(GetFileExtion(L""), L"");
}

TEST(GetFileExtion, FindsTheDotOfAFolder)
{
    EXPECT_EQ(GetFileExtion(L"C:\\x.y\\file"), L"y\\file");
}
