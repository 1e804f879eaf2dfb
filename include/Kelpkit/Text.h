#pragma once

/// @file
/// Text: conversion between UTF-16, UTF-8 and the ANSI code page; trimming, replacing and splitting; Base64; MD5;
/// comparison of versions.
///
/// "ANSI" is the active code page (CP_ACP): 936 (GBK) on a Chinese system, 1252 on a Western one, UTF-8 in an
/// application whose manifest sets activeCodePage to it.
/// Every function here may be called from any thread; none keeps state. None throws anything but std::bad_alloc
/// and std::length_error, for results too large to hold.

#include "Export.h"

#include <string>
#include <vector>

namespace KELPKIT
{

// Conversions
//
// The result is what the platform's own conversion gives, byte for byte, for valid and for invalid text. A text
// ends at its first zero character; what stands behind it is ignored. No failure is reported: a text that the
// platform refuses gives an empty result, and so does one whose result has 2147483647 units or more.

/// ANSI to UTF-16. A byte that the code page does not define comes out as the platform maps it.
/// Under code page 936, the bytes D6 D0 give L"\u4E2D".
KELPKIT_API std::wstring AnsiToUnicode(const std::string& text);

/// UTF-16 to ANSI. A character that the code page lacks comes out as the system's default character, as a rule
/// "?", or as one that looks alike. Under code page 936, L"\u4E2D" gives the bytes D6 D0; under 1252, "?".
KELPKIT_API std::string UnicodeToAnsi(const std::wstring& text);

/// UTF-8 (RFC 3629) to UTF-16. Invalid sequences give U+FFFD; a byte order mark stays as U+FEFF.
KELPKIT_API std::wstring UTF8ToUnicode(const std::string& text);

/// UTF-16 to UTF-8 (RFC 3629). A surrogate without its partner gives U+FFFD, the bytes EF BF BD.
KELPKIT_API std::string UnicodeToUTF8(const std::wstring& text);

// Conversions under other names
//
// The names do not always say what is done; what is done is the contract.

/// Same as UTF8ToUnicode: the result is UTF-16.
KELPKIT_API std::wstring ConvertUtf8ToGBK(const std::string& text);

/// Same as UnicodeToUTF8: the argument is UTF-16.
KELPKIT_API std::string ConvertGBKToUtf8(const std::wstring& text);

/// Same as UnicodeToAnsi.
KELPKIT_API std::string ConvertTStringToString(const std::wstring& text);

/// Same as UnicodeToUTF8: the result is UTF-8, not ANSI. L"\u4E2D" gives the bytes E4 B8 AD on every system.
KELPKIT_API std::string ConvertGBKToAnsi(const std::wstring& text);

/// Returns a copy of the argument, embedded zeros and all.
KELPKIT_API std::wstring ConvertGBKToUnicode(const std::wstring& text);

/// The same function as ConvertGBKToUnicode, exported under a second name.
KELPKIT_API std::wstring ConvertUnicodeToGBK(const std::wstring& text);

/// Same as AnsiToUnicode: the result is UTF-16.
KELPKIT_API std::wstring ConvertAnsiToGBK(const std::string& text);

// Trimming
//
// Only the one character that the caller names is removed, not white space in general. Each function changes
// its argument and returns it.

/// Removes every leading c. "xxabcxx" with 'x' becomes "abcxx"; "xxxx" becomes empty.
KELPKIT_API std::wstring& StringLtrim(std::wstring& text, wchar_t c);

/// Removes every trailing c. "xxabcxx" with 'x' becomes "xxabc"; "xxxx" becomes empty.
KELPKIT_API std::wstring& StringRtrim(std::wstring& text, wchar_t c);

/// Removes every leading and trailing c. "xxabcxx" with 'x' becomes "abc"; "  abc" with 'x' stays.
KELPKIT_API std::wstring& StringTrim(std::wstring& text, wchar_t c);

// Replacing and splitting

/// Replaces every occurrence of pattern in text, from left to right; what a replacement brought in is not searched
/// again. "aaa" with "a" for "aa" becomes "aaaaaa"; with "aa" for "b" it becomes "ba". An empty pattern changes
/// nothing. pattern and replacement may be text itself: their values at the call count. Takes time in proportion
/// to the text, however many hits.
KELPKIT_API void StringReplace(std::string& text, const std::string& pattern, const std::string& replacement);

/// The same for wide text.
KELPKIT_API void StringReplace(std::wstring& text, const std::wstring& pattern, const std::wstring& replacement);

/// Splits source at every character of the set delimiters and stores the pieces in pieces, replacing what it held.
/// No piece is empty: delimiters in a row, leading and trailing ones separate nothing. ",a,,b;c," with ",;" gives
/// "a", "b", "c". Without delimiters, the whole source is one piece. Both texts end at their first zero character.
KELPKIT_API void StringMulitSplit(const std::wstring& source, const std::wstring& delimiters,
                                  std::vector<std::wstring>& pieces);

/// Splits source at the first occurrence of separator: "key=val=x" at "=" gives "key" and "val=x". An empty separator
/// is found at the start. Returns false, and leaves left and right as they were, if separator does not occur. left and
/// right may be source itself.
KELPKIT_API bool StringSplitLeftRight(const std::string& source, const std::string& separator, std::string& left,
                                      std::string& right);

/// The same for wide text.
KELPKIT_API bool StringSplitLeftRight(const std::wstring& source, const std::wstring& separator, std::wstring& left,
                                      std::wstring& right);

/// Cuts source into pieces of at most width units and appends them to pieces, which is not cleared. A double-byte
/// character of the ANSI code page is one unit, two single-byte characters are one: "abcde" at width 1 gives "ab",
/// "cd", "e". A rest that is exactly `\n\r` is dropped. At width 0 or less, every character is a piece.
/// The text passes through the ANSI code page, and what that lacks is lost; every byte of 0x80 or more is taken for
/// the first of a pair, which fits double-byte code pages such as 936; under UTF-8, characters of three bytes may be
/// cut and come out as U+FFFD.
KELPKIT_API void StringSplitBySize(const std::wstring& source, int width, std::vector<std::wstring>& pieces);

// Base64

/// Base64 (RFC 4648, section 4: the alphabet with "+" and "/", padded with "="). Holds nothing; all its operations are
/// static.
///
/// Decoding is lenient and reports no error. A text of more than 2147483647 characters counts as empty. The text is read
/// in quanta of four characters, each giving three bytes:
/// - Between quanta, `\r`, `\n` and the control characters 1 and 2 are skipped.
/// - Inside a quantum, any character that is not in the alphabet counts as "A", whose value is 0. So does what a last
///   quantum lacks at the end of the text: "TQ" gives the bytes 4D 00 00.
/// - A "=" in the third place of a quantum ends it after one byte, in the fourth after two. It is not skipped, so it is
///   the first character of the next quantum if the text goes on: padding belongs at the end of the text.
class CBase64
{
public:
    /// Does nothing.
    CBase64() = default;
    /// Copies nothing.
    CBase64(const CBase64& other) = default;
    /// Assigns nothing.
    KELPKIT_API CBase64& operator=(const CBase64& other);

