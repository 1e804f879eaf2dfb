#include "support/Fuzz.h"
#include "system/DiskModel.h"
#include "system/IdentifyBlock.h"

using fuzz::Expect;

namespace
{

std::string ModelSwapped(std::string bytes)
{
    bytes += bytes.size() % 2 == 0 ? "" : " ";
    std::string swapped;
    for (std::size_t i = 0; i < bytes.size(); i += 2)
        swapped += {bytes[i + 1], bytes[i]};
    return fuzz::UpToZero(swapped);
}

} // namespace

// The bytes, filled up, are a block, and any text of one.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(data, data + size);
    std::string block = bytes;
    block.resize(512);
    const std::unique_ptr<char[]> exact = fuzz::Exactly(block);
    Expect(KELPKIT::IdentifySerial(exact.get()) == fuzz::UpToZero(block.substr(20, 20)), "the serial number");
    Expect(KELPKIT::IdentifyModel(exact.get()) == fuzz::UpToZero(block.substr(54, 40)), "the model");
    Expect(KELPKIT::SwapPairs(bytes) == ModelSwapped(bytes), "exchanged in pairs");
    return 0;
}
