#pragma once

#include <cstdlib>
#include <ctime>

namespace test
{

// The time zone of this process from now on, as the environment variable TZ has it: "CST-8", "EST5EDT", "UTC0".
//
// There is no way back to that of the system: once Wine has read it, its rules of daylight saving stay, whatever zone
// follows. So a test in which local time counts says where it is before anything else.
inline void SetTimeZone(const char* zone)
{
    ::_putenv_s("TZ", zone);
    ::_tzset();
}

} // namespace test