    /// The text for length bytes of data, on one line: "Man" gives "TWFu", "M" gives "TQ==". Empty where length is 0 or
    /// less.
    KELPKIT_API static std::string Encode(const char* data, int length);

    /// The text for all bytes of data, embedded zeros included.
    KELPKIT_API static std::string Encode(std::string data);

    /// Decodes length characters of text to out, which belongs to the caller, followed by a zero byte. Returns the number
    /// of bytes before that. Nothing behind the length is read. out must have room for 3 bytes for each 4 characters
    /// begun, and one more; nothing behind the zero byte is written. out may be where the text is. A length of 0 or less
    /// gives the zero byte only.
    KELPKIT_API static int Decode(const char* text, char* out, int length);

    /// Decodes text and stores what comes before the first zero byte in out. Returns the number of all bytes decoded,
    /// which is larger than out where they hold a zero: "AAEC", the bytes 00 01 02, gives 3 and an empty out.
    KELPKIT_API static int DecodeEx(std::string text, std::string& out);

    /// Decodes text into new memory and stores its address in buffer and the number of bytes in length. A zero byte
    /// follows them. The caller frees the memory with delete[].
    KELPKIT_API static void DecodeEx(std::string text, char*& buffer, int& length);
};

// MD5
//
// The MD5 digest (RFC 1321) as 32 lower-case hexadecimal digits, to tell contents apart that come about by chance. It
// protects nothing: two contents with one digest are easily made, so it is fit neither for signatures nor for passwords.

/// Stores the digest of all bytes of input, embedded zeros included, in output. Always true. "abc" gives
/// "900150983cd24fb0d6963f7d28e17f72".
KELPKIT_API bool BuildMd5Code(const std::string& input, std::string& output);

/// Stores the digest of input in the ANSI code page (UnicodeToAnsi) in output: under code page 936, that of L"\u4E2D" is
/// the digest of the bytes D6 D0. The same text may thus have another digest on another system. Always true.
KELPKIT_API bool BuildMd5Code(const std::wstring& input, std::wstring& output);

/// The digest of a file's contents; empty where CheckFileValid (Files.h) is false for the path. The file may be larger
/// than memory, and open for writing elsewhere. A file that is removed or locked between that check and its reading
/// gives the digest of nothing, "d41d8cd98f00b204e9800998ecf8427e".
KELPKIT_API std::wstring GetFileMD5(const std::wstring& path);

// Versions and numbers

/// Compares two texts such as versions: 1 if a is larger, -1 if it is smaller, 0 if they are equal. Both are cut into
/// runs of digits ("0" to "9") and runs of anything else, which are compared in turn: two runs of digits as numbers,
/// any others byte by byte in the ANSI code page. Where all are equal, the text with more runs is larger. Numbers above
/// 2147483647 count as that.
///
///     "1.10"  "1.9"      1: 10 is larger than 9
///     "1.01"  "1.1"      0
///     "1.0"   "1.0.0"   -1: fewer runs
///     "1.2a"  "1.2b"    -1
///     "v2"    "10"       1: "v" and "10" as texts
///     ""      "1"       -1
KELPKIT_API int ALargeB(std::wstring a, std::wstring b);

/// Whether x is at most 0.000001 away from zero, that distance included. True also for not-a-number.
KELPKIT_API bool IsDoubleZero(double x);

/// Holds nothing and does nothing; part of the interface for those who declare one.
class CSortAssist
{
public:
    /// Does nothing.
    KELPKIT_API CSortAssist();
    /// Copies nothing.
    CSortAssist(const CSortAssist& other) = default;
    /// Assigns nothing.
    KELPKIT_API CSortAssist& operator=(const CSortAssist& other);
    KELPKIT_API ~CSortAssist();
};

} // namespace KELPKIT
