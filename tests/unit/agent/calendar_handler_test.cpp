// The procedure that writes an appointment, without a mail system: what it hands back, and the callback that
// ends it.

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "agent/callback_client.h"
#include "mapi/mapi_object.h"
#include "tests/unit/agent/write_outputs.h"
#include "tests/unit/localstore/scarce_memory.h"
#include "tests/unit/recorded_log.h"
#include "tests/unit/text_printer.h"
#include "tests/wire/callback_endpoint.h"

namespace {

/// The time of a record that was not written.
constexpr const wchar_t* kNoTime = L"12/30/1899 00:00:00";

class CalendarHandler : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(BindOutlookServer(), 1);
        m_endpoint.emplace();
        TakeLog();
    }
    void TearDown() override {
        EXPECT_EQ(RpcBindingFree(&g_hOutlookBinding), RPC_S_OK);
        TakeLog();
    }
    /// The callbacks of one write: one with the empty text, that is with its terminator alone.
    void ExpectTheEnd(std::size_t writes) const {
        const std::vector<CallPdu> calls = m_endpoint->Calls();
        ASSERT_EQ(calls.size(), writes);
        EXPECT_EQ(calls.back().procedure, 2);
        EXPECT_EQ(ToHex(calls.back().stub), ToHex(Hex("01 00 00 00  00 00 00 00  01 00 00 00  00 00")));
    }

    std::optional<CallbackEndpoint> m_endpoint;
};

TEST_F(CalendarHandler, TextThatIsNoXmlSucceedsWithAnEmptyIdentifier) {
    std::size_t writes = 0;
    for (const wchar_t* const xml : {L"", L"no document", L"<Calendar><lFlag>8</lFlag>"}) {
        const WriteOutputs out = WriteCalendar(xml);
        EXPECT_EQ(out.fault, 0U);
        EXPECT_EQ(out.status, 0);
        EXPECT_EQ(CString(out.id), L"");
        EXPECT_EQ(CString(out.time), kNoTime);
        EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::WriteCalendars - Begin\r\n"},
                                       {1, L"CMAPIObject::WriteCalendars - Finish\r\n"}}));
        ExpectTheEnd(++writes);
    }
}

TEST_F(CalendarHandler, WithoutAFlagTheIdentifierThatWasSentComesBack) {
    const WriteOutputs out = WriteCalendar(L"<Calendar><PIMID>00AB</PIMID><lFlag>1</lFlag></Calendar>");
    EXPECT_EQ(out.status, 0);
    EXPECT_EQ(CString(out.id), L"00AB");
    EXPECT_EQ(CString(out.time), kNoTime);
    ExpectTheEnd(1);
}

TEST_F(CalendarHandler, BeforeLogonItSucceedsWithItsLinesAndDoesNothing) {
    const WriteOutputs out =
        WriteCalendar(L"<Calendar><PIMID>00AB</PIMID><lFlag>4</lFlag><lCalType>3</lCalType></Calendar>");
    EXPECT_EQ(out.status, 0);
    EXPECT_EQ(CString(out.id), L"00AB");
    EXPECT_EQ(CString(out.time), kNoTime);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::WriteCalendars - Begin\r\n"},
                                   {1, L"CMAPIObject::UpdateCalendar - Begin\r\n"},
                                   {1, L"CMAPIObject::UpdateCalendarEvent - Begin\r\n"},
                                   {1, L"CMAPIObject::UpdateCalendarEvent - Finish(Failed)\r\n"},
                                   {1, L"CMAPIObject::UpdateCalendar - Finish(Failed)\r\n"},
                                   {1, L"CMAPIObject::WriteCalendars - Finish\r\n"}}));
    ExpectTheEnd(1);
}

TEST_F(CalendarHandler, IdentifierIsCutToItsOutput) {
    std::size_t writes = 0;
    for (const std::size_t length : {398U, 399U, 400U, 5000U}) {
        const WriteOutputs out =
            WriteCalendar(L"<Calendar><PIMID>" + CString(WideString(length, L'F')) + L"</PIMID></Calendar>");
        EXPECT_EQ(CString(out.id), WideString(std::min<std::size_t>(length, 399), L'F'));
        EXPECT_EQ(out.id[400], L'#');
        EXPECT_EQ(CString(out.time), kNoTime);
        EXPECT_EQ(out.time[40], L'#');
        ExpectTheEnd(++writes);
    }
}

TEST_F(CalendarHandler, BeforeTheFirstLogonTheCallFailsForWantOfABinding) {
    const RPC_BINDING_HANDLE binding = std::exchange(g_hOutlookBinding, nullptr);
    const WriteOutputs out = WriteCalendar(L"<Calendar/>");
    g_hOutlookBinding = binding;
    EXPECT_EQ(out.fault, static_cast<unsigned long>(RPC_S_INVALID_BINDING));
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::WriteCalendars - Begin\r\n"}}));
    EXPECT_EQ(WriteCalendar(L"<Calendar/>").fault, 0U);
    ExpectTheEnd(1);
}

TEST_F(CalendarHandler, EveryAllocationThatFailsIsAFailureOrLeavesThatOfTheCallback) {
    m_endpoint.reset();
    struct Call {
        CString text = L"<Calendar><PIMID>" + CString(WideString(60, L'A')) +
                       L"</PIMID><lFlag>4</lFlag><lCalType>3</lCalType></Calendar>";
        WriteOutputs out;
    };
    const RpcCall write = [](void* context) noexcept {
        auto& [text, out] = *static_cast<Call*>(context);
        WriteCalendars(text.data(), out.id, out.time, &out.status);
    };
    // The zones are there already, and are not to be read again and again.
    LoadTimeZones(g_MAPIObject.m_arrTimeZones);
    for (const bool forever : {false, true}) {
        int failures = 0;
        bool hasFailed = true;
        for (std::size_t n = 1; hasFailed; ++n) {
            SCOPED_TRACE(testing::Message() << "allocation " << n << (forever ? " and all behind it" : ""));
            Call call;
            {
                const localstore_test::ScarceMemory scarce(n, forever);
                call.out.fault = GuardRpcCall(write, &call);
                hasFailed = scarce.HasFailed();
            }
            if (call.out.fault == 0) {
                ++failures;
                EXPECT_EQ(call.out.status, 1);
            } else {
                EXPECT_EQ(call.out.fault, static_cast<unsigned long>(RPC_S_SERVER_UNAVAILABLE));
            }
            EXPECT_EQ(CString(call.out.id), L"");
            EXPECT_EQ(CString(call.out.time), L"");
            EXPECT_TRUE(hasFailed || call.out.fault != 0);
        }
        EXPECT_GT(failures, 0);
    }
}

TEST_F(CalendarHandler, WithoutAnEndpointTheCallFailsWithTheStatusOfItsCallback) {
    m_endpoint.reset();
    const WriteOutputs out = WriteCalendar(L"<Calendar><PIMID>00AB</PIMID><lFlag>32</lFlag></Calendar>");
    EXPECT_EQ(out.fault, static_cast<unsigned long>(RPC_S_SERVER_UNAVAILABLE));
    // All but the last line of the write.
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::WriteCalendars - Begin\r\n"},
                                   {1, L"CMAPIObject::DeleteCalendar - Begin\r\n"},
                                   {1, L"CMAPIObject::DeleteCalendar - Finish(Failed)\r\n"}}));
    m_endpoint.emplace();
    EXPECT_EQ(WriteCalendar(L"").fault, 0U);
    ExpectTheEnd(1);
}

}  // namespace
