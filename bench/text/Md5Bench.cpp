#include "Bench.h"
#include "TextBench.h"
#include "Texts.h"

#include "Kelpkit/Text.h"

#include "support/TempFolder.h"

#include <boost/uuid/detail/md5.hpp>

#include <windows.h>

#include <bcrypt.h>
#include <gcrypt.h>
#include <wincrypt.h>

#include <array>
#include <cstddef>
#include <fstream>
#include <string>
#include <vector>

namespace bench
{
namespace
{

constexpr std::size_t kDigestSize = 16;
constexpr const char* kGcrypt = "libgcrypt";

using Digest = std::array<unsigned char, kDigestSize>;

// As text, since Kelpkit gives text.
std::string Hex(const unsigned char* digest)
{
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < kDigestSize; ++i) {
        text += kDigits[digest[i] >> 4];
        text += kDigits[digest[i] & 15];
    }
    return text;
}

std::string ByKelpkit(const std::string& data)
{
    std::string digest;
    KELPKIT::BuildMd5Code(data, digest);
    return digest;
}

std::string ByBoost(const std::string& data)
{
    boost::uuids::detail::md5 md5;
    md5.process_bytes(data.data(), data.size());
    boost::uuids::detail::md5::digest_type digest;
    md5.get_digest(digest);
    return Hex(reinterpret_cast<const unsigned char*>(digest));
}

std::string ByGcrypt(const std::string& data)
{
    Digest digest;
    ::gcry_md_hash_buffer(GCRY_MD_MD5, digest.data(), data.data(), data.size());
    return Hex(digest.data());
}

std::string ByCng(BCRYPT_ALG_HANDLE algorithm, const std::string& data)
{
    Digest digest;
    BCRYPT_HASH_HANDLE hash = nullptr;
    ::BCryptCreateHash(algorithm, &hash, nullptr, 0, nullptr, 0, 0);
    ::BCryptHashData(hash, reinterpret_cast<PUCHAR>(const_cast<char*>(data.data())), static_cast<ULONG>(data.size()),
                     0);
    ::BCryptFinishHash(hash, digest.data(), static_cast<ULONG>(digest.size()), 0);
    ::BCryptDestroyHash(hash);
    return Hex(digest.data());
}

std::string ByCryptoApi(HCRYPTPROV provider, const std::string& data)
{
    Digest digest;
    auto size = static_cast<DWORD>(digest.size());
    HCRYPTHASH hash = 0;
    ::CryptCreateHash(provider, CALG_MD5, 0, 0, &hash);
    ::CryptHashData(hash, reinterpret_cast<const BYTE*>(data.data()), static_cast<DWORD>(data.size()), 0);
    ::CryptGetHashParam(hash, HP_HASHVAL, digest.data(), &size, 0);
    ::CryptDestroyHash(hash);
    return Hex(digest.data());
}

// The providers stay open until the program ends, as an application's would.
BCRYPT_ALG_HANDLE OpenCng()
{
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    ::BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_MD5_ALGORITHM, nullptr, 0);
    return algorithm;
}

HCRYPTPROV OpenCryptoApi()
{
    HCRYPTPROV provider = 0;
    ::CryptAcquireContextW(&provider, nullptr, nullptr, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT);
    return provider;
}

void Md5(const std::string& size, std::size_t bytes, double goal)
{
    const std::string& data = Keep(RandomBytes(bytes));
    Comparison("MD5", size)
        .Kelpkit([&data] { return ByKelpkit(data); })
        .Peer(
            "Boost.Uuid", [&data] { return ByBoost(data); }, goal)
        .Peer(kGcrypt, [&data] { return ByGcrypt(data); })
        .Peer("CNG", [&data, algorithm = OpenCng()] { return ByCng(algorithm, data); })
        .Peer("CryptoAPI", [&data, provider = OpenCryptoApi()] { return ByCryptoApi(provider, data); });
}

std::string FileByGcrypt(const std::wstring& path)
{
    const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    gcry_md_hd_t md = nullptr;
    ::gcry_md_open(&md, GCRY_MD_MD5, 0);
    std::vector<char> buffer(64 << 10);
    DWORD count = 0;
    while (::ReadFile(file, buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr) && count != 0)
        ::gcry_md_write(md, buffer.data(), count);
    std::string digest = Hex(::gcry_md_read(md, GCRY_MD_MD5));
    ::gcry_md_close(md);
    ::CloseHandle(file);
    return digest;
}

std::wstring MakeFile(const std::wstring& path, std::size_t size)
{
    std::ofstream file(path.c_str(), std::ios::binary);
    const std::string data = RandomBytes(size);
    file.write(data.data(), static_cast<std::streamsize>(data.size()));
    return path;
}

} // namespace

void RegisterMd5()
{
    ::gcry_check_version(nullptr);
    ::gcry_control(GCRYCTL_INITIALIZATION_FINISHED, 0);

    Md5("64 B", 64, 1.05);
    Md5("1 KiB", 1024, 0.94);
    Md5("1 MiB", 1 << 20, 0.92);

    static const test::TempFolder folder;
    const std::wstring& path = Keep(MakeFile(folder / L"64.bin", 64 << 20));
    Comparison("MD5 of a file", "64 MiB")
        .Kelpkit([&path] { return KELPKIT::GetFileMD5(path); })
        .Peer(
            "libgcrypt over ReadFile of 64 KiB", [&path] { return FileByGcrypt(path); }, 0.92);

    Growth("MD5, bytes", [](std::size_t size) {
        const std::string& data = Keep(RandomBytes(size));
        return [&data] { return ByKelpkit(data); };
    });
    Growth("MD5 of a file, bytes", [](std::size_t size) {
        const std::wstring& file = Keep(MakeFile(folder / (std::to_wstring(size) + L".bin"), size));
        return [&file] { return KELPKIT::GetFileMD5(file); };
    });
}

} // namespace bench
