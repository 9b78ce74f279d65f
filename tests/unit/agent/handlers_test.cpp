// The handlers that need no mail system.

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "agent/rpc_runtime.h"
#include "command.h"
#include "mapi/mapi_object.h"
#include "tests/unit/agent/write_outputs.h"
#include "tests/unit/recorded_log.h"
#include "tests/unit/text_printer.h"
#include "timezone/ole_date_time.h"

namespace {

class Handlers : public ::testing::Test {
  protected:
    void SetUp() override { TakeLog(); }
    void TearDown() override {
        g_MAPIObject.m_bStop = 0;
        TakeLog();
    }
};

TEST_F(Handlers, ContactCountBeforeLogonIsZeroWithSuccess) {
    long count = 77;
    long status = 77;
    GetContactCount(&count, &status);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::GetContactCount - Begin\r\n"},
                                   {1, L"CMAPIObject::GetContactCount - Finish\r\n"}}));
}

TEST_F(Handlers, GetContactFolderAlwaysFailsAndLeavesTheArrayAlone) {
    wchar_t folder[3000] = L"as it came";
    long status = 77;
    GetContactFolder(folder, &status);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(CString(folder), L"as it came");
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::GetContactFolder - Begin\r\n"},
                                   {1, L"CMAPIObject::GetContactFolder - Finish\r\n"}}));
}

TEST_F(Handlers, GetCalendarFolderAlwaysSucceeds) {
    wchar_t text = L'x';
    long status = 77;
    GetCalendarFolder(&text, &status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(text, L'x');
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"Outlook2k - GetCalendarFolder : Begin\r\n"},
                                   {1, L"Outlook2k - GetCalendarFolder : Finish\r\n"}}));
}

TEST_F(Handlers, Reserved10DoesNothingAtAll) {
    wchar_t text = L'x';
    long status = 77;
    Reserved10(&text, &status);
    EXPECT_EQ(status, 77);
    EXPECT_EQ(text, L'x');
    EXPECT_TRUE(TakeLog().empty());
}

TEST_F(Handlers, StopSetsTheFlag) {
    Stop();
    EXPECT_EQ(g_MAPIObject.m_bStop, 1);
    EXPECT_EQ(TakeLog(),
              (LogLines{{1, L"CMAPIObject::Stop - Begin\r\n"}, {1, L"CMAPIObject::Stop - Finish\r\n"}}));
}

TEST_F(Handlers, LogOffWithNothingOpenWritesItsLinesAndCallsNoMail) {
    // The entry point table is empty, so a MAPI call would end the program.
    MAPILogOff();
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::MAPILogOff : Begin\r\n"},
                                   {1, L"CMAPIObject::MAPIRelease : Begin\r\n"},
                                   {1, L"CMAPIObject::MAPIRelease : Finish\r\n"},
                                   {1, L"CMAPIObject::MAPIUninitialize : Begin\r\n"},
                                   {1, L"CMAPIObject::MAPIUninitialize : Finish\r\n"},
                                   {1, L"CMAPIObject::MAPILogOff : Finish\r\n"}}));
}

TEST_F(Handlers, LogonWithoutAMailSystemFails) {
    wchar_t profile[] = L"Work";
    long status = 77;
    MAPILogOn(profile, &status);
    EXPECT_EQ(status, 1);
    const LogLines log = TakeLog();
    ASSERT_EQ(log.size(), 9U);
    EXPECT_EQ(log[0], (LogLine{1, L"CMAPIObject::MAPILogOn - Begin ---------ProfileName(Work)\r\n"}));
    EXPECT_EQ(log[1], (LogLine{3, L"CMAPIObject::MAPILogOn - Failed\r\n"}));
    EXPECT_EQ(log[2], (LogLine{1, L"CMAPIObject::MAPILogOff : Begin\r\n"}));
    EXPECT_EQ(log[8], (LogLine{1, L"CMAPIObject::MAPILogOn - Finish(Failed)\r\n"}));
}

TEST_F(Handlers, LogonIsNotTriedWithoutABinding) {
    g_rpc.bindingFromStringBinding = [](RPC_WSTR, RPC_BINDING_HANDLE*) -> RPC_STATUS { return 1702; };
    wchar_t profile[] = L"Work";
    long status = 77;
    MAPILogOn(profile, &status);
    g_rpc = RpcRuntime();
    EXPECT_EQ(status, 1);
    EXPECT_EQ(TakeLog(), (LogLines{{3, L"RpcBindingFromStringBinding return =000006a6 \r\n"}}));
}

