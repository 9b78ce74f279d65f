// Binary properties of real appointments, read as other readers have read them. ZEB_REAL_ITEMS names the
// folder that holds them; left out where there is none.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "calendar/zone_blob.h"
#include "tests/unit/calendar/json_values.h"
#include "tests/unit/calendar/recurrence_comparison.h"
#include "tests/unit/text_printer.h"

namespace {

using NAMESPACE_COMMON::tagZebTimeZone;
using NAMESPACE_MAPI::tagRecurrenceException;
using NAMESPACE_MAPI::tagRecurrencePattern;

/// A property and where its fields stand in the JSON.
struct RealBlob {
    std::string name;
    std::vector<std::uint8_t> bytes;
    const JsonValues* json;
    std::string fields;
};

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::uint8_t> BytesOfHex(std::string_view hex) {
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i + 1 < hex.size() && std::isxdigit(static_cast<unsigned char>(hex[i])) != 0;
         i += 2) {
        std::uint8_t byte = 0;
        std::from_chars(hex.data() + i, hex.data() + i + 2, byte, 16);
        bytes.push_back(byte);
    }
    return bytes;
}

class RealBlobs : public ::testing::Test {
  protected:
    void SetUp() override {
        const char* const folder = std::getenv("ZEB_REAL_ITEMS");
        if (folder == nullptr || *folder == '\0') {
            GTEST_SKIP() << "ZEB_REAL_ITEMS is not set";
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            if (entry.path().extension() == ".json") {
                Take(entry.path());
            }
        }
        ASSERT_FALSE(m_recurrences.empty());
        ASSERT_FALSE(m_zones.empty());
    }

    std::vector<RealBlob> m_recurrences;
    std::vector<RealBlob> m_zones;

  private:
    void Take(const std::filesystem::path& path) {
        m_json.push_back(std::make_unique<JsonValues>(ReadFile(path)));
        const JsonValues& json = *m_json.back();
        const std::string name = path.stem().string();
        std::filesystem::path hex = path;
        hex.replace_extension(".hex");
        if (json.Has("decoded.lBias")) {
            m_zones.push_back({name, BytesOfHex(ReadFile(hex)), &json, "decoded."});
        } else if (json.Has("decoded.EndTimeOffset")) {
            m_recurrences.push_back({name, BytesOfHex(ReadFile(hex)), &json, "decoded."});
        }
        for (const auto& [property, list] : {std::pair{"appointment.recurrence_0x8216.", &m_recurrences},
                                             std::pair{"appointment.timezone_struct_0x8233.", &m_zones}}) {
            if (json.Has(std::string(property) + "hex")) {
                list->push_back({name, BytesOfHex(json.Text(std::string(property) + "hex")), &json,
                                 std::string(property) + "decoded."});
            }
        }
    }

    std::vector<std::unique_ptr<JsonValues>> m_json;
};

/// Expects a field to be what the JSON says, 0 where it says nothing.
void ExpectField(const RealBlob& blob, const std::string& name, std::int64_t value) {
    const std::string path = blob.fields + name;
    EXPECT_EQ(value, blob.json->Has(path) ? blob.json->Number(path) : 0) << blob.name << " " << path;
}

void ExpectText(const RealBlob& blob, const std::string& name, const CString& value) {
    const std::string path = blob.fields + name;
    const std::string text = blob.json->Has(path) ? blob.json->Text(path) : "";
    // The texts at hand are ASCII, in which a unit is a byte.
    EXPECT_EQ(value, CString(WideString(text.begin(), text.end()))) << blob.name << " " << path;
}

std::string NameOfDeletedDate(std::uint32_t number) {
    return "RecurrencePattern.DeletedInstanceDates." + std::to_string(number) + ".minutes";
}

void ExpectPattern(const RealBlob& blob, const tagRecurrencePattern& pattern) {
    const std::string part = "RecurrencePattern.";
    ExpectField(blob, part + "ReaderVersion", pattern.ReaderVersion);
    ExpectField(blob, part + "WriterVersion", pattern.WriterVersion);
    ExpectField(blob, part + "RecurFrequency", pattern.RecurFrequency);
    ExpectField(blob, part + "PatternType", pattern.PatternType);
    ExpectField(blob, part + "CalendarType", pattern.CalendarType);
    ExpectField(blob, part + "FirstDateTime", pattern.FirstDateTime);
    ExpectField(blob, part + "Period", pattern.Period);
    ExpectField(blob, part + "SlidingFlag", pattern.SlidingFlag);
    ExpectField(blob, part + "DayOfWeekBits", pattern.WeekDays);
    ExpectField(blob, part + "EndType", pattern.EndType);
    ExpectField(blob, part + "OccurrenceCount", pattern.OccurrenceCount);
    ExpectField(blob, part + "FirstDOW", pattern.FirstDOW);
    ExpectField(blob, part + "DeletedInstanceCount", pattern.DeletedInstanceCount);
    ExpectField(blob, part + "ModifiedInstanceCount", pattern.ModifiedInstanceCount);
    ExpectField(blob, part + "StartDate.minutes", pattern.StartDate);
    ExpectField(blob, part + "EndDate.minutes", pattern.EndDate);
    for (std::uint32_t i = 0; i < pattern.DeletedInstanceCount; ++i) {
        ExpectField(blob, NameOfDeletedDate(i), pattern.DeletedInstanceDates[i]);
    }
    ExpectField(blob, "ReaderVersion2", pattern.ReaderVersion2);
    ExpectField(blob, "WriterVersion2", pattern.WriterVersion2);
    ExpectField(blob, "StartTimeOffset", pattern.StartTimeOffset);
    ExpectField(blob, "EndTimeOffset", pattern.EndTimeOffset);
}

