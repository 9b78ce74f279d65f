// A read seen from the desktop program's side of both pipes: the bytes with which documents arrive.

#include <gmock/gmock.h>

#include "tests/wire/agent_process.h"
#include "tests/wire/callback_endpoint.h"
#include "tests/wire/command_connection.h"
#include "tests/wire/contact_calls.h"
#include "tests/wire/contact_file.h"

namespace {

using testing::Each;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

std::wstring SurnameElement(const std::wstring& surname) {
    return L"\t<LastName>" + surname + L"</LastName>";
}

TEST(Reading, ContactsArriveOneACall) {
    const AgentProcess agent({L"Alpha", L"Beta", L"Gamma"});
    const CallbackEndpoint endpoint;
    CommandConnection connection;
    LogOn(connection);
    EXPECT_EQ(connection.Call(5).stub, Hex("03 00 00 00  00 00 00 00"));
    EXPECT_EQ(connection.Call(15, ReadAll()).stub, Success());

    EXPECT_THAT(endpoint.ProposedInterfaces(), Each(CallbackSyntax()));
    const std::vector<CallPdu> calls = endpoint.Calls();
    ASSERT_THAT(calls, SizeIs(3));
    const wchar_t* const surnames[] = {L"Alpha", L"Beta", L"Gamma"};
    for (std::size_t i = 0; i < calls.size(); ++i) {
        const std::wstring document = Document(calls[i]);
        EXPECT_THAT(document, StartsWith(L"<?xml version="));
        EXPECT_THAT(document, HasSubstr(SurnameElement(surnames[i])));
        EXPECT_THAT(document, HasSubstr(L"</Contact>"));
    }
}

TEST(Reading, AppointmentsArriveOneACallOfTheirOwn) {
    const AgentProcess agent({L"Alpha"});
    const std::filesystem::path calendar = agent.MakeMailFolder(L"Calendar");
    WriteAppointmentFile(calendar / "1.msg", L"Review");
    WriteAppointmentFile(calendar / "2.msg", L"Training");
    const CallbackEndpoint endpoint;
    CommandConnection connection;
    LogOn(connection);
    EXPECT_EQ(connection.Call(6).stub, Hex("02 00 00 00  00 00 00 00"));
    EXPECT_EQ(connection.Call(16, ReadAll()).stub, Success());

    EXPECT_THAT(endpoint.ProposedInterfaces(), Each(CallbackSyntax()));
    const std::vector<CallPdu> calls = endpoint.Calls();
    ASSERT_THAT(calls, SizeIs(2));
    const wchar_t* const subjects[] = {L"Review", L"Training"};
    for (std::size_t i = 0; i < calls.size(); ++i) {
        const std::wstring document = Document(calls[i], kMAPISendBackOneCalenda);
        EXPECT_THAT(document, StartsWith(L"<?xml version="));
        EXPECT_THAT(document, HasSubstr(std::wstring(L"\t<Description>") + subjects[i] + L"</Description>"));
        EXPECT_THAT(document, HasSubstr(L"\t<lCalType>3</lCalType></Calendar>"));
    }
}

TEST(Reading, ALongDocumentArrivesWhole) {
    const std::wstring body(100000, L'x');
    const AgentProcess agent({L"Alpha"}, body);
    const CallbackEndpoint endpoint;
    CommandConnection connection;
    LogOn(connection);
    EXPECT_EQ(connection.Call(15, ReadAll()).stub, Success());
    const std::vector<CallPdu> calls = endpoint.Calls();
    ASSERT_THAT(calls, SizeIs(1));
    EXPECT_NE(Document(calls.front()).find(L"<SP-BODY>" + body + L"</SP-BODY>"), std::wstring::npos);
}

TEST(Reading, StopOnASecondConnectionEndsTheReadAfterTheItem) {
    const AgentProcess agent({L"Alpha", L"Beta", L"Gamma"});
    bool stop = true;
    const CallbackEndpoint endpoint([&stop](const CallPdu&) {
        if (std::exchange(stop, false)) {
            CommandConnection second;
            EXPECT_EQ(second.Call(1).type, PduType::kResponse);
        }
    });
    CommandConnection connection;
    LogOn(connection);
    EXPECT_EQ(connection.Call(15, ReadAll()).stub, Failure());
    EXPECT_THAT(endpoint.Calls(), SizeIs(1));
    EXPECT_EQ(connection.Call(15, ReadAll()).stub, Success());
    EXPECT_THAT(endpoint.Calls(), SizeIs(1 + 3));
}

TEST(Reading, StopWithNoReadRunningEndsTheNextOne) {
    const AgentProcess agent({L"Alpha"});
    const CallbackEndpoint endpoint;
    CommandConnection connection;
    LogOn(connection);
    EXPECT_EQ(connection.Call(1).type, PduType::kResponse);
    EXPECT_EQ(connection.Call(15, ReadAll()).stub, Failure());
    EXPECT_THAT(endpoint.Calls(), SizeIs(0));
    EXPECT_EQ(connection.Call(15, ReadAll()).stub, Success());
    EXPECT_THAT(endpoint.Calls(), SizeIs(1));
}

TEST(Reading, ShutdownIsAnnouncedToTheEndpoint) {
    const AgentProcess agent;
    const CallbackEndpoint endpoint;
    CommandConnection connection;
    LogOn(connection);
    EXPECT_EQ(connection.Call(0).type, PduType::kResponse);
    ASSERT_TRUE(endpoint.WaitForCalls(1));
    EXPECT_EQ(agent.WaitForExit(), 0U);
    const std::vector<CallPdu> calls = endpoint.Calls();
    ASSERT_THAT(calls, SizeIs(1));
    EXPECT_EQ(calls.front().procedure, kMAPIServerShutdown);
    EXPECT_EQ(calls.front().stub, Bytes());
}

}  // namespace
