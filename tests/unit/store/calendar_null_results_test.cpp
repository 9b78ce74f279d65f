// A mail system whose calls all succeed and give nothing: no write trusts a result without what belongs to
// it.

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

}  // namespace
