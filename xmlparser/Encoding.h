#pragma once

#include <optional>
#include <string_view>

namespace xmlparser
{

// How the bytes of a file stand for text. Code pages have Windows' numbers.
struct Encoding {
    static constexpr unsigned kUtf8 = 65001;
    static constexpr unsigned kUtf16LittleEndian = 1200;
    static constexpr unsigned kUtf16BigEndian = 1201;
    static constexpr unsigned kGbk = 936;
    static constexpr unsigned kGb18030 = 54936;

    // What of its code page an encoding may be written with. ASCII is read as UTF-8 and GB 2312 as GBK, which hold them.
    enum class Part { kAll, kAscii, kGb2312 };

    unsigned codePage = kUtf8;
    bool hasByteOrderMark = false;
    Part part = Part::kAll;

    bool IsUtf16() const { return codePage == kUtf16LittleEndian || codePage == kUtf16BigEndian; }
};

// The byte order mark of the encoding; empty where it has none.
std::string_view ByteOrderMark(unsigned codePage);

// The encoding by byte order mark, else by the first bytes, else by the declaration, else UTF-8 (XML 1.0, appendix F).
// Nothing if the declaration names an encoding that is not known, or one that the bytes belie.
std::optional<Encoding> DetectEncoding(std::string_view file);

} // namespace xmlparser
