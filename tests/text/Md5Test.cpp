#include "support/CodePage.h"
#include "support/FileContents.h"
#include "support/FileHolder.h"
#include "support/LastError.h"
#include "support/TempFolder.h"
#include "support/Threads.h"

#include <Kelpkit/Text.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <bcrypt.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

using namespace KELPKIT;
using test::FileHolder;
using test::TempFolder;
using test::UnderCodePage1252;
using test::UnderCodePage936;
using test::UnderUtf8;
using test::WriteFileBytes;

namespace
{

const std::wstring kDigestOfNothing = L"d41d8cd98f00b204e9800998ecf8427e";

std::string Digest(const std::string& bytes)
{
    std::string digest = "what was there before";
    EXPECT_TRUE(BuildMd5Code(bytes, digest));
    return digest;
}

std::wstring Digest(const std::wstring& text)
{
    std::wstring digest = L"what was there before";
    EXPECT_TRUE(BuildMd5Code(text, digest));
    return digest;
}

std::wstring Wide(const std::string& digits)
{
    return {digits.begin(), digits.end()};
}

// Windows' own MD5.
class SystemMd5
{
public:
    SystemMd5()
    {
        const NTSTATUS status = ::BCryptOpenAlgorithmProvider(&m_algorithm, BCRYPT_MD5_ALGORITHM, nullptr, 0);
        if (status < 0)
            throw std::runtime_error("the system has no MD5");
    }
    SystemMd5(const SystemMd5&) = delete;
    SystemMd5& operator=(const SystemMd5&) = delete;
    ~SystemMd5() { ::BCryptCloseAlgorithmProvider(m_algorithm, 0); }

    std::string Digest(std::string bytes) const
    {
        UCHAR digest[16] = {};
        BCRYPT_HASH_HANDLE hash = nullptr;
        auto* const input = reinterpret_cast<UCHAR*>(bytes.data());
        EXPECT_GE(::BCryptCreateHash(m_algorithm, &hash, nullptr, 0, nullptr, 0, 0), 0);
        EXPECT_GE(::BCryptHashData(hash, input, static_cast<ULONG>(bytes.size()), 0), 0);
        EXPECT_GE(::BCryptFinishHash(hash, digest, sizeof digest, 0), 0);
        ::BCryptDestroyHash(hash);
        std::string digits;
        for (const UCHAR byte : digest) {
            digits += "0123456789abcdef"[byte >> 4];
            digits += "0123456789abcdef"[byte & 15];
        }
        return digits;
    }

private:
    BCRYPT_ALG_HANDLE m_algorithm = nullptr;
};

std::string RandomBytes(std::size_t length, std::mt19937& random)
{
    std::string bytes(length, '\0');
    for (char& c : bytes)
        c = static_cast<char>(random() & 0xFF);
    return bytes;
}

// A pipe that can be opened once, and not again until its server lets it.
class PipeForOneOpening
{
public:
    PipeForOneOpening()
        : m_path(L"\\\\.\\pipe\\kelpkit-md5-" + std::to_wstring(::GetCurrentProcessId())),
          m_pipe(::CreateNamedPipeW(m_path.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1, 100, 100, 0, nullptr))
    {
        if (m_pipe == INVALID_HANDLE_VALUE)
            throw std::runtime_error("a pipe cannot be made: " + test::LastErrorText());
    }
    PipeForOneOpening(const PipeForOneOpening&) = delete;
    PipeForOneOpening& operator=(const PipeForOneOpening&) = delete;
    ~PipeForOneOpening() { ::CloseHandle(m_pipe); }

    const std::wstring& Path() const { return m_path; }

private:
    std::wstring m_path;
    HANDLE m_pipe;
};

} // namespace

TEST(BuildMd5Code, GivesThePublishedDigests)
{
    // RFC 1321, appendix A.5.
    const std::pair<const char*, const char*> cases[] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"},
    };
    for (const auto& [text, digest] : cases) {
        EXPECT_EQ(Digest(std::string(text)), digest);
        EXPECT_EQ(Digest(Wide(text)), Wide(digest));
    }
}

TEST(BuildMd5Code, EveryLengthIsDigestedAsTheSystemDoes)
{
    const SystemMd5 system;
    std::mt19937 random(1);
    for (std::size_t length = 0; length <= 300; ++length) {
        const std::string bytes = RandomBytes(length, random);
        ASSERT_EQ(Digest(bytes), system.Digest(bytes)) << length;
    }
    for (const std::size_t block : {1024U, 4096U, 65536U, 1U << 20}) {
        for (std::size_t length = block - 10; length <= block + 10; ++length) {
            const std::string bytes = RandomBytes(length, random);
            ASSERT_EQ(Digest(bytes), system.Digest(bytes)) << length;
        }
    }
}

TEST(BuildMd5Code, DigestsEmbeddedZerosOfNarrowText)
{
    EXPECT_EQ(Digest(std::string("a\0b", 3)), SystemMd5().Digest(std::string("a\0b", 3)));
    EXPECT_NE(Digest(std::string("a\0b", 3)), Digest(std::string("a")));
}

TEST(BuildMd5Code, WideTextEndsAtItsFirstZeroCharacter)
{
    EXPECT_EQ(Digest(std::wstring(L"abc\0d", 5)), L"900150983cd24fb0d6963f7d28e17f72");
}

TEST(BuildMd5Code, MayStoreInItsArgument)
{
    std::string narrow = "abc";
    BuildMd5Code(narrow, narrow);
    EXPECT_EQ(narrow, "900150983cd24fb0d6963f7d28e17f72");
    std::wstring wide = L"abc";
    BuildMd5Code(wide, wide);
    EXPECT_EQ(wide, L"900150983cd24fb0d6963f7d28e17f72");
}

