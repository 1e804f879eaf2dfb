#include "system/IdentifyBlock.h"

#include "support/GuardedBuffer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using namespace KELPKIT;

namespace
{

// A block with a text at a place, and "#" everywhere else.
std::string Block(std::size_t place, const std::string& text)
{
    std::string block(512, '#');
    return block.replace(place, text.size(), text);
}

} // namespace

TEST(IdentifyBlock, HasTheSerialInBytes20To39)
{
    EXPECT_EQ(IdentifySerial(Block(20, "0123456789abcdefghij").data()), "0123456789abcdefghij");
}

TEST(IdentifyBlock, HasTheModelInBytes54To93)
{
    const std::string model = "0123456789abcdefghijklmnopqrstuvwxyzABCD";
    EXPECT_EQ(IdentifyModel(Block(54, model).data()), model);
}

TEST(IdentifyBlock, LeavesTheCharactersOfEachWordAsTheyStand)
{
    EXPECT_EQ(IdentifyModel(Block(54, "TS0100MD00 3                            ").data()),
              "TS0100MD00 3                            ");
    EXPECT_EQ(IdentifySerial(Block(20, "   DWW-CC4C1N432567 ").data()), "   DWW-CC4C1N432567 ");
}

TEST(IdentifyBlock, EndsATextAtItsFirstZero)
{
    EXPECT_EQ(IdentifySerial(Block(20, std::string("ab\0cd\0", 6)).data()), "ab");
    EXPECT_EQ(IdentifySerial(Block(20, std::string(20, '\0')).data()), "");
    EXPECT_EQ(IdentifyModel(Block(54, std::string(40, '\0')).data()), "");
}

TEST(IdentifyBlock, EndsATextAtItsLastByteWhereNoZeroStands)
{
    EXPECT_EQ(IdentifySerial(Block(0, "").data()), std::string(20, '#'));
    EXPECT_EQ(IdentifyModel(Block(0, "").data()), std::string(40, '#'));
}

TEST(IdentifyBlock, IsReadUpToItsEndAtMost)
{
    const test::GuardedBuffer buffer(512);
    std::memset(buffer.Last(512), 'x', 512);
    EXPECT_EQ(IdentifySerial(buffer.Last(512)), std::string(20, 'x'));
    EXPECT_EQ(IdentifyModel(buffer.Last(512)), std::string(40, 'x'));
}

TEST(IdentifyBlock, KeepsBytesOfEveryValue)
{
    EXPECT_EQ(IdentifySerial(Block(20, "\x01\x7F\x80\xD6\xD0\xFF").data()).substr(0, 6), "\x01\x7F\x80\xD6\xD0\xFF");
}
