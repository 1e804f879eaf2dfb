// Compares the conversions of text with the system's for all that they can meet:
//
//     Exhaust.exe utf8 [STEP]     each sequence of four bytes and each pair of UTF-16 units, for each kind of processor
//                                 up to this one; with a step, those only whose first half is a multiple of it
//     Exhaust.exe ansi            each two bytes and each unit, from and to the ANSI code page
//
// What is well-formed is packed into long texts, so that it stands at every place of a block. What is not stands alone
// among ASCII.

#include <Kelpkit/Text.h>

#include "text/Processor.h"
#include "text/Utf8.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace utf8 = KELPKIT::utf8;

namespace
{

template <class From, class To>
using Convert = To* (*)(const utf8::Blocks&, const From*&, const From*, To*, const To*);

// What the system makes of a text, which is empty where the text is not well-formed.
std::wstring BySystem(std::string_view bytes)
{
    wchar_t units[8];
    const int count =
        ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), static_cast<int>(bytes.size()), units, 8);
    return {units, static_cast<std::size_t>(count)};
}

std::string BySystem(std::wstring_view units)
{
    char bytes[8];
    const int count = ::WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, units.data(), static_cast<int>(units.size()),
                                            bytes, 8, nullptr, nullptr);
    return {bytes, static_cast<std::size_t>(count)};
}

struct Counts {
    std::uint64_t converted = 0;
    std::uint64_t refused = 0;
    std::uint64_t wrong = 0;
};

// Asked once: a virtual machine may take long to answer.
const KELPKIT::processor::Registers g_best = KELPKIT::processor::Best();

// The texts of one thread.
template <class From, class To>
class Texts
{
public:
    explicit Texts(Convert<From, To> convert) : m_convert(convert) {}

    void Add(std::basic_string_view<From> text)
    {
        const std::basic_string<To> result = BySystem(text);
        // The system converts zeros; for the blocks the text ends there.
        if (result.empty() || text.find(From(0)) != text.npos) {
            Refuse(text);
            ++m_counts.refused;
            return;
        }
        m_packed += text;
        m_expected += result;
        ++m_counts.converted;
        if (m_packed.size() > kLong)
            Flush();
    }

    Counts Finish()
    {
        Flush();
        return m_counts;
    }

private:
    static constexpr std::size_t kLong = 1 << 14;
    static constexpr std::size_t kAround = 64; // the most that is converted at a time

    void Flush()
    {
        for (const utf8::Way& way : utf8::kWays) {
            if (way.needed <= g_best && Converted(way.blocks, m_packed) != m_expected)
                ++m_counts.wrong;
        }
        // The next one starts at another place of a block.
        m_start = (m_start + 1) % kAround;
        m_packed.assign(m_start, From('k'));
        m_expected.assign(m_start, To('k'));
    }

    void Refuse(std::basic_string_view<From> text)
    {
        const std::size_t before = m_counts.refused % kAround;
        std::basic_string<From>& among = m_among;
        among.assign(before, From('k')).append(text).append(4, From('k'));
        for (const utf8::Way& way : utf8::kWays) {
            if (way.needed > g_best)
                continue;
            const From* in = among.data();
            To out[2 * kAround + utf8::kLeastRoom];
            if (m_convert(way.blocks, in, in + among.size(), out, std::end(out)) != nullptr)
                ++m_counts.wrong;
        }
    }

    std::basic_string<To> Converted(const utf8::Blocks& blocks, const std::basic_string<From>& text) const
    {
        std::basic_string<To> result;
        To piece[1024];
        const From* in = text.data();
        while (in != text.data() + text.size()) {
            To* const end = m_convert(blocks, in, text.data() + text.size(), piece, std::end(piece));
            if (end == nullptr)
                return {};
            result.append(piece, end);
        }
        return result;
    }

    Convert<From, To> m_convert;
    std::basic_string<From> m_packed;
    std::basic_string<To> m_expected;
    std::basic_string<From> m_among;
    std::size_t m_start = 0;
    Counts m_counts;
};

void AddAll(Texts<char, wchar_t>& texts, unsigned firstTwo)
{
    char bytes[4] = {static_cast<char>(firstTwo >> 8), static_cast<char>(firstTwo & 0xFF), 0, 0};
    for (unsigned lastTwo = 0; lastTwo < 0x10000; ++lastTwo) {
        bytes[2] = static_cast<char>(lastTwo >> 8);
        bytes[3] = static_cast<char>(lastTwo & 0xFF);
        texts.Add({bytes, 4});
    }
}

