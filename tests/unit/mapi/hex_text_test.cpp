#include "mapi/hex_text.h"

#include <gtest/gtest.h>

#include "tests/unit/text_printer.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(BinaryToHexString, WritesTwoUpperCaseCharactersAByte) {
    const std::uint8_t bytes[] = {0x00, 0xAB};
    EXPECT_EQ(BinaryToHexString(bytes, 2), WIDE("00AB"));
}

TEST(BinaryToHexString, WritesEveryByteHighNibbleFirst) {
    const std::uint8_t bytes[] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF, 0xFF};
    EXPECT_EQ(BinaryToHexString(bytes, 9), WIDE("0123456789ABCDEFFF"));
}

TEST(BinaryToHexString, IsEmptyForNullAndForNoBytes) {
    const std::uint8_t byte = 1;
    EXPECT_EQ(BinaryToHexString(nullptr, 4), WIDE(""));
    EXPECT_EQ(BinaryToHexString(&byte, 0), WIDE(""));
}

TEST(HexStringToBinary, ReadsBothLetterCases) {
    EXPECT_EQ(HexStringToBinary(WIDE("00abCDef")), (Bytes{0x00, 0xAB, 0xCD, 0xEF}));
}

TEST(HexStringToBinary, OneCharacterGivesNothing) {
    EXPECT_TRUE(HexStringToBinary(WIDE("A")).empty());
    EXPECT_TRUE(HexStringToBinary(WIDE("")).empty());
}

TEST(HexStringToBinary, CountsThePrefixAndLeavesTheLastByteAlone) {
    EXPECT_EQ(HexStringToBinary(WIDE("0x0A")), (Bytes{0x0A, 0x00}));
    EXPECT_EQ(HexStringToBinary(WIDE("0X0A0B")), (Bytes{0x0A, 0x0B, 0x00}));
}

TEST(HexStringToBinary, PassesOverALetterXInFront) {
    EXPECT_EQ(HexStringToBinary(WIDE("x0A")), (Bytes{0x0A}));
    EXPECT_EQ(HexStringToBinary(WIDE("X0A0")), (Bytes{0x0A, 0x00}));
}

TEST(HexStringToBinary, XInSecondPlaceWinsOverXInFirst) {
    EXPECT_EQ(HexStringToBinary(WIDE("xx0A")), (Bytes{0x0A, 0x00}));
}

TEST(HexStringToBinary, DropsAnOddLastCharacter) {
    EXPECT_EQ(HexStringToBinary(WIDE("0A1")), (Bytes{0x0A}));
}

TEST(HexStringToBinary, InvalidPairsGiveZeroOrTheirFirstDigit) {
    EXPECT_EQ(HexStringToBinary(WIDE("ZZ1Z Z-12Z")), (Bytes{0x00, 0x01, 0x00, 0x00, 0x02}));
    // The characters beside those of the digits.
    EXPECT_EQ(HexStringToBinary(WIDE("1/1:1@1G1`1g")), (Bytes{0x01, 0x01, 0x01, 0x01, 0x01, 0x01}));
}

TEST(HexStringToBinary, UndoesBinaryToHexStringForEveryByte) {
    Bytes bytes(256);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(i);
    }
    EXPECT_EQ(HexStringToBinary(BinaryToHexString(bytes.data(), bytes.size())), bytes);
}

}  // namespace
