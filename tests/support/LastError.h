#pragma once

#include <string>

namespace test
{

// The last Windows error of this thread in words, for messages of failed expectations:
//
//     EXPECT_TRUE(::CopyFileW(from, to, TRUE)) << LastErrorText();
std::string LastErrorText();

} // namespace test
