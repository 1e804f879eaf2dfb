#include "support/Fuzz.h"
#include "text/StringsModel.h"

#include <Kelpkit/Text.h>

#include <fuzzer/FuzzedDataProvider.h>

#include <vector>

using fuzz::Expect;
using Pieces = std::vector<std::wstring>;

namespace
{

void SplitAtEach(const std::wstring& source, const std::wstring& delimiters)
{
    const std::wstring set = fuzz::UpToZero(delimiters);
    Pieces expected = {L""};
    for (const wchar_t unit : fuzz::UpToZero(source)) {
        if (set.find(unit) == set.npos)
            expected.back() += unit;
        else if (!expected.back().empty())
            expected.emplace_back();
    }
    if (expected.back().empty())
        expected.pop_back();
    Pieces pieces = {L"what was there before"};
    KELPKIT::StringMulitSplit(source, delimiters, pieces);
    Expect(pieces == expected, "split at each delimiter");
}

template <class Text>
void SplitAtFirst(const Text& source, const Text& separator)
{
    Text left;
    Text right;
    const bool isSplit = KELPKIT::StringSplitLeftRight(source, separator, left, right);
    Expect(isSplit == (source.find(separator) != source.npos), "split where the separator occurs");
    if (!isSplit)
        return;
    Expect(left + separator + right == source, "nothing is lost");
    Expect((left + separator).find(separator) == left.size(), "split at the first");
}

void SplitBySize(const std::wstring& source, int width)
{
    Pieces pieces;
    KELPKIT::StringSplitBySize(source, width, pieces);
    Expect(pieces == test::SlowlySplitBySize(source, width), "split by size as the model does");
}

} // namespace

// Delimiters, ended by a backslash with anything behind it but another one, and the source; the last byte is the width.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const int width = input.ConsumeIntegralInRange(-1, 254);
    const std::string delimiters = input.ConsumeRandomLengthString();
    const std::string source = input.ConsumeRemainingBytesAsString();
    SplitAtEach(fuzz::Wide(source), fuzz::Wide(delimiters));
    SplitAtFirst(source, delimiters);
    SplitAtFirst(fuzz::Wide(source), fuzz::Wide(delimiters));
    SplitBySize(fuzz::Wide(source), width);
    return 0;
}