class BuildMd5CodeUnder936 : public UnderCodePage936
{
};

TEST_F(BuildMd5CodeUnder936, DigestsTheAnsiBytesOfWideText)
{
    EXPECT_EQ(Digest(std::wstring(L"中")), Wide(Digest(std::string("\xD6\xD0"))));
}

class BuildMd5CodeUnder1252 : public UnderCodePage1252
{
};

TEST_F(BuildMd5CodeUnder1252, DigestsTheAnsiBytesOfWideText)
{
    EXPECT_EQ(Digest(std::wstring(L"中")), Wide(Digest(std::string("?"))));
    EXPECT_EQ(Digest(std::wstring(L"é")), Wide(Digest(std::string("\xE9"))));
}

class BuildMd5CodeUnderUtf8 : public UnderUtf8
{
};

TEST_F(BuildMd5CodeUnderUtf8, DigestsTheAnsiBytesOfWideText)
{
    EXPECT_EQ(Digest(std::wstring(L"中")), Wide(Digest(std::string("\xE4\xB8\xAD"))));
}

TEST(BuildMd5Code, ManyThreadsDigestAtOnce)
{
    std::vector<int> wrong(8);
    test::InThreads(wrong.size(), [&wrong](std::size_t thread) {
        for (int round = 0; round < 2000; ++round)
            wrong[thread] += Digest(std::string("abc")) != "900150983cd24fb0d6963f7d28e17f72";
    });
    EXPECT_EQ(wrong, std::vector<int>(8));
}

TEST(GetFileMD5, DigestsAFileOfThreeChunks)
{
    const TempFolder folder;
    std::mt19937 random(2);
    const std::string bytes = RandomBytes(2049, random);
    WriteFileBytes(folder / L"a", bytes);
    EXPECT_EQ(GetFileMD5(folder / L"a"), Wide(Digest(bytes)));
}

TEST(GetFileMD5, DigestsFilesOfEveryLengthAroundChunksAndBuffers)
{
    const TempFolder folder;
    std::mt19937 random(3);
    for (const std::size_t length : {0U, 1U, 63U, 64U, 1023U, 1024U, 1025U, 65535U, 65536U, 65537U, 200000U}) {
        const std::string bytes = RandomBytes(length, random);
        WriteFileBytes(folder / L"a", bytes);
        EXPECT_EQ(GetFileMD5(folder / L"a"), Wide(Digest(bytes))) << length;
    }
}

TEST(GetFileMD5, TakesEveryByteAsItIs)
{
    const TempFolder folder;
    const std::string bytes = "line\r\nline\n\x1A behind an end of text";
    WriteFileBytes(folder / L"a", bytes);
    EXPECT_EQ(GetFileMD5(folder / L"a"), Wide(Digest(bytes)));
}

TEST(GetFileMD5, TakesNamesOutsideTheCodePage)
{
    const TempFolder folder(L"模型 \xD83D\xDE00");
    WriteFileBytes(folder / L"齿轮 é.qmx", "abc");
    EXPECT_EQ(GetFileMD5(folder / L"齿轮 é.qmx"), L"900150983cd24fb0d6963f7d28e17f72");
}

TEST(GetFileMD5, IsEmptyForWhatIsNoValidFile)
{
    const TempFolder folder;
    WriteFileBytes(folder / L"held", "abc");
    const FileHolder holder(folder / L"held", GENERIC_READ, 0);
    EXPECT_EQ(GetFileMD5(folder / L"missing"), L"");
    EXPECT_EQ(GetFileMD5(folder.Path()), L"");
    EXPECT_EQ(GetFileMD5(L""), L"");
    EXPECT_EQ(GetFileMD5(folder / L"held"), L"") << "held without sharing";
}

TEST(GetFileMD5, ReadsAFileThatAnotherWrites)
{
    const TempFolder folder;
    WriteFileBytes(folder / L"a", "abc");
    const FileHolder holder(folder / L"a", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE);
    EXPECT_EQ(GetFileMD5(folder / L"a"), L"900150983cd24fb0d6963f7d28e17f72");
}

TEST(GetFileMD5, LetsGoOfTheFile)
{
    const TempFolder folder;
    WriteFileBytes(folder / L"a", "abc");
    GetFileMD5(folder / L"a");
    EXPECT_TRUE(::DeleteFileW((folder / L"a").c_str())) << test::LastErrorText();
}

TEST(GetFileMD5, GivesTheDigestOfNothingWhereTheFileCannotBeOpenedASecondTime)
{
    const PipeForOneOpening pipe;
    EXPECT_EQ(GetFileMD5(pipe.Path()), kDigestOfNothing);
    EXPECT_EQ(GetFileMD5(pipe.Path()), L"") << "it should be open no more";
}

TEST(GetFileMD5, DigestsAFileOf5GiB)
{
    const TempFolder folder;
    test::MakeSparseFile(folder / L"big", 5LL << 30);
    EXPECT_EQ(GetFileMD5(folder / L"big"), L"ec4bcc8776ea04479b786e063a9ace45");
}

// As applications have it whose headers declare the input without const.
namespace KELPKIT
{

KELPKIT_API bool BuildMd5Code(std::string& input, std::string& output);

} // namespace KELPKIT

TEST(BuildMd5Code, TakesAnInputWithoutConst)
{
    bool (*const build)(std::string&, std::string&) = &BuildMd5Code;
    std::string input = "abc";
    std::string digest;
    EXPECT_TRUE(build(input, digest));
    EXPECT_EQ(digest, "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(input, "abc");
}