void ExpectException(const RealBlob& blob, std::uint32_t number, const tagRecurrenceException& exception) {
    const std::string index = std::to_string(number);
    const std::string part = "ExceptionInfo." + index + ".";
    ExpectField(blob, "RecurrencePattern.ModifiedInstanceDates." + index + ".minutes",
                exception.OriginalDate);
    ExpectField(blob, part + "StartDateTime.minutes", exception.StartDateTime);
    ExpectField(blob, part + "EndDateTime.minutes", exception.EndDateTime);
    ExpectField(blob, part + "OriginalStartDate.minutes", exception.OriginalStartDate);
    ExpectField(blob, part + "OverrideFlags", exception.OverrideFlags);
    ExpectField(blob, part + "MeetingType", exception.MeetingType);
    ExpectField(blob, part + "ReminderDelta", exception.ReminderDelta);
    ExpectField(blob, part + "ReminderSet", exception.ReminderSet);
    ExpectField(blob, part + "BusyStatus", exception.BusyStatus);
    ExpectField(blob, part + "Attachment", exception.Attachment);
    ExpectField(blob, part + "SubType", exception.SubType);
    ExpectField(blob, part + "AppointmentColor", exception.AppointmentColor);
    ExpectText(blob, "ExtendedException." + index + ".WideCharSubject", exception.Subject);
    ExpectText(blob, "ExtendedException." + index + ".WideCharLocation", exception.Location);
}

TEST_F(RealBlobs, RecurrencesReadAsTheirFieldsSay) {
    for (const RealBlob& blob : m_recurrences) {
        const ReadRecurrence read = ReadExactly(blob.bytes);
        ExpectField(blob, "size", static_cast<std::int64_t>(blob.bytes.size()));
        ExpectField(blob, "parsed_bytes", read.result);
        ExpectPattern(blob, read.pattern);
        ASSERT_EQ(read.pattern.ModifiedInstanceCount, blob.json->Count(blob.fields + "ExceptionInfo"));
        for (std::uint32_t i = 0; i < read.pattern.ModifiedInstanceCount; ++i) {
            ExpectException(blob, i, read.pattern.Exceptions[i]);
        }
    }
}

TEST_F(RealBlobs, ZonesReadAsTheirFieldsSay) {
    for (const RealBlob& blob : m_zones) {
        tagZebTimeZone zone;
        EXPECT_EQ(ParseTimeZoneBlob(blob.bytes.data(), static_cast<std::uint32_t>(blob.bytes.size()), zone),
                  1);
        ExpectField(blob, "lBias", zone.Bias);
        ExpectField(blob, "lStandardBias", zone.StandardBias);
        ExpectField(blob, "lDaylightBias", zone.DaylightBias);
        for (const auto& [name, date] : {std::pair{std::string("stStandardDate."), zone.StandardDate},
                                         std::pair{std::string("stDaylightDate."), zone.DaylightDate}}) {
            ExpectField(blob, name + "wYear", date.wYear);
            ExpectField(blob, name + "wMonth", date.wMonth);
            ExpectField(blob, name + "wDayOfWeek", date.wDayOfWeek);
            ExpectField(blob, name + "wDay", date.wDay);
            ExpectField(blob, name + "wHour", date.wHour);
            ExpectField(blob, name + "wMinute", date.wMinute);
            ExpectField(blob, name + "wSecond", date.wSecond);
            ExpectField(blob, name + "wMilliseconds", date.wMilliseconds);
        }
    }
}

TEST_F(RealBlobs, EveryPrefixAndEveryChangedByteIsReadAsItsFieldsSay) {
    for (RealBlob& blob : m_recurrences) {
        for (std::size_t size = 0; size <= blob.bytes.size(); ++size) {
            ASSERT_STREQ(DifferenceOfReaders(blob.bytes.data(), size), nullptr) << blob.name << " " << size;
        }
        for (std::uint8_t& byte : blob.bytes) {
            const std::uint8_t original = byte;
            for (unsigned change = 1; change <= 0xFF; ++change) {
                byte = static_cast<std::uint8_t>(original ^ change);
                ASSERT_STREQ(DifferenceOfReaders(blob.bytes.data(), blob.bytes.size()), nullptr) << blob.name;
            }
            byte = original;
        }
    }
}

}  // namespace
