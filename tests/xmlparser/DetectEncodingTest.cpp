#include "Encoding.h"

#include <gtest/gtest.h>

#include <optional>
#include <string_view>

using namespace std::string_view_literals;
using xmlparser::ByteOrderMark;
using xmlparser::DetectEncoding;
using xmlparser::Encoding;

TEST(ByteOrderMark, IsUnicodesInEachOfItsEncodings)
{
    EXPECT_EQ(ByteOrderMark(Encoding::kUtf8), "\xEF\xBB\xBF");
    EXPECT_EQ(ByteOrderMark(Encoding::kUtf16LittleEndian), "\xFF\xFE");
    EXPECT_EQ(ByteOrderMark(Encoding::kUtf16BigEndian), "\xFE\xFF");
    EXPECT_EQ(ByteOrderMark(Encoding::kGbk), "");
}

TEST(DetectEncoding, TakesTheMarkBeforeTheDeclaration)
{
    const auto utf8 = DetectEncoding("\xEF\xBB\xBF<?xml encoding='gbk'?>");
    ASSERT_TRUE(utf8);
    EXPECT_EQ(utf8->codePage, Encoding::kUtf8);
    EXPECT_TRUE(utf8->hasByteOrderMark);
    EXPECT_EQ(DetectEncoding("\xFF\xFE")->codePage, Encoding::kUtf16LittleEndian);
    EXPECT_EQ(DetectEncoding("\xFE\xFF")->codePage, Encoding::kUtf16BigEndian);
    EXPECT_FALSE(DetectEncoding("<\0"sv)->hasByteOrderMark);
    EXPECT_EQ(DetectEncoding("<\0"sv)->codePage, Encoding::kUtf16LittleEndian);
    EXPECT_EQ(DetectEncoding("\0<"sv)->codePage, Encoding::kUtf16BigEndian);
}

TEST(DetectEncoding, IsUtf8WhereNoEncodingIsDeclared)
{
    for (const std::string_view file :
         {""sv, "<"sv, "<r/>"sv, "<?xml"sv, "<?xml?>"sv, "<?xml version='1.0'?>"sv, "<?xml version='1.0' encoding?>"sv,
          "<?xml encoding"sv, "<?xml version='1.0'?><r encoding='gbk'/>"sv, "<?xmlx encoding='gbk'?>"sv,
          "<?xml encoding=''?>"sv, " <?xml encoding='gbk'?>"sv}) {
        const auto encoding = DetectEncoding(file);
        ASSERT_TRUE(encoding) << file;
        EXPECT_EQ(encoding->codePage, Encoding::kUtf8) << file;
        EXPECT_FALSE(encoding->hasByteOrderMark) << file;
    }
}

TEST(DetectEncoding, IsWhatIsDeclared)
{
    for (const std::string_view file :
         {"<?xml encoding='gbk'?>"sv, "<?xml\tversion=\"1.0\" encoding = \"GBK\" standalone='no'?>"sv,
          "<?xml\nencoding='gBk'"sv, "<?xml\rencoding='gbk"sv})
        EXPECT_EQ(DetectEncoding(file)->codePage, Encoding::kGbk) << file;
    EXPECT_FALSE(DetectEncoding("<?xml encoding='klingon'?>"));
    EXPECT_FALSE(DetectEncoding("<?xml encoding='utf-16'?>")) << "the bytes are none of UTF-16";
}
