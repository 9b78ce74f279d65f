#include "timezone/zone_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "support/errors.h"
#include "tests/unit/text_printer.h"
#include "tests/unit/timezone/handle_count.h"
#include "tests/unit/timezone/zone_registry.h"

namespace {

using NAMESPACE_COMMON::tagZebTimeZone;

constexpr SYSTEMTIME kNovember{0, 11, 0, 1, 2, 0, 0, 0};
constexpr SYSTEMTIME kMarch{0, 3, 0, 2, 2, 0, 0, 0};
constexpr ZoneBytes kPacific{480, 0, -60, kNovember, kMarch};

/// What the platform would say of a machine in a zone of the test's registry.
TIME_ZONE_INFORMATION MachineIn(const wchar_t* standardName, const ZoneBytes& rules) {
    TIME_ZONE_INFORMATION information{};
    std::copy_n(standardName, std::min<std::size_t>(std::wcslen(standardName), 32), information.StandardName);
    information.Bias = rules.bias;
    information.StandardBias = rules.standardBias;
    information.DaylightBias = rules.daylightBias;
    information.StandardDate = rules.standardDate;
    information.DaylightDate = rules.daylightDate;
    return information;
}

std::vector<CString> Names(const TimeZoneTable& table) {
    std::vector<CString> names;
    for (const tagZebTimeZone& zone : table) {
        names.push_back(zone.Display);
    }
    return names;
}

class ZoneTable : public testing::Test {
  protected:
    ZoneRegistry m_registry;
    TimeZoneTable m_table;
};

TEST_F(ZoneTable, HoldsTheZonesInTheOrderOfTheRegistry) {
    m_registry.AddZone(L"B", kPacific);
    m_registry.AddZone(L"A", {});
    ASSERT_EQ(LoadTimeZones(m_table), 1);
    // A registry lists its keys by name.
    EXPECT_EQ(Names(m_table), (std::vector<CString>{L"Display of A", L"Display of B"}));
    const tagZebTimeZone& zone = m_table[1];
    EXPECT_EQ(zone.Std, L"Std of B");
    EXPECT_EQ(zone.Dlt, L"Dlt of B");
    EXPECT_EQ(zone.Bias, 480);
    EXPECT_EQ(zone.StandardBias, 0);
    EXPECT_EQ(zone.DaylightBias, -60);
    EXPECT_TRUE(SameFields(zone.StandardDate, kNovember));
    EXPECT_TRUE(SameFields(zone.DaylightDate, kMarch));
}

TEST_F(ZoneTable, RegistryWithoutAListOfZonesGivesNone) {
    EXPECT_EQ(LoadTimeZones(m_table), 0);
    EXPECT_TRUE(m_table.IsEmpty());
    tagZebTimeZone zone;
    zone.Display = L"before";
    EXPECT_EQ(FindTimeZoneInRegistry(MachineIn(L"Std of A", kPacific), zone), 0);
    EXPECT_EQ(zone.Display, L"");
}

TEST_F(ZoneTable, EmptyListOfZonesIsReadyAndReadAgain) {
    (void)m_registry.MakeKey();
    EXPECT_EQ(LoadTimeZones(m_table), 1);
    EXPECT_TRUE(m_table.IsEmpty());
    m_registry.AddZone(L"A", kPacific);
    EXPECT_EQ(LoadTimeZones(m_table), 1);
    EXPECT_EQ(m_table.GetSize(), 1U);
}

TEST_F(ZoneTable, FilledTableIsNotReadAgain) {
    m_registry.AddZone(L"A", kPacific);
    ASSERT_EQ(LoadTimeZones(m_table), 1);
    m_registry.AddZone(L"B", kPacific);
    EXPECT_EQ(LoadTimeZones(m_table), 1);
    EXPECT_EQ(m_table.GetSize(), 1U);
}

TEST_F(ZoneTable, KeyThatLacksAValueIsPassedOverAndTheWalkGoesOn) {
    for (const wchar_t* const value : {L"TZI", L"Dlt", L"Std", L"Display"}) {
        m_registry.AddZone(std::wstring(L"B without ") + value, kPacific);
        m_registry.RemoveValue(std::wstring(L"B without ") + value, value);
    }
    m_registry.AddZone(L"A", kPacific);
    m_registry.AddZone(L"C", kPacific);
    ASSERT_EQ(LoadTimeZones(m_table), 1);
    EXPECT_EQ(Names(m_table), (std::vector<CString>{L"Display of A", L"Display of C"}));
}

TEST_F(ZoneTable, IndexOutsideRaisesInvalidArgument) {
    EXPECT_THROW((void)m_table[0], CInvalidArgException);
    m_registry.AddZone(L"A", kPacific);
    ASSERT_EQ(LoadTimeZones(m_table), 1);
    EXPECT_THROW((void)m_table[1], CInvalidArgException);
    EXPECT_THROW((void)m_table[static_cast<std::size_t>(-1)], CInvalidArgException);
}

TEST_F(ZoneTable, EachZoneReadLeavesItsKeyOpenAndNothingElse) {
    for (const wchar_t* const name : {L"A", L"B", L"C", L"D", L"E"}) {
        m_registry.AddZone(name, kPacific);
    }
    m_registry.RemoveValue(L"E", L"TZI");
    // Once before counting, for what the platform opens at its first use.
    TimeZoneTable warm;
    LoadTimeZones(warm);

    const std::size_t before = OpenHandles();
    LoadTimeZones(m_table);
    EXPECT_EQ(OpenHandles(), before + 5);
    LoadTimeZones(m_table);
    EXPECT_EQ(OpenHandles(), before + 5);
    // A search ends at the zone that it finds.
    tagZebTimeZone zone;
    ASSERT_EQ(FindTimeZoneInRegistry(MachineIn(L"Std of C", kPacific), zone), 1);
    EXPECT_EQ(OpenHandles(), before + 5 + 3);
    ASSERT_EQ(FindTimeZoneInRegistry(MachineIn(L"Std of Z", kPacific), zone), 0);
    EXPECT_EQ(OpenHandles(), before + 5 + 3 + 5);
}

class ZoneKey : public ZoneTable {
  protected:
    int Read(const wchar_t* name, tagZebTimeZone& zone) const {
        return ReadTimeZoneKey(m_registry.MakeKey().Get(), name, zone);
    }
};

TEST_F(ZoneKey, KeyThatIsNotThereEmptiesTheZone) {
    m_registry.AddZone(L"A", kPacific);
    tagZebTimeZone zone;
    ASSERT_EQ(Read(L"A", zone), 1);
    ASSERT_EQ(zone.Bias, 480);
    EXPECT_EQ(Read(L"B", zone), 0);
    EXPECT_EQ(zone.Display, L"");
    EXPECT_EQ(zone.Std, L"");
    EXPECT_EQ(zone.Dlt, L"");
    EXPECT_EQ(zone.Bias, 0);
    EXPECT_FALSE(zone.HasDaylightRule());
}

TEST_F(ZoneKey, WhatWasReadBeforeAMissingValueStays) {
    m_registry.AddZone(L"A", kPacific);
    m_registry.RemoveValue(L"A", L"Dlt");
    tagZebTimeZone zone;
    EXPECT_EQ(Read(L"A", zone), 0);
    EXPECT_EQ(zone.Display, L"Display of A");
    EXPECT_EQ(zone.Std, L"Std of A");
    EXPECT_EQ(zone.Dlt, L"");
    EXPECT_EQ(zone.Bias, 0);
}

TEST_F(ZoneKey, TypesOfTheValuesAreNotLookedAt) {
    m_registry.AddZone(L"A", kPacific);
    const RegistryKey key = m_registry.MakeKey(L"A");
    ZoneRegistry::SetValue(key.Get(), L"Display", REG_BINARY, L"bytes", 10);
    ZoneRegistry::SetValue(key.Get(), L"Std", REG_DWORD, L"ab", 4);
    ZoneRegistry::SetValue(key.Get(), L"TZI", REG_SZ, &kPacific, sizeof(kPacific));
    tagZebTimeZone zone;
    ASSERT_EQ(Read(L"A", zone), 1);
    EXPECT_EQ(zone.Display, L"bytes");
    EXPECT_EQ(zone.Std, L"ab");
    EXPECT_EQ(zone.Bias, 480);
    EXPECT_TRUE(SameFields(zone.DaylightDate, kMarch));
}

TEST_F(ZoneKey, RulesThatAreTooShortAreZeroBehindTheirEndAndLongerOnesAreCut) {
    m_registry.AddZone(L"A", kPacific);
    const RegistryKey key = m_registry.MakeKey(L"A");
    ZoneRegistry::SetValue(key.Get(), L"TZI", REG_BINARY, &kPacific, 28);
    tagZebTimeZone zone;
    ASSERT_EQ(Read(L"A", zone), 1);
    EXPECT_EQ(zone.Bias, 480);
    EXPECT_TRUE(SameFields(zone.StandardDate, kNovember));
    EXPECT_FALSE(zone.HasDaylightRule());

    ZoneRegistry::SetValue(key.Get(), L"TZI", REG_BINARY, nullptr, 0);
    ASSERT_EQ(Read(L"A", zone), 1);
    EXPECT_EQ(zone.Bias, 0);

    std::array<char, 1024> bytes{};
    bytes.fill('\xFF');
    std::memcpy(bytes.data(), &kPacific, sizeof(kPacific));
    ZoneRegistry::SetValue(key.Get(), L"TZI", REG_BINARY, bytes.data(), bytes.size());
    ASSERT_EQ(Read(L"A", zone), 1);
    EXPECT_EQ(zone.Bias, 480);
    EXPECT_TRUE(SameFields(zone.DaylightDate, kMarch));
}

TEST_F(ZoneKey, TextThatFillsTheBufferWithoutATerminatorEndsWithIt) {
    m_registry.AddZone(L"A", kPacific);
    const RegistryKey key = m_registry.MakeKey(L"A");
    // One unit more than is set: the platform adds a terminator that it finds behind a text.
    const std::wstring text(513, L'x');
    ZoneRegistry::SetValue(key.Get(), L"Display", REG_SZ, text.data(), 1024);
    ZoneRegistry::SetValue(key.Get(), L"Std", REG_BINARY, text.data(), 1023);
    tagZebTimeZone zone;
    ASSERT_EQ(Read(L"A", zone), 1);
    EXPECT_EQ(zone.Display, text.substr(0, 512).c_str());
    // Half of the last unit comes from the value, the other half from the cleared buffer.
    EXPECT_EQ(zone.Std, text.substr(0, 511).c_str() + CString(L"x"));
}

TEST_F(ZoneKey, ValueThatDoesNotFitTheBufferCannotBeRead) {
    for (const wchar_t* const value : {L"Display", L"Std", L"Dlt", L"TZI"}) {
        m_registry.AddZone(L"A", kPacific);
        const std::string bytes(1025, 'x');
        ZoneRegistry::SetValue(m_registry.MakeKey(L"A").Get(), value, REG_BINARY, bytes.data(), bytes.size());
        tagZebTimeZone zone;
        EXPECT_EQ(Read(L"A", zone), 0) << testing::PrintToString(CString(value));
    }
}

TEST_F(ZoneKey, TextEndsAtItsFirstTerminator) {
    m_registry.AddZone(L"A", kPacific);
    ZoneRegistry::SetValue(m_registry.MakeKey(L"A").Get(), L"Display", REG_SZ, L"one\0two", 16);
    tagZebTimeZone zone;
    ASSERT_EQ(Read(L"A", zone), 1);
    EXPECT_EQ(zone.Display, L"one");
}

class ZoneOfTheMachine : public ZoneTable {
  protected:
    void SetUp() override {
        m_registry.AddZone(L"A", {});
        m_registry.AddZone(L"B", kPacific);
    }
    static bool IsFound(const TIME_ZONE_INFORMATION& information) {
        tagZebTimeZone zone;
        return FindTimeZoneInRegistry(information, zone) == 1;
    }
};

TEST_F(ZoneOfTheMachine, IsFoundByItsStandardTimeAlone) {
    TIME_ZONE_INFORMATION information = MachineIn(L"Std of B", kPacific);
    information.DaylightBias = -1;
    information.DaylightDate = {};
    information.DaylightName[0] = L'x';
    tagZebTimeZone zone;
    ASSERT_EQ(FindTimeZoneInRegistry(information, zone), 1);
    EXPECT_EQ(zone.Display, L"Display of B");
    EXPECT_EQ(zone.Std, L"Std of B");
    EXPECT_EQ(zone.Dlt, L"Dlt of B");
    EXPECT_EQ(zone.Bias, 480);
    EXPECT_EQ(zone.DaylightBias, -60);
    EXPECT_TRUE(SameFields(zone.DaylightDate, kMarch));
}

TEST_F(ZoneOfTheMachine, AnyOtherStandardTimeIsNotFound) {
    EXPECT_TRUE(IsFound(MachineIn(L"Std of B", kPacific)));
    EXPECT_FALSE(IsFound(MachineIn(L"std of B", kPacific)));
    EXPECT_FALSE(IsFound(MachineIn(L"Std of B ", kPacific)));
    EXPECT_FALSE(IsFound(MachineIn(L"", kPacific)));
    EXPECT_FALSE(IsFound(MachineIn(L"Std of B", {481, 0, -60, kNovember, kMarch})));
    EXPECT_FALSE(IsFound(MachineIn(L"Std of B", {480, 1, -60, kNovember, kMarch})));
    SYSTEMTIME rule = kNovember;
    rule.wMilliseconds = 1;
    EXPECT_FALSE(IsFound(MachineIn(L"Std of B", {480, 0, -60, rule, kMarch})));
}

TEST_F(ZoneOfTheMachine, KeyThatCannotBeReadIsPassedOver) {
    m_registry.RemoveValue(L"A", L"TZI");
    EXPECT_TRUE(IsFound(MachineIn(L"Std of B", kPacific)));
}

TEST_F(ZoneOfTheMachine, OfSeveralTheFirstIsTaken) {
    m_registry.AddZone(L"C", kPacific);
    ZoneRegistry::SetText(m_registry.MakeKey(L"C").Get(), L"Std", L"Std of B");
    tagZebTimeZone zone;
    ASSERT_EQ(FindTimeZoneInRegistry(MachineIn(L"Std of B", kPacific), zone), 1);
    EXPECT_EQ(zone.Display, L"Display of B");
}

TEST_F(ZoneOfTheMachine, NameWithoutRoomForATerminatorIsComparedWhole) {
    const std::wstring name(32, L'n');
    ZoneRegistry::SetText(m_registry.MakeKey(L"B").Get(), L"Std", name);
    EXPECT_TRUE(IsFound(MachineIn(name.c_str(), kPacific)));
    ZoneRegistry::SetText(m_registry.MakeKey(L"B").Get(), L"Std", name + L"n");
    EXPECT_FALSE(IsFound(MachineIn(name.c_str(), kPacific)));
}

TEST_F(ZoneOfTheMachine, DisplayNameIsCopiedAndLeftAloneIfThereIsNone) {
    std::array<wchar_t, 260> display{};
    EXPECT_EQ(GetTimeZoneDisplayName(MachineIn(L"Std of B", kPacific), display), 1);
    EXPECT_EQ(CString(display.data()), L"Display of B");
    EXPECT_EQ(GetTimeZoneDisplayName(MachineIn(L"Std of Z", kPacific), display), 0);
    EXPECT_EQ(CString(display.data()), L"Display of B");
}

TEST_F(ZoneOfTheMachine, DisplayNameIsCutToItsBuffer) {
    const std::wstring name(400, L'n');
    ZoneRegistry::SetText(m_registry.MakeKey(L"B").Get(), L"Display", name);
    std::array<wchar_t, 262> room{};
    room[260] = room[261] = L'#';
    EXPECT_EQ(GetTimeZoneDisplayName(MachineIn(L"Std of B", kPacific), std::span(room).first(260)), 1);
    EXPECT_EQ(CString(room.data()), name.substr(0, 259).c_str());
    EXPECT_EQ(room[260], L'#');
    EXPECT_EQ(room[261], L'#');
    EXPECT_EQ(GetTimeZoneDisplayName(MachineIn(L"Std of B", kPacific), {}), 0);
}

DWORD WINAPI MachineInB(TIME_ZONE_INFORMATION* information) {
    *information = MachineIn(L"Std of B", kPacific);
    information->DaylightName[0] = L'd';
    // Nobody looks at this value.
    return TIME_ZONE_ID_INVALID;
}
DWORD WINAPI MachineInNoListedZone(TIME_ZONE_INFORMATION* information) {
    *information = MachineIn(std::wstring(32, L's').c_str(), {-630, 1, -30, kMarch, kNovember});
    std::fill_n(information->DaylightName, 32, L'd');
    return TIME_ZONE_ID_STANDARD;
}

TEST_F(ZoneOfTheMachine, IsWhatThePlatformSaysWithTheDisplayNameOfTheRegistry) {
    const tagZebTimeZone zone = ReadCurrentTimeZone({&MachineInB});
    EXPECT_EQ(zone.Display, L"Display of B");
    EXPECT_EQ(zone.Std, L"Std of B");
    EXPECT_EQ(zone.Dlt, L"d");
    EXPECT_EQ(FormatTimeZoneText(zone), L"GMT:+480;DST:60;STD:0000110102000000;DLT:0000030202000000");
}

TEST_F(ZoneOfTheMachine, LongDisplayNameIsCut) {
    ZoneRegistry::SetText(m_registry.MakeKey(L"B").Get(), L"Display", std::wstring(400, L'n'));
    EXPECT_EQ(ReadCurrentTimeZone({&MachineInB}).Display, std::wstring(259, L'n').c_str());
}

TEST_F(ZoneOfTheMachine, WithoutItsKeyTheDisplayNameIsEmptyAndAllElseIsThePlatforms) {
    const tagZebTimeZone zone = ReadCurrentTimeZone({&MachineInNoListedZone});
    EXPECT_EQ(zone.Display, L"");
    EXPECT_EQ(zone.Std, std::wstring(32, L's').c_str());
    EXPECT_EQ(zone.Dlt, std::wstring(32, L'd').c_str());
    EXPECT_EQ(zone.Bias, -630);
    EXPECT_EQ(zone.StandardBias, 1);
    EXPECT_EQ(zone.DaylightBias, -30);
    EXPECT_TRUE(SameFields(zone.StandardDate, kMarch));
    EXPECT_TRUE(SameFields(zone.DaylightDate, kNovember));
}

class ZoneByText : public testing::Test {
  protected:
    ZoneByText() {
        Add(L"London", 0, kMarch);
        Add(L"UTC", 0, {});
        Add(L"Los Angeles", 480, kMarch);
        Add(L"Tijuana", 480, kMarch);
        Add(L"Berlin", -60, {});
    }
    void Add(const wchar_t* name, std::int32_t bias, const SYSTEMTIME& daylight) {
        tagZebTimeZone zone;
        zone.Display = name;
        zone.Bias = bias;
        zone.DaylightBias = -60;
        zone.DaylightDate = daylight;
        m_table.Add(zone);
    }

