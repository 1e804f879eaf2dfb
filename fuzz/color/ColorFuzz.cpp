#include "color/ColorModel.h"
#include "support/Fuzz.h"

#include <Kelpkit/Color.h>

using fuzz::Expect;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::wstring text = fuzz::Wide({data, data + size});
    const unsigned long color = KELPKIT::RGBColorToREF(text);
    Expect(color == test::ModelRGBColorToREF(text), "R,G,B is read as the model does");
    Expect(KELPKIT::RGBColorToREF(KELPKIT::REFColorToRGB(color)) == color, "a colour makes the round trip");
    Expect(KELPKIT::HexColorToREF(text) == test::ModelHexColorToREF(text), "digits are read as the model does");
    return 0;
}
