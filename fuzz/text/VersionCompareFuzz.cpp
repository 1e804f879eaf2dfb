#include "support/Fuzz.h"
#include "text/VersionModel.h"

#include <Kelpkit/Text.h>

#include <fuzzer/FuzzedDataProvider.h>

using fuzz::Expect;
using KELPKIT::ALargeB;

// Three versions, each ended by a backslash with anything behind it but another one.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const std::wstring a = fuzz::Wide(input.ConsumeRandomLengthString());
    const std::wstring b = fuzz::Wide(input.ConsumeRandomLengthString());
    const std::wstring c = fuzz::Wide(input.ConsumeRandomLengthString());
    const int order = ALargeB(a, b);
    Expect(order == test::ModelVersionOrder(a, b), "compared as the model does");
    Expect(ALargeB(a, a) == 0, "a version equals itself");
    Expect(ALargeB(b, a) == -order, "the order is the same from both sides");
    if (order <= 0 && ALargeB(b, c) <= 0)
        Expect(ALargeB(a, c) <= 0, "the order goes on from version to version");
    if (order == 0)
        Expect(ALargeB(a, c) == ALargeB(b, c), "equal versions compare alike");
    return 0;
}
