#include "libraries/dunmere/change_map.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/fnv.h"

namespace {

// The checksums of the texts below were computed with another program.
constexpr const char* kMapText =
    "DunmereMap 1\n"
    "[contact pim]\n"
    "0A0B\t0\t3155760000\n"
    "0C\t2\t0\n"
    "\\u0020x\\u005C\\uD800\t1\t0\n"
    "[calendar pim]\n"
    "checksum AF149A83333E24B7\n";
constexpr const char* kEmptyText = "DunmereMap 1\nchecksum 570365F4155B0442\n";

ChangeMap ExampleMap() {
    ChangeMap map;
    map.ItemsOf(WIDE("contact"), WIDE("pim")) = {
        {WIDE("0A0B"), {kDateValid, 3155760000}},
        {WIDE("0C"), {kDateNull, 0}},
        {CString(WideView(WIDE(" x\\\xD800"))), {kDateInvalid, 0}},
    };
    (void)map.ItemsOf(WIDE("calendar"), WIDE("pim"));
    return map;
}

/// A text with the checksum that belongs to it.
std::string WithChecksum(const std::string& text) {
    char line[32];
    (void)std::snprintf(line, sizeof(line), "checksum %016llX\n",
                        static_cast<unsigned long long>(Fnv1a(std::string_view(text))));
    return text + line;
}

MapState StateOf(std::string_view text) {
    ChangeMap map;
    return ReadMap(text, map);
}

TEST(Fnv1a, GivesThePublishedValues) {
    EXPECT_EQ(Fnv1a(std::string_view("")), 0xCBF29CE484222325U);
    EXPECT_EQ(Fnv1a(std::string_view("a")), 0xAF63DC4C8601EC8CU);
    EXPECT_EQ(Fnv1a(std::string_view("foobar")), 0x85944171F73967E8U);
}

TEST(ChangeMap, IsWrittenCharacterForCharacter) {
    EXPECT_EQ(WriteMap(ExampleMap()), kMapText);
    EXPECT_EQ(WriteMap(ChangeMap()), kEmptyText);
}

TEST(ChangeMap, IsReadBackAsItWas) {
    ChangeMap map;
    ASSERT_EQ(ReadMap(kMapText, map), MapState::kGood);
    ASSERT_EQ(map.sections.size(), 2U);
    EXPECT_EQ(map.sections[0].kind, WIDE("contact"));
    EXPECT_EQ(map.sections[0].domain, WIDE("pim"));
    EXPECT_EQ(map.sections[0].items, ExampleMap().sections[0].items);
    EXPECT_EQ(map.sections[1].kind, WIDE("calendar"));
    EXPECT_TRUE(map.sections[1].items.empty());
    EXPECT_EQ(StateOf(kEmptyText), MapState::kGood);
}

TEST(ChangeMap, IdentifiersThatLookLikeLinesOfTheFormatAreReadBack) {
    ChangeMap written;
    for (const wide* id : {WIDE("[contact pim]"), WIDE("checksum 0"), WIDE("\n"), WIDE("\t"),
                           WIDE("DunmereMap 1"), WIDE("\\u0041"), WIDE("["), WIDE("[]")}) {
        written.ItemsOf(WIDE("a b]"), WIDE("")).push_back({id, {}});
    }
    ChangeMap read;
    ASSERT_EQ(ReadMap(WriteMap(written), read), MapState::kGood);
    EXPECT_EQ(read.ItemsOf(WIDE("a b]"), WIDE("")), written.sections[0].items);
    EXPECT_EQ(read.sections.size(), 1U);
}

TEST(ChangeMap, EveryTruncationIsDamaged) {
    const std::string_view text = kMapText;
    for (std::size_t length = 0; length < text.size(); ++length) {
        EXPECT_EQ(StateOf(text.substr(0, length)), MapState::kDamaged) << length;
    }
}

TEST(ChangeMap, EveryChangeOfOneByteIsDamagedOrALaterVersion) {
    const std::string text = kMapText;
    for (std::size_t place = 0; place < text.size(); ++place) {
        for (int value = 0; value < 256; ++value) {
            std::string changed = text;
            changed[place] = static_cast<char>(value);
            const bool laterVersion =
                changed.starts_with("DunmereMap ") && changed[11] >= '2' && changed[11] <= '9';
            if (changed != text) {
                EXPECT_EQ(StateOf(changed), laterVersion ? MapState::kNewer : MapState::kDamaged)
                    << place << ' ' << value;
            }
        }
    }
}

TEST(ChangeMap, EveryInsertedByteIsDamagedOrALaterVersion) {
    const std::string text = kMapText;
    for (std::size_t place = 0; place <= text.size(); ++place) {
        for (const char value : {'\0', '\n', '\r', '0', ' ', 'x'}) {
            std::string changed = text;
            changed.insert(place, 1, value);
            EXPECT_NE(StateOf(changed), MapState::kGood) << place << ' ' << value;
        }
    }
}

TEST(ChangeMap, LaterVersionsAreToldFromDamage) {
    EXPECT_EQ(StateOf("DunmereMap 2\nwhatever that may be"), MapState::kNewer);
    EXPECT_EQ(StateOf("DunmereMap 4294967295\n"), MapState::kNewer);
    EXPECT_EQ(StateOf("DunmereMap 4294967296\n"), MapState::kDamaged);
    EXPECT_EQ(StateOf("DunmereMap 0\n"), MapState::kDamaged);
    EXPECT_EQ(StateOf("DunmereMap -2\n"), MapState::kDamaged);
    EXPECT_EQ(StateOf("DunmereMap 2"), MapState::kDamaged);
}

TEST(ChangeMap, TextsThatWouldBeWrittenOtherwiseAreDamagedWhateverTheirChecksum) {
    for (const char* lines : {
             "[contact pim]\n1\t0\t0",       // no line end
             "1\t0\t0\n",                    // an item of no section
             "[contact]\n",                  // no domain
             "[contact pim x]\n",            // too many words
             "[contact pim]\n1\t0\n",        // no seconds
             "[contact pim]\n1\t0\t0\t0\n",  // too many fields
             "[contact pim]\n1\t00\t0\n",    // a number with a zero in front
             "[contact pim]\n1\t0\t-0\n",
             "[contact pim]\n1\t2147483648\t0\n",
             "[contact pim]\n1\t0\t9223372036854775808\n",
             "[contact pim]\n\\u0041\t0\t0\n",  // a unit that stands as it is
             "[contact pim]\n\\u00e9\t0\t0\n",  // digits in lower case
             "[contact pim]\n\\u00E\t0\t0\n",
             "[contact pim]\n\\\t0\t0\n",
             "[contact pim]\n\xC3\xA9\t0\t0\n",
             "\n",
             "[",
             "[\n",
             "checksum 0000000000000000\n",
         }) {
        EXPECT_EQ(StateOf(WithChecksum("DunmereMap 1\n" + std::string(lines))), MapState::kDamaged) << lines;
    }
}

TEST(ChangeMap, ASectionIsOfItsKindAndItsDomain) {
    ChangeMap map = ExampleMap();
    EXPECT_EQ(map.ItemsOf(WIDE("contact"), WIDE("pim")).size(), 3U);
    EXPECT_TRUE(map.ItemsOf(WIDE("contact"), WIDE("other")).empty());
    EXPECT_TRUE(map.ItemsOf(WIDE("other"), WIDE("pim")).empty());
    EXPECT_EQ(map.sections.size(), 4U);
}

TEST(ChangeMap, WhatIsNotGoodLeavesTheMapAsItWas) {
    ChangeMap map = ExampleMap();
    EXPECT_EQ(ReadMap("", map), MapState::kDamaged);
    EXPECT_EQ(ReadMap(WithChecksum("DunmereMap 1\n[x y]\n1\t0\n"), map), MapState::kDamaged);
    EXPECT_EQ(WriteMap(map), kMapText);
}

TEST(ChangeTime, IsComparedToTheSecond) {
    // 2020-01-01 12:00:00 is day 43831.5.
    EXPECT_EQ(ChangeTimeOf({43831.5, kDateValid}), (ChangeTime{kDateValid, 3787041600}));
    EXPECT_EQ(ChangeTimeOf({43831.5 + 0.4 / 86400, kDateValid}).seconds, 3787041600);
    EXPECT_EQ(ChangeTimeOf({43831.5 + 0.6 / 86400, kDateValid}).seconds, 3787041601);
    EXPECT_EQ(ChangeTimeOf({43831.5, kDateNull}), (ChangeTime{kDateNull, 0}));
    EXPECT_EQ(ChangeTimeOf({43831.5, kDateInvalid}), (ChangeTime{kDateInvalid, 0}));
    // -1.5 is noon of 1899-12-29, half a day before the epoch.
    EXPECT_EQ(ChangeTimeOf({-1.5, kDateValid}).seconds, -43200);
}

TEST(ChangeTime, OfADateBeyondAllCalendarsIsInvalid) {
    for (const double date :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity(), 1e300, -1e300, 1e7}) {
        EXPECT_EQ(ChangeTimeOf({date, kDateValid}), (ChangeTime{kDateInvalid, 0})) << date;
    }
}

TEST(ChangeTime, ComesBackAsTheSameDate) {
    for (const double date : {0.0, 43831.5, 2.25, -1.5, -657434.0, 2958465.75}) {
        EXPECT_DOUBLE_EQ(DateOf(ChangeTimeOf({date, kDateValid})).m_dt, date);
    }
    EXPECT_EQ(DateOf({kDateNull, 0}).m_status, kDateNull);
}

}  // namespace
