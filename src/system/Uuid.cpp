#include "Kelpkit/SystemInfo.h"

#include "WindowsApi.h"

#include <bcrypt.h>
#include <boost/uuid/entropy_error.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <cstddef>
#include <cstdint>
#include <random>

namespace KELPKIT
{
namespace
{

// Seeds an engine with the system's random numbers. Boost's own seeding, and the exceptions of it, differ between its
// releases.
struct SystemSeed {
    using result_type = std::uint32_t;

    template <class Word>
    static void generate(Word* begin, const Word* end)
    {
        const auto size = static_cast<ULONG>(static_cast<std::size_t>(end - begin) * sizeof(Word));
        const NTSTATUS status =
            ::BCryptGenRandom(nullptr, reinterpret_cast<PUCHAR>(begin), size, BCRYPT_USE_SYSTEM_PREFERRED_RNG);
        if (status < 0)
            throw boost::uuids::entropy_error(status, "BCryptGenRandom");
    }
};

} // namespace

std::wstring GenerateUUID()
{
    SystemSeed seed;
    std::mt19937 engine(seed);
    return boost::uuids::to_wstring(boost::uuids::basic_random_generator<std::mt19937>(engine)());
}

} // namespace KELPKIT