TEST_F(Handlers, ReadBeforeLogonFailsWithItsLine) {
    wchar_t ignored[] = L"q";
    wchar_t all[] = L"";
    long status = 77;
    g_MAPIObject.m_bStop = 1;
    ReadContacts(ignored, all, &status);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(g_MAPIObject.m_bStop, 0);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::ReadContacts - Begin\r\n"},
                                   {3, L"CMAPIObject::ReadContacts - NULL m_lpContactFolder\r\n"},
                                   {1, L"CMAPIObject::ReadContacts - Finish\r\n"}}));
}

TEST_F(Handlers, WriteOfATextThatIsNoXmlSucceedsWithAnEmptyIdentifier) {
    for (const wchar_t* const xml : {L"", L"no document", L"<Contact><lFlag>8</lFlag>"}) {
        const CString before = Present();
        const WriteOutputs out = WriteContact(xml);
        EXPECT_EQ(out.status, 0);
        EXPECT_EQ(CString(out.id), L"");
        EXPECT_TRUE(IsThePresent(out.time, before)) << testing::PrintToString(CString(out.time));
        EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::WriteContacts - Begin\r\n"},
                                       {1, L"CMAPIObject::WriteContacts - Finish\r\n"}}));
    }
}

TEST_F(Handlers, WriteWithoutAFlagReturnsTheIdentifierThatWasSent) {
    const CString before = Present();
    const WriteOutputs out = WriteContact(L"<Contact><PIMID>00AB</PIMID><lFlag>1</lFlag></Contact>");
    EXPECT_EQ(out.status, 0);
    EXPECT_EQ(CString(out.id), L"00AB");
    EXPECT_TRUE(IsThePresent(out.time, before));
}

TEST_F(Handlers, WriteBeforeLogonSucceedsWithItsLinesAndDoesNothing) {
    const CString before = Present();
    const WriteOutputs out =
        WriteContact(L"<Contact><PIMID>00AB</PIMID><lFlag>4</lFlag><Mobile>5</Mobile></Contact>");
    EXPECT_EQ(out.status, 0);
    EXPECT_EQ(CString(out.id), L"00AB");
    EXPECT_TRUE(IsThePresent(out.time, before)) << testing::PrintToString(CString(out.time));
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"---------------145"},
                                   {1, L"CMAPIObject::WriteContacts - Begin\r\n"},
                                   {1, L"CMAPIObject::UpdateContact - Begin\r\n"},
                                   {1, L"CMAPIObject::UpdateContact - Finish(Failed)\r\n"},
                                   {1, L"CMAPIObject::WriteContacts - Finish\r\n"}}));
}

TEST_F(Handlers, IdentifierIsCutToItsOutput) {
    for (const std::size_t length : {398U, 399U, 400U, 5000U}) {
        const WriteOutputs out =
            WriteContact(L"<Contact><PIMID>" + CString(WideString(length, L'F')) + L"</PIMID></Contact>");
        EXPECT_EQ(CString(out.id), WideString(std::min<std::size_t>(length, 399), L'F'));
        EXPECT_EQ(out.id[400], L'#');
        EXPECT_EQ(out.time[40], L'#');
    }
}

TEST_F(Handlers, GetCalendarCountBeforeLogonIsZeroAndSucceeds) {
    long count = 77;
    long status = 77;
    GetCalendarCount(&count, &status);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::GetCalendarCount - Begin\r\n"},
                                   {1, L"CMAPIObject::GetCalendarEventCount - Begin\r\n"},
                                   {1, L"CMAPIObject::GetCalendarEventCount - Finish\r\n"},
                                   {1, L"CMAPIObject::GetCalendarCount - Finish\r\n"}}));
}

TEST_F(Handlers, ReadCalendarsBeforeLogonFails) {
    wchar_t text[] = L"";
    long status = 77;
    ReadCalendars(text, text, &status);
    EXPECT_EQ(status, 1);
    const LogLines log = TakeLog();
    ASSERT_FALSE(log.empty());
    EXPECT_EQ(log.front(), (LogLine{1, L"CMAPIObject::ReadCalendars - Begin\r\n"}));
    EXPECT_EQ(log.back(), (LogLine{1, L"CMAPIObject::ReadCalendars - Finish\r\n"}));
}

}  // namespace
