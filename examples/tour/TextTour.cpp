#include "Tour.h"

#include <Kelpkit/Text.h>

using namespace KELPKIT;

namespace
{

std::wstring Joined(const std::vector<std::wstring>& pieces)
{
    std::wstring text;
    for (const std::wstring& piece : pieces)
        text += L"[" + piece + L"] ";
    return StringRtrim(text, L' ');
}

} // namespace

void ShowText(Tour& tour)
{
    tour.Section(L"Text");
    tour.Step(L"UnicodeToUTF8 of 中é😀", [] {
        const std::string utf8 = UnicodeToUTF8(L"中é\xD83D\xDE00");
        return Tour::Result{Hex(utf8), UTF8ToUnicode(utf8) == L"中é\xD83D\xDE00"};
    });
    tour.Step(L"UnicodeToAnsi of 中", [] {
        const std::string ansi = UnicodeToAnsi(L"中");
        return Tour::Result{Hex(ansi), ansi == "\xD6\xD0" || ansi == "?"};
    });
    tour.Step(L"ConvertGBKToAnsi of 中", [] {
        const std::string bytes = ConvertGBKToAnsi(L"中");
        return Tour::Result{Hex(bytes) + L", UTF-8 whatever its name says", bytes == "\xE4\xB8\xAD"};
    });
    tour.Step(L"StringTrim of xxgearxx", [] {
        std::wstring text = L"xxgearxx";
        return Tour::Result{StringTrim(text, L'x'), text == L"gear"};
    });
    tour.Step(L"StringReplace of a by aa in aaa", [] {
        std::wstring text = L"aaa";
        StringReplace(text, L"a", L"aa");
        return Tour::Result{text, text == L"aaaaaa"};
    });
    tour.Step(L"StringMulitSplit of ,a,,b;c,", [] {
        std::vector<std::wstring> pieces;
        StringMulitSplit(L",a,,b;c,", L",;", pieces);
        return Tour::Result{Joined(pieces), pieces.size() == 3};
    });
    tour.Step(L"StringSplitLeftRight of key=val=x", [] {
        std::wstring left;
        std::wstring right;
        const bool found = StringSplitLeftRight(L"key=val=x", L"=", left, right);
        return Tour::Result{Joined({left, right}), found && left == L"key" && right == L"val=x"};
    });
    tour.Step(L"StringSplitBySize of abcde, 1", [] {
        std::vector<std::wstring> pieces;
        StringSplitBySize(L"abcde", 1, pieces);
        return Tour::Result{Joined(pieces), pieces == std::vector<std::wstring>{L"ab", L"cd", L"e"}};
    });
    tour.Step(L"CBase64, there and back", [] {
        const std::string encoded = CBase64::Encode(UnicodeToUTF8(L"齿轮 gear"));
        std::string decoded;
        CBase64::DecodeEx(encoded, decoded);
        return Tour::Result{AnsiToUnicode(encoded), UTF8ToUnicode(decoded) == L"齿轮 gear"};
    });
    tour.Step(L"BuildMd5Code of abc", [] {
        std::wstring digest;
        BuildMd5Code(std::wstring(L"abc"), digest);
        return Tour::Result{digest, digest == L"900150983cd24fb0d6963f7d28e17f72"};
    });
    tour.Step(L"ALargeB of 1.10 and 1.9", [] {
        const int order = ALargeB(L"1.10", L"1.9");
        return Tour::Result{std::to_wstring(order) + L", the first is larger", order == 1};
    });
}