void AddAll(Texts<wchar_t, char>& texts, unsigned first)
{
    wchar_t units[2] = {static_cast<wchar_t>(first), 0};
    for (unsigned second = 0; second < 0x10000; ++second) {
        units[1] = static_cast<wchar_t>(second);
        texts.Add({units, 2});
    }
}

// With all processors.
template <class From, class To>
bool Exhaust(const char* name, unsigned step, Convert<From, To> convert)
{
    std::atomic<unsigned> next = 0;
    std::vector<Counts> counts(std::max(1U, std::thread::hardware_concurrency()));
    std::vector<std::thread> threads;
    threads.reserve(counts.size());
    for (Counts& mine : counts) {
        threads.emplace_back([&] {
            Texts<From, To> texts(convert);
            for (unsigned first = next.fetch_add(step); first < 0x10000; first = next.fetch_add(step))
                AddAll(texts, first);
            mine = texts.Finish();
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    Counts all;
    for (const Counts& some : counts) {
        all.converted += some.converted;
        all.refused += some.refused;
        all.wrong += some.wrong;
    }
    std::printf("%s: %llu converted, %llu refused, %llu otherwise than the system's\n", name,
                static_cast<unsigned long long>(all.converted), static_cast<unsigned long long>(all.refused),
                static_cast<unsigned long long>(all.wrong));
    return all.wrong == 0;
}

// With its terminator, which a sequence cut short at the end meets.
std::wstring FromAnsiBySystem(const std::string& text)
{
    std::wstring units(text.size() + 1, L'\0');
    ::MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, units.data(), static_cast<int>(units.size()));
    return units.substr(0, units.find(L'\0'));
}

std::string ToAnsiBySystem(const std::wstring& text)
{
    std::string bytes(3 * text.size(), '\0');
    bytes.resize(static_cast<std::size_t>(::WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                                                bytes.data(), static_cast<int>(bytes.size()), nullptr,
                                                                nullptr)));
    return bytes;
}

// Alone, and all of them in one text, from each place of a block on.
bool ExhaustAnsi()
{
    unsigned wrong = 0;
    std::string allBytes;
    std::wstring allUnits;
    for (unsigned i = 1; i < 0x10000; ++i) {
        const std::wstring unit(1, static_cast<wchar_t>(i));
        allUnits += unit;
        wrong += KELPKIT::UnicodeToAnsi(unit) != ToAnsiBySystem(unit) ? 1U : 0U;
        if (i < 0x100 || (i & 0xFF) == 0)
            continue;
        const std::string two = {static_cast<char>(i >> 8), static_cast<char>(i & 0xFF)};
        // What a byte makes of the one behind it does not reach beyond the "k".
        allBytes += two + "kk";
        wrong += KELPKIT::AnsiToUnicode(two) != FromAnsiBySystem(two) ? 1U : 0U;
    }
    for (std::size_t before = 0; before < 64; ++before) {
        const std::string bytes = std::string(before, 'k') + allBytes;
        const std::wstring units = std::wstring(before, L'k') + allUnits;
        wrong += KELPKIT::AnsiToUnicode(bytes) != FromAnsiBySystem(bytes) ? 1U : 0U;
        wrong += KELPKIT::UnicodeToAnsi(units) != ToAnsiBySystem(units) ? 1U : 0U;
    }
    std::printf("code page %u: %u otherwise than the system's\n", ::GetACP(), wrong);
    return wrong == 0;
}

} // namespace

int main(int argc, char** argv)
{
    const std::string part = argc > 1 ? argv[1] : "";
    if (part == "ansi")
        return ExhaustAnsi() ? EXIT_SUCCESS : EXIT_FAILURE;
    if (part == "utf8") {
        const unsigned step = argc > 2 ? static_cast<unsigned>(std::stoul(argv[2])) : 1;
        const bool decodes = Exhaust<char, wchar_t>("from UTF-8", step, utf8::Decode);
        const bool encodes = Exhaust<wchar_t, char>("to UTF-8", step, utf8::Encode);
        return decodes && encodes ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    std::fprintf(stderr, "usage: Exhaust utf8 [STEP] | Exhaust ansi\n");
    return 2;
}
