#include "Kelpkit/SystemInfo.h"

#include <boost/lexical_cast.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

namespace KELPKIT
{

std::wstring GenerateUUID()
{
    // A Mersenne twister, by contract seeded anew in each call; Boost's default generator is another one.
    boost::uuids::random_generator_mt19937 generator;
    return boost::lexical_cast<std::wstring>(generator());
}

} // namespace KELPKIT
