// Single named properties of an appointment.

#include "calendar/appointment_properties.h"
#include "tests/unit/localstore/scarce_memory.h"
#include "tests/unit/store/appointment_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

class AppointmentProperties : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        m_writer = std::make_unique<FolderWriter>(L"Work", L"Calendar");
        m_message = m_writer->NewMessage(L"IPM.Appointment");
        recorder::ClearCalls();
    }
    void TearDown() override {
        m_message.Reset();
        m_writer.reset();
        StoreTest::TearDown();
    }
    [[nodiscard]] NewAppointment Message() const { return NewAppointment(m_message); }
    /// Reads a property with every reader, from outputs that hold something; true if all failed and left
    /// their failure results.
    [[nodiscard]] bool AllFail(LONG id) const {
        COleDateTime date;
        date.m_dt = 5.0;
        date.m_status = kDateInvalid;
        std::int32_t flag = 5;
        std::int32_t number = 5;
        std::uint32_t count = 5;
        auto bytes = std::make_unique<std::uint8_t[]>(5);
        return GetNamedDateProperty(m_message.Get(), PSETID_Appointment, id, date) == 0 && date.IsNoDate() &&
               GetNamedBoolProperty(m_message.Get(), PSETID_Appointment, id, flag) == 0 && flag == 0 &&
               GetNamedLongProperty(m_message.Get(), PSETID_Appointment, id, number) == 0 && number == 0 &&
               GetNamedBinaryProperty(m_message.Get(), PSETID_Appointment, id, count, bytes) == 0 &&
               count == 0 && !bytes;
    }

    std::unique_ptr<FolderWriter> m_writer;
    ComPtr<IMessage> m_message;
};

TEST_F(AppointmentProperties, ThatAreThereAreRead) {
    Message()
        .Time(lid::kStartWhole, 2011, 3, 7, 9, 30)
        .Boolean(lid::kSubType, true)
        .Number(lid::kReminderDelta, -15)
        .Binary(lid::kRecur, {1, 2, 3});
    COleDateTime date;
    EXPECT_EQ(GetNamedDateProperty(m_message.Get(), PSETID_Appointment, lid::kStartWhole, date), 1);
    EXPECT_EQ(date.Format(L"%m/%d/%Y %H:%M:%S"), LocalText(2011, 3, 7, 9, 30));
    std::int32_t number = 0;
    EXPECT_EQ(GetNamedBoolProperty(m_message.Get(), PSETID_Appointment, lid::kSubType, number), 1);
    EXPECT_EQ(number, 1);
    EXPECT_EQ(GetNamedLongProperty(m_message.Get(), PSETID_Common, lid::kReminderDelta, number), 1);
    EXPECT_EQ(number, -15);
    std::uint32_t count = 0;
    std::unique_ptr<std::uint8_t[]> bytes;
    EXPECT_EQ(GetNamedBinaryProperty(m_message.Get(), PSETID_Appointment, lid::kRecur, count, bytes), 1);
    ASSERT_EQ(count, 3U);
    EXPECT_EQ(std::vector<std::uint8_t>(bytes.get(), bytes.get() + 3), (std::vector<std::uint8_t>{1, 2, 3}));
}

TEST_F(AppointmentProperties, ThatTheMessageDoesNotHaveGiveTheFailureResultOfEveryReader) {
    EXPECT_TRUE(AllFail(lid::kStartWhole));
}

TEST_F(AppointmentProperties, WhoseNameCannotBeFoundGiveTheFailureResultOfEveryReader) {
    recorder::FailMethod("IMessage::GetIDsFromNames", {}, E_FAIL);
    EXPECT_TRUE(AllFail(lid::kStartWhole));
}

TEST_F(AppointmentProperties, ThatComeWithAnErrorGiveTheFailureResultOfEveryReader) {
    Message().Number(lid::kStartWhole, 1);
    recorder::FailMethod("IMessage::GetProps", {}, E_FAIL);
    EXPECT_TRUE(AllFail(lid::kStartWhole));
}

TEST_F(AppointmentProperties, DatesAndBytesAreAlwaysThoseOfAppointments) {
    Message().Time(lid::kStartWhole, 2011, 3, 7, 9, 30).Binary(lid::kRecur, {7});
    COleDateTime date;
    EXPECT_EQ(GetNamedDateProperty(m_message.Get(), PSETID_Common, lid::kStartWhole, date), 1);
    EXPECT_FALSE(date.IsNoDate());
    std::uint32_t count = 0;
    std::unique_ptr<std::uint8_t[]> bytes;
    EXPECT_EQ(GetNamedBinaryProperty(m_message.Get(), PSETID_Common, lid::kRecur, count, bytes), 1);
    EXPECT_EQ(count, 1U);
    // Numbers and yes or no are those of the set that is asked for.
    Message().Boolean(lid::kSubType, true).Number(lid::kRecurrenceType, 3);
    std::int32_t number = 5;
    EXPECT_EQ(GetNamedBoolProperty(m_message.Get(), PSETID_Common, lid::kSubType, number), 0);
    EXPECT_EQ(GetNamedLongProperty(m_message.Get(), PSETID_Common, lid::kRecurrenceType, number), 0);
}

