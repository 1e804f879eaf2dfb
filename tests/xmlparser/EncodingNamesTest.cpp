#include "EncodingNames.h"

#include <gtest/gtest.h>

#include <string_view>

using namespace std::string_view_literals;
using xmlparser::Encoding;
using xmlparser::EncodingNamed;

TEST(EncodingNamed, KnowsNamesAndTheirParts)
{
    const struct {
        std::string_view name;
        unsigned codePage;
        Encoding::Part part;
    } cases[] = {
        {"utf-8", 65001, Encoding::Part::kAll},   {"us-ascii", 65001, Encoding::Part::kAscii},
        {"gb2312", 936, Encoding::Part::kGb2312}, {"gbk", 936, Encoding::Part::kAll},
        {"gb18030", 54936, Encoding::Part::kAll}, {"latin9", 28605, Encoding::Part::kAll},
        {"437", 437, Encoding::Part::kAll},       {"x-x-big5", 950, Encoding::Part::kAll},
    };
    for (const auto& each : cases) {
        const auto encoding = EncodingNamed(each.name);
        ASSERT_TRUE(encoding) << each.name;
        EXPECT_EQ(encoding->codePage, each.codePage) << each.name;
        EXPECT_EQ(encoding->part, each.part) << each.name;
        EXPECT_FALSE(encoding->hasByteOrderMark) << each.name;
    }
}

// Whether there is such a code page is Windows' to say, later.
TEST(EncodingNamed, TakesNumbersOfCodePages)
{
    EXPECT_EQ(EncodingNamed("windows-1252")->codePage, 1252U);
    EXPECT_EQ(EncodingNamed("cp437")->codePage, 437U);
    EXPECT_EQ(EncodingNamed("ibm00866")->codePage, 866U);
    EXPECT_EQ(EncodingNamed("x-cp99999")->codePage, 99999U);
    for (const std::string_view name : {"iso-8859-2"sv, "iso8859-2"sv, "iso88592"sv, "iso_8859-2"sv})
        EXPECT_EQ(EncodingNamed(name)->codePage, 28592U) << name;
    EXPECT_EQ(EncodingNamed("iso-8859-11")->codePage, 874U) << "not by its number";
}

TEST(EncodingNamed, RefusesNumbersThatAreNone)
{
    for (const std::string_view name :
         {"cp"sv, "cp436"sv, "cp0"sv, "cp-1252"sv, "cp+1252"sv, "cp 1252"sv, "cp1252 "sv, "cp125a"sv, "cp123456"sv,
          "cp4294967733"sv, "cp1252\0"sv, "windows1252"sv, "1252"sv})
        EXPECT_FALSE(EncodingNamed(name)) << name;
}

TEST(EncodingNamed, RefusesOtherNames)
{
    for (const std::string_view name : {""sv, "klingon"sv, "UTF-8"sv, "utf-8\0"sv, "utf-16"sv, "utf-16le"sv, "ucs-2"sv,
                                        "big5-hkscs"sv, "gb"sv, "gbk2"sv})
        EXPECT_FALSE(EncodingNamed(name)) << name;
}
