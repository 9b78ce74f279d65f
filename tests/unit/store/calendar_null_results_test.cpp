// A mail system whose calls all succeed and give nothing: no write trusts a result without what belongs to
// it. And one whose reads give their value along with another result than success.

#include <cstring>

#include "tests/unit/store/calendar_writing_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

// The platform's interfaces have no virtual destructor, as objects end through Release alone; the published
// lists of methods name their parameters, which are not used here.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#pragma GCC diagnostic ignored "-Wunused-parameter"

#define ANSWER_NOTHING \
    override {         \
        return S_OK;   \
    }

/// What both objects have besides their interface. They are members of a test, so nothing counts.
template<class Interface>
class EmptyHanded : public Interface {
  public:
    STDMETHODIMP QueryInterface(REFIID /*iid*/, void** /*object*/) override { return E_NOINTERFACE; }
    STDMETHODIMP_(ULONG) AddRef() override { return 1; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    MAPI_IMAPIPROP_METHODS(ANSWER_NOTHING)
};

class EmptyHandedFolder : public EmptyHanded<IMAPIFolder> {
  public:
    MAPI_IMAPICONTAINER_METHODS(ANSWER_NOTHING)
    MAPI_IMAPIFOLDER_METHODS(ANSWER_NOTHING)
};

class EmptyHandedMessage : public EmptyHanded<IMessage> {
  public:
    MAPI_IMESSAGE_METHODS(ANSWER_NOTHING)
};

/// A message that answers its reads with a result of a test's, and with the value all the same.
class OutspokenMessage : public EmptyHandedMessage {
  public:
    STDMETHODIMP GetProps(LPSPropTagArray tags, ULONG /*flags*/, ULONG* count,
                          LPSPropValue* values) override {
        static BYTE identifier[] = {0x01, 0x23, 0xAB};
        SPropValue value{};
        value.ulPropTag = tags->aulPropTag[0];
        if (value.ulPropTag == PR_LAST_MODIFICATION_TIME) {
            value.Value.ft = {0, 0x01D00000};
        } else if (m_hasIdentifier) {
            value.Value.bin = {sizeof identifier, identifier};
        } else {
            value.ulPropTag = CHANGE_PROP_TYPE(value.ulPropTag, PT_ERROR);
            value.Value.err = MAPI_E_NOT_FOUND;
        }
        void* buffer = nullptr;
        if (pfnMAPIAllocateBuffer(sizeof value, &buffer) != S_OK) {
            return MAPI_E_NOT_ENOUGH_MEMORY;
        }
        std::memcpy(buffer, &value, sizeof value);
        *values = static_cast<LPSPropValue>(buffer);
        *count = 1;
        return m_result;
    }

    HRESULT m_result = S_OK;
    bool m_hasIdentifier = true;
};

/// A folder that makes one and the same message.
class FolderOfOneMessage : public EmptyHandedFolder {
  public:
    explicit FolderOfOneMessage(IMessage* message) : m_message(message) {}
    STDMETHODIMP CreateMessage(LPCIID /*iid*/, ULONG /*flags*/, LPMESSAGE* message) override {
        *message = m_message;
        return S_OK;
    }

  private:
    IMessage* m_message;
};

#pragma GCC diagnostic pop

class CalendarNullResults : public CalendarWriting {
  protected:
    void SetUp() override {
        CalendarWriting::SetUp();
        g_MAPIObject.m_lpEventFolder = &m_folder;
        m_calendar.m_strPIMID = L"00AB";
    }
    void TearDown() override {
        g_MAPIObject.m_lpEventFolder.Reset();
        CalendarWriting::TearDown();
    }

    EmptyHandedFolder m_folder;
    EmptyHandedMessage m_message;
};

TEST_F(CalendarNullResults, OfTheFolderFailEveryOperation) {
    for (const std::int32_t flag : {8, 4, 32}) {
        Write(flag);
        EXPECT_EQ(m_calendar.m_lFlag, flag);
        EXPECT_EQ(m_calendar.m_strPIMID, L"00AB");
        EXPECT_TRUE(m_calendar.m_dtLastModified.IsNoDate());
    }
    TakeLog();
}

TEST_F(CalendarNullResults, OfAMessageThatIsSavedLeaveNoTime) {
    for (const std::int32_t type : {0, 1}) {
        Fill(8);
        m_calendar.m_lRecurType = type;
        m_calendar.m_lReminderMinutes = 15;
        m_calendar.m_nRingTone = 1;
        m_calendar.m_dtLastModified = Date(2001, 2, 3);
        EXPECT_EQ(g_MAPIObject.UpdateCalendarEventMessage(&m_message, &m_calendar), 1);
        EXPECT_TRUE(m_calendar.m_dtLastModified.IsNoDate());
    }
    TakeLog();
}

TEST_F(CalendarNullResults, AreNoneOfAReadThatGivesTheIdentifierWithAnyResult) {
    OutspokenMessage message;
    FolderOfOneMessage folder(&message);
    g_MAPIObject.m_lpEventFolder = &folder;
    for (const HRESULT result : {S_OK, MAPI_W_ERRORS_RETURNED, MAPI_E_NO_ACCESS}) {
        SCOPED_TRACE(testing::Message() << std::hex << result);
        message.m_result = result;
        Write(8, [](CCalendarEx& calendar) { calendar.m_dtLastModified = Date(2001, 2, 3); });
        EXPECT_EQ(m_calendar.m_lFlag, 0);
        EXPECT_EQ(m_calendar.m_strPIMID, L"0123AB");
        // The time, in contrast, is taken from a success alone.
        EXPECT_EQ(m_calendar.m_dtLastModified.IsNoDate(), result != S_OK);
        m_calendar.m_strPIMID = L"as sent";
    }
    // What comes in place of a value is no identifier.
    message.m_hasIdentifier = false;
    message.m_result = MAPI_W_ERRORS_RETURNED;
    Write(8);
    EXPECT_EQ(m_calendar.m_lFlag, 0);
    EXPECT_EQ(m_calendar.m_strPIMID, L"");
    g_MAPIObject.m_lpEventFolder.Reset();
    TakeLog();
}

}  // namespace
