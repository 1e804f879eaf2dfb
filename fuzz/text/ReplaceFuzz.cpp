#include "support/Fuzz.h"
#include "text/StringsModel.h"

#include <Kelpkit/Text.h>

#include <fuzzer/FuzzedDataProvider.h>

using fuzz::Expect;

namespace
{

// A longer text, put in for each of its characters, takes most of the time.
constexpr std::size_t kLongestReplacedByItself = 64;

// More than the buffer behind the replacement holds.
constexpr std::size_t kEnough = 1100;

template <class Text>
void Replace(const Text& text, const Text& pattern, const Text& replacement)
{
    const Text expected = test::SlowlyReplaced(text, pattern, replacement);
    Text replaced = text;
    KELPKIT::StringReplace(replaced, pattern, replacement);
    Expect(replaced == expected, "replaced as one hit at a time");

    replaced = text;
    KELPKIT::StringReplace(replaced, replaced, replacement);
    Expect(replaced == (text.empty() ? text : replacement), "the text itself is the pattern");
    if (text.size() > kLongestReplacedByItself)
        return;
    replaced = text;
    KELPKIT::StringReplace(replaced, pattern, replaced);
    Expect(replaced == test::SlowlyReplaced(text, pattern, text), "the text itself is the replacement");
}

} // namespace

// Pattern, replacement and text, each ended by a backslash with anything behind it but another one. A last byte over 240
// repeats the replacement, which takes time.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    int times = input.ConsumeIntegralInRange(0, 255) - 240;
    const std::string pattern = input.ConsumeRandomLengthString();
    const std::string part = input.ConsumeRandomLengthString();
    std::string replacement = part;
    while (times-- > 0 && replacement.size() < kEnough)
        replacement += part;
    const std::string text = input.ConsumeRemainingBytesAsString();
    Replace(text, pattern, replacement);
    Replace(fuzz::Wide(text), fuzz::Wide(pattern), fuzz::Wide(replacement));
    return 0;
}