TEST_F(AppointmentProperties, WithoutBytesAreReadWithoutAnArray) {
    Message().Binary(lid::kRecur, {});
    std::uint32_t count = 5;
    std::unique_ptr<std::uint8_t[]> bytes;
    EXPECT_EQ(GetNamedBinaryProperty(m_message.Get(), PSETID_Appointment, lid::kRecur, count, bytes), 1);
    EXPECT_EQ(count, 0U);
    EXPECT_FALSE(bytes);
}

TEST_F(AppointmentProperties, ForWhoseBytesThereIsNoMemoryAreReadWithTheirCountAndWithoutAnArray) {
    Message().Binary(lid::kRecur, {1, 2, 3});
    // What is recorded is allocated too, and the store allocates before the copy is made.
    recorder::Record(false);
    int withoutArray = 0;
    bool hasFailed = true;
    for (std::size_t n = 1; hasFailed; ++n) {
        SCOPED_TRACE(n);
        int result = -1;
        std::uint32_t count = 5;
        auto bytes = std::make_unique<std::uint8_t[]>(5);
        {
            const localstore_test::ScarceMemory scarce(n, false);
            result = GetNamedBinaryProperty(m_message.Get(), PSETID_Appointment, lid::kRecur, count, bytes);
            hasFailed = scarce.HasFailed();
        }
        EXPECT_EQ(count, result == 1 ? 3U : 0U);
        EXPECT_TRUE(result == 1 || !bytes);
        withoutArray += result == 1 && !bytes ? 1 : 0;
        EXPECT_TRUE(hasFailed || bytes);
    }
    recorder::Record(true);
    EXPECT_EQ(withoutArray, 1);
}

TEST_F(AppointmentProperties, TooLargeForAValueComeThroughAStream) {
    std::vector<BYTE> large(200'000);
    for (std::size_t i = 0; i < large.size(); ++i) {
        large[i] = static_cast<BYTE>(i * 7 >> 3);
    }
    Message().Binary(lid::kRecur, large);
    std::uint32_t count = 0;
    std::unique_ptr<std::uint8_t[]> bytes;
    EXPECT_EQ(GetNamedBinaryProperty(m_message.Get(), PSETID_Appointment, lid::kRecur, count, bytes), 1);
    ASSERT_EQ(count, large.size());
    EXPECT_TRUE(std::equal(large.begin(), large.end(), bytes.get()));

    recorder::FailMethod("IMessage::OpenProperty", {}, E_FAIL);
    EXPECT_EQ(GetNamedBinaryProperty(m_message.Get(), PSETID_Appointment, lid::kRecur, count, bytes), 0);
    EXPECT_EQ(count, 0U);
    EXPECT_FALSE(bytes);
}

TEST_F(AppointmentProperties, OfMoreThan64MegabytesAreNotRead) {
    constexpr std::size_t kLongest = std::size_t{64} * 1024 * 1024;
    for (const std::size_t size : {kLongest, kLongest + 1}) {
        std::vector<BYTE> large(size);
        large.back() = 7;
        Message().Binary(lid::kRecur, large);
        std::uint32_t count = 5;
        std::unique_ptr<std::uint8_t[]> bytes;
        const int result =
            GetNamedBinaryProperty(m_message.Get(), PSETID_Appointment, lid::kRecur, count, bytes);
        EXPECT_EQ(result, size <= kLongest ? 1 : 0) << size;
        EXPECT_EQ(count, size <= kLongest ? size : 0U);
        EXPECT_EQ(bytes ? bytes[size - 1] : 0, size <= kLongest ? 7 : 0);
    }
}

TEST_F(AppointmentProperties, OfAnotherTypeAreTakenAsTheNumberTheyBegin) {
    Message().Number(lid::kSubType, 0x10002).Boolean(lid::kRecurrenceType, true);
    std::int32_t number = 0;
    EXPECT_EQ(GetNamedBoolProperty(m_message.Get(), PSETID_Appointment, lid::kSubType, number), 1);
    EXPECT_EQ(number, 2);
    EXPECT_EQ(GetNamedLongProperty(m_message.Get(), PSETID_Appointment, lid::kRecurrenceType, number), 1);
    EXPECT_EQ(number, 1);
}

TEST_F(AppointmentProperties, OfAnotherTypeAreTakenAsTheTimeThatTheirBitsAre) {
    SYSTEMTIME time{2011, 3, 0, 7, 9, 30, 0, 0};
    SPropValue value{};
    ASSERT_TRUE(SystemTimeToFileTime(&time, &value.Value.ft));
    value.ulPropTag = FolderWriter::AppointmentTag(m_message.Get(), lid::kStartWhole, PT_I8);
    ASSERT_EQ(m_message->SetProps(1, &value, nullptr), S_OK);
    COleDateTime date;
    EXPECT_EQ(GetNamedDateProperty(m_message.Get(), PSETID_Appointment, lid::kStartWhole, date), 1);
    EXPECT_EQ(date.Format(L"%m/%d/%Y %H:%M:%S"), LocalText(2011, 3, 7, 9, 30));
}

TEST_F(AppointmentProperties, OfAnotherTypeAreNeverTakenForBytes) {
    Message().Number(lid::kRecur, 1000);
    std::uint32_t count = 5;
    std::unique_ptr<std::uint8_t[]> bytes;
    EXPECT_EQ(GetNamedBinaryProperty(m_message.Get(), PSETID_Appointment, lid::kRecur, count, bytes), 0);
    EXPECT_EQ(count, 0U);
    EXPECT_FALSE(bytes);
}

}  // namespace
