#pragma once

// The calls of a desktop program that logs on and reads, and what they bring.

#include <gtest/gtest.h>

#include "tests/wire/command_connection.h"

inline constexpr std::uint16_t kMAPIServerShutdown = 0;
inline constexpr std::uint16_t kMAPISendBackOneContact = 1;
inline constexpr std::uint16_t kMAPISendBackOneCalenda = 2;

inline Bytes Success() {
    return Hex("00 00 00 00");
}
inline Bytes Failure() {
    return Hex("01 00 00 00");
}
/// Two arguments: a text that is ignored, of odd length so that padding follows it, and no map file.
inline Bytes ReadAll() {
    return Hex(
        "03 00 00 00  00 00 00 00  03 00 00 00  61 00 62 00 00 00  00 00"
        "01 00 00 00  00 00 00 00  01 00 00 00  00 00");
}
inline Bytes DefaultProfile() {
    return Hex("01 00 00 00  00 00 00 00  01 00 00 00  00 00");
}

/// The document of a callback, whose stub holds this one text and nothing else.
inline std::wstring Document(const CallPdu& call, std::uint16_t procedure = kMAPISendBackOneContact) {
    EXPECT_EQ(call.procedure, procedure);
    ByteReader reader(call.stub);
    const WireString text = ReadString(reader);
    EXPECT_TRUE(reader.AtEnd());
    EXPECT_EQ(text.maximum, text.units.size());
    EXPECT_EQ(text.offset, 0U);
    EXPECT_EQ(text.units.find(u'\0'), text.units.size() - 1);
    return {text.units.begin(), text.units.end() - 1};
}

inline void LogOn(CommandConnection& connection) {
    ASSERT_EQ(connection.Call(2, DefaultProfile()).stub, Success());
}
