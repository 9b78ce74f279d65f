#include "support/base64.h"

#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <vector>

#include "support/errors.h"

namespace {

std::vector<std::uint8_t> Bytes(std::string_view text) {
    return {text.begin(), text.end()};
}

/// Encodes into a buffer of exactly `capacity` characters that starts as dots. What was not written stays a
/// dot.
struct Encoded {
    int result;
    std::int32_t capacity;
    std::string output;
};

Encoded EncodeInto(std::int32_t capacity, const std::vector<std::uint8_t>& source) {
    Encoded encoded{0, capacity, std::string(static_cast<std::size_t>(capacity), '.')};
    encoded.result = Base64Encode(source.data(), static_cast<std::int32_t>(source.size()),
                                  encoded.output.data(), &encoded.capacity);
    return encoded;
}

std::string Encode(std::string_view text) {
    const Encoded encoded = EncodeInto(64, Bytes(text));
    EXPECT_EQ(encoded.result, 1);
    return encoded.output.substr(0, static_cast<std::size_t>(encoded.capacity));
}

TEST(Base64, EncodesTheVectorsOfRfc4648) {
    EXPECT_EQ(Encode(""), "");
    EXPECT_EQ(Encode("f"), "Zg==");
    EXPECT_EQ(Encode("fo"), "Zm8=");
    EXPECT_EQ(Encode("foo"), "Zm9v");
    EXPECT_EQ(Encode("foob"), "Zm9vYg==");
    EXPECT_EQ(Encode("fooba"), "Zm9vYmE=");
    EXPECT_EQ(Encode("foobar"), "Zm9vYmFy");
}

TEST(Base64, ZeroBytesWriteNothingAndStoreZero) {
    const Encoded encoded = EncodeInto(4, {});
    EXPECT_EQ(encoded.result, 1);
    EXPECT_EQ(encoded.capacity, 0);
    EXPECT_EQ(encoded.output, "....");
}

TEST(Base64, TheSingleByteMGivesTQ) {
    EXPECT_EQ(Encode("\x4D"), "TQ==");
}

TEST(Base64, UsesEveryCharacterOfTheAlphabet) {
    // 48 bytes whose sextets count from 0 to 63.
    std::vector<std::uint8_t> source;
    for (unsigned sextet = 0; sextet < 64; sextet += 4) {
        const unsigned group = sextet << 18 | (sextet + 1) << 12 | (sextet + 2) << 6 | (sextet + 3);
        source.push_back(static_cast<std::uint8_t>(group >> 16));
        source.push_back(static_cast<std::uint8_t>(group >> 8 & 0xFF));
        source.push_back(static_cast<std::uint8_t>(group & 0xFF));
    }
    EXPECT_EQ(EncodeInto(64, source).output,
              "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");
}

TEST(Base64, WritesNoLineBreakWhateverTheLength) {
    const Encoded encoded = EncodeInto(400, std::vector<std::uint8_t>(300, 0));
    EXPECT_EQ(encoded.result, 1);
    EXPECT_EQ(encoded.capacity, 400);
    EXPECT_EQ(encoded.output, std::string(400, 'A'));
}

TEST(Base64, AskedRoomIsWhatTheTextTakesAndOneLessGivesNothing) {
    for (std::int32_t length = 1; length <= 200; ++length) {
        const std::vector<std::uint8_t> source(static_cast<std::size_t>(length), 0xFF);
        const std::int32_t needed = (length + 2) / 3 * 4;

        const Encoded fits = EncodeInto(needed, source);
        EXPECT_EQ(fits.result, 1) << length;
        EXPECT_EQ(fits.capacity, needed) << length;
        EXPECT_THAT(fits.output, testing::Not(testing::HasSubstr("."))) << length;

        const Encoded tooSmall = EncodeInto(needed - 1, source);
        EXPECT_EQ(tooSmall.result, 0) << length;
        EXPECT_EQ(tooSmall.capacity, needed - 1) << length;
        EXPECT_EQ(tooSmall.output, std::string(static_cast<std::size_t>(needed - 1), '.')) << length;
    }
}

TEST(Base64, DoesNotTouchWhatStandsBehindTheText) {
    const Encoded encoded = EncodeInto(10, Bytes("foob"));
    EXPECT_EQ(encoded.capacity, 8);
    EXPECT_EQ(encoded.output, "Zm9vYg==..");
}

TEST(Base64, NullOutputOrCapacityGivesZero) {
    const std::uint8_t source[] = {1, 2, 3};
    char output[4] = {};
    std::int32_t capacity = 4;
    EXPECT_EQ(Base64Encode(source, 3, nullptr, &capacity), 0);
    EXPECT_EQ(Base64Encode(source, 3, output, nullptr), 0);
    EXPECT_EQ(capacity, 4);
    EXPECT_EQ(output[0], '\0');
}

ComErrorCode CodeRaisedFor(std::int32_t length) {
    try {
        char output[4] = {};
        std::int32_t capacity = 4;
        Base64Encode(nullptr, length, output, &capacity);
    } catch (const COleException& exception) {
        return exception.Code();
    }
    return 0;
}

TEST(Base64, LengthWhoseFourfoldDoesNotFitRaises) {
    EXPECT_EQ(CodeRaisedFor(0x20000000), kErrorFail);
    EXPECT_EQ(CodeRaisedFor(INT32_MAX), kErrorFail);
    EXPECT_EQ(CodeRaisedFor(-1), kErrorFail);
}

TEST(Base64, LargestLengthThatFitsIsOnlyTooLargeForTheBuffer) {
    EXPECT_EQ(CodeRaisedFor(0x1FFFFFFF), 0);
}

}  // namespace
