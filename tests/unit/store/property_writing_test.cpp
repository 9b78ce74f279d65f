#include "mapi/property_writing.h"

#include "tests/unit/store/contact_writing_fixture.h"
#include "tests/unit/text_printer.h"
#include "tests/unit/timezone/date_helpers.h"

namespace {

namespace recorder = localstore::recorder;

/// A message with a date under a name.
class PropertyWriting : public ContactWriting {
  protected:
    static constexpr LONG kId = 0x80DE;

    void SetUp() override {
        ContactWriting::SetUp();
        Write(8, {{1, L"John"}});
        m_message = Message();
        ASSERT_EQ(SetNamedDateProperty(m_message.Get(), PSETID_Address, kId, Date(2020, 1, 15)), S_OK);
        ASSERT_TRUE(Value());
        recorder::ClearCalls();
    }
    void TearDown() override {
        m_message.Reset();
        ContactWriting::TearDown();
    }
    [[nodiscard]] MapiBuffer<SPropValue> Value() const {
        return GetProperty(m_message.Get(), FolderWriter::AddressTag(m_message.Get(), kId, PT_SYSTIME));
    }

    ComPtr<IMessage> m_message;
};

TEST_F(PropertyWriting, NamedDateOfNoDateIsRemoved) {
    EXPECT_EQ(SetNamedDateProperty(m_message.Get(), PSETID_Address, kId, COleDateTime{0.0, kDateValid}),
              S_OK);
    EXPECT_EQ(recorder::Calls().back().method, "IMessage::DeleteProps");
    EXPECT_FALSE(Value());
}

TEST_F(PropertyWriting, NamedDateThatIsInvalidIsWrittenAllTheSame) {
    EXPECT_EQ(SetNamedDateProperty(m_message.Get(), PSETID_Address, kId, COleDateTime{0.0, kDateInvalid}),
              S_OK);
    EXPECT_EQ(recorder::Calls().back().method, "IMessage::SetProps");
    EXPECT_TRUE(Value());
}

TEST_F(PropertyWriting, NameThatCannotBeFoundIsReturnedAndNothingIsSet) {
    for (const HRESULT result : {MAPI_E_NO_ACCESS, MAPI_W_ERRORS_RETURNED}) {
        recorder::FailMethod("IMessage::GetIDsFromNames", {}, result);
        recorder::ClearCalls();
        EXPECT_EQ(SetNamedDateProperty(m_message.Get(), PSETID_Address, kId, Date(2021, 1, 1)), result);
        EXPECT_EQ(SetNamedTextProperty(m_message.Get(), PSETID_Address, 0x8083, L"x"), result);
        SetNamedFlagProperty(m_message.Get(), PSETID_Address, 0x8015, true);
        EXPECT_EQ(recorder::Calls().size(), 3U);
        recorder::ClearFailures();
    }
}

TEST_F(PropertyWriting, NamedDateIsFoundByItsNameWhichIsMadeIfNeeded) {
    SetNamedDateProperty(m_message.Get(), PSETID_Appointment, 0x820D, Date(2020, 1, 15));
    ASSERT_EQ(recorder::Calls().size(), 2U);
    EXPECT_EQ(recorder::Calls()[0].arguments, "{00062002}:820D flags=0x00000002");
    EXPECT_EQ(recorder::Calls()[1].arguments.substr(0, 21), "{00062002}:820D/0040=");
}

}  // namespace