    TimeZoneTable m_table;
};

TEST_F(ZoneByText, ShortTextFindsTheFirstZoneWithItsNumbers) {
    EXPECT_EQ(FindTimeZoneByText(m_table, L"GMT:+480;DST:60"), 2);
    EXPECT_EQ(FindTimeZoneByText(m_table, L"GMT:+0;DST:60"), 0);
    EXPECT_EQ(FindTimeZoneByText(m_table, L"GMT:+0;DST:0"), 1);
    EXPECT_EQ(FindTimeZoneByText(m_table, L"GMT:-60;DST:0"), 4);
}

TEST_F(ZoneByText, LongTextFindsNoneEvenOfAZoneThatIsThere) {
    for (const tagZebTimeZone& zone : m_table) {
        EXPECT_EQ(FindTimeZoneByText(m_table, FormatTimeZoneText(zone).c_str()), -1);
    }
}

TEST_F(ZoneByText, AnyOtherTextFindsNone) {
    for (const wchar_t* const text :
         {L"", L"GMT:+480;DST:0", L"GMT:480;DST:60", L"gmt:+480;dst:60", L"GMT:+480;DST:60 ", L"GMT:+480",
          L"GMT:60;DST:0", L"GMT:+60;DST:0", L"GMT:+480;DST:060", L"London"}) {
        EXPECT_EQ(FindTimeZoneByText(m_table, text), -1) << testing::PrintToString(CString(text));
    }
    EXPECT_EQ(FindTimeZoneByText(m_table, nullptr), -1);
}

TEST(ZoneByTextOfNoZones, EmptyTableFindsNone) {
    EXPECT_EQ(FindTimeZoneByText({}, L"GMT:+0;DST:0"), -1);
}

/// A text of a zone's key, read in the platform's own way.
CString TextOfKey(HKEY zones, const wchar_t* zone, const wchar_t* value) {
    std::array<wchar_t, 512> text{};
    DWORD size = sizeof(text);
    EXPECT_EQ(RegGetValueW(zones, zone, value, RRF_RT_REG_SZ, nullptr, text.data(), &size), ERROR_SUCCESS);
    return {text.data()};
}

TEST(ZonesOfThisMachine, AreThoseOfItsRegistryOneByOne) {
    TimeZoneTable table;
    ASSERT_EQ(LoadTimeZones(table), 1);
    RegistryKey zones;
    ASSERT_EQ(
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones", 0,
                      KEY_READ, zones.Put()),
        ERROR_SUCCESS);
    std::size_t index = 0;
    std::size_t withDaylightSaving = 0;
    wchar_t name[256];
    for (; RegEnumKeyW(zones.Get(), static_cast<DWORD>(index), name, 256) == ERROR_SUCCESS; ++index) {
        SCOPED_TRACE(testing::PrintToString(CString(name)));
        ASSERT_LT(index, table.GetSize());
        const tagZebTimeZone& zone = table[index];
        ZoneBytes rules;
        DWORD size = sizeof(rules);
        ASSERT_EQ(RegGetValueW(zones.Get(), name, L"TZI", RRF_RT_ANY, nullptr, &rules, &size), ERROR_SUCCESS);
        EXPECT_EQ(zone.Bias, rules.bias);
        EXPECT_EQ(zone.StandardBias, rules.standardBias);
        EXPECT_EQ(zone.DaylightBias, rules.daylightBias);
        EXPECT_TRUE(SameFields(zone.StandardDate, rules.standardDate));
        EXPECT_TRUE(SameFields(zone.DaylightDate, rules.daylightDate));
        EXPECT_EQ(zone.Display, TextOfKey(zones.Get(), name, L"Display"));
        EXPECT_EQ(zone.Std, TextOfKey(zones.Get(), name, L"Std"));
        EXPECT_EQ(zone.Dlt, TextOfKey(zones.Get(), name, L"Dlt"));
        EXPECT_FALSE(zone.Std.empty());
        EXPECT_FALSE(zone.Dlt.empty());
        withDaylightSaving += rules.daylightDate.wMonth != 0 ? 1 : 0;
    }
    EXPECT_EQ(index, table.GetSize());
    EXPECT_GT(index, 100U);
    // Both kinds of zone were among them.
    EXPECT_GT(withDaylightSaving, 10U);
    EXPECT_LT(withDaylightSaving, index);
}

TEST(ZonesOfThisMachine, IndiaHasItsHalfHourAndNoDaylightSaving) {
    TimeZoneTable table;
    ASSERT_EQ(LoadTimeZones(table), 1);
    const auto* const india =
        std::find_if(&*table.begin(), &*table.begin() + table.GetSize(),
                     [](const auto& zone) { return zone.Std == L"India Standard Time"; });
    ASSERT_NE(india, &*table.begin() + table.GetSize());
    EXPECT_EQ(FormatTimeZoneText(*india), L"GMT:-330;DST:0;STD:0000000000000000;DLT:0000000000000000");
    EXPECT_NE(FindTimeZoneByText(table, L"GMT:-330;DST:0"), -1);
}

}  // namespace
