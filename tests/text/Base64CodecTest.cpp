#include "text/Base64Codec.h"
#include "support/GuardedBuffer.h"
#include "text/Base64Model.h"
#include "text/WayName.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

using namespace KELPKIT;
using test::GuardedBuffer;
using test::ModelDecode;
using test::ModelEncode;

namespace
{

class Base64Codec : public testing::TestWithParam<base64::Way>
{
protected:
    void SetUp() override
    {
        if (GetParam().needed > processor::Best())
            GTEST_SKIP() << "this processor lacks it";
    }

    // From memory that ends with the data to memory that ends with the text.
    std::string Encoded(const std::string& data) const
    {
        char* const from = m_in.Last(data.size());
        std::copy(data.begin(), data.end(), from);
        const std::size_t size = base64::EncodedSize(data.size());
        char* const to = m_out.Last(size + 1);
        to[0] = kUntouched;
        std::fill_n(to + 1, size, base64::kPadding);
        base64::Encode(GetParam().blocks, {from, data.size()}, to + 1);
        EXPECT_EQ(to[0], kUntouched);
        return {to + 1, size};
    }

    void ExpectDecodedInPlace(const std::string& text) const
    {
        const std::string data = ModelDecode(text);
        std::string memory = text + std::string(4, kUntouched);
        ASSERT_EQ(base64::Decode(GetParam().blocks, {memory.data(), text.size()}, memory.data()), data.size());
        ASSERT_EQ(memory.substr(0, data.size() + 1), data + '\0') << testing::PrintToString(text);
    }

    // From memory that ends with the text to memory that ends with the zero byte, and then to memory that goes on, where
    // what must not be touched is looked at.
    void ExpectDecoded(const std::string& text) const
    {
        char* const from = m_in.Last(text.size());
        std::copy(text.begin(), text.end(), from);
        const std::string data = ModelDecode(text);
        for (const std::size_t behind : {0U, 64U}) {
            char* const to = m_out.Last(data.size() + 1 + behind);
            std::fill_n(to - 1, data.size() + 2 + behind, kUntouched);
            ASSERT_EQ(base64::Decode(GetParam().blocks, {from, text.size()}, to), data.size());
            ASSERT_EQ(std::string(to - 1, data.size() + 2 + behind),
                      kUntouched + data + '\0' + std::string(behind, kUntouched))
                << testing::PrintToString(text);
        }
    }

private:
    static constexpr char kUntouched = '\x5A';

    GuardedBuffer m_in{1024};
    GuardedBuffer m_out{1024};
};

INSTANTIATE_TEST_SUITE_P(Ways, Base64Codec, testing::ValuesIn(base64::kWays), test::WayName<base64::Way>);

} // namespace

TEST_P(Base64Codec, EncodesEveryLengthAsTheModelDoes)
{
    test::Base64Random random(1);
    for (std::size_t length = 0; length <= 300; ++length) {
        for (int round = 0; round < 100; ++round) {
            const std::string data = random.Bytes(length);
            ASSERT_EQ(Encoded(data), ModelEncode(data)) << testing::PrintToString(data);
        }
    }
}

TEST_P(Base64Codec, DecodesEveryLengthAsTheModelDoes)
{
    test::Base64Random random(2);
    for (std::size_t length = 0; length <= 300; ++length) {
        for (int round = 0; round < 30; ++round) {
            ASSERT_NO_FATAL_FAILURE(ExpectDecoded(ModelEncode(random.Bytes(length))));
            ASSERT_NO_FATAL_FAILURE(ExpectDecoded(ModelEncode(random.Bytes(300)).substr(0, length)));
            ASSERT_NO_FATAL_FAILURE(ExpectDecoded(random.AlmostText(length)));
        }
    }
}

TEST_P(Base64Codec, DecodesEveryKindOfTextAsTheModelDoes)
{
    test::Base64Random random(3);
    for (int round = 0; round < 100000; ++round)
        ASSERT_NO_FATAL_FAILURE(ExpectDecoded(random.Text()));
}

TEST_P(Base64Codec, DecodesInPlace)
{
    test::Base64Random random(4);
    for (int round = 0; round < 100000; ++round)
        ASSERT_NO_FATAL_FAILURE(ExpectDecodedInPlace(random.Text()));
}

TEST_P(Base64Codec, DecodesEveryCharacterInEveryPlaceAsTheModelDoes)
{
    for (int value = 0; value < 256; ++value) {
        for (std::size_t place = 0; place < 160; ++place) {
            std::string text(160, 'k');
            text[place] = static_cast<char>(value);
            ASSERT_NO_FATAL_FAILURE(ExpectDecoded(text));
        }
    }
}

TEST_P(Base64Codec, EncodesEveryByteInEveryPlaceAsTheModelDoes)
{
    for (int value = 0; value < 256; ++value) {
        for (std::size_t place = 0; place < 120; ++place) {
            std::string data(120, '\x33');
            data[place] = static_cast<char>(value);
            ASSERT_EQ(Encoded(data), ModelEncode(data));
        }
    }
}
