// A call of the mail system hangs while one desktop program reads, writes or counts, and another one comes
// by: it need not wait, and once the call returns the first one has its answer and the agent reads whole, or
// ends if that was what the other one wanted.

#include <gmock/gmock.h>

#include <cstdlib>
#include <future>
#include <iterator>
#include <ostream>
#include <string_view>

#include "tests/wire/agent_process.h"
#include "tests/wire/callback_endpoint.h"
#include "tests/wire/command_connection.h"
#include "tests/wire/contact_calls.h"
#include "tests/wire/contact_file.h"
#include "tests/wire/store_hold.h"

namespace {

using testing::UnorderedElementsAreArray;

/// Every so many-th call of an operation is held, as far as nobody asks for all of them; that each one may be
/// shows tests/faults/hang_test.cpp.
long Step() {
    const char* const wanted = std::getenv("ZEB_FAULTS");
    return wanted != nullptr && std::string_view(wanted) == "full" ? 1 : 3;
}

constexpr std::uint16_t kShutdown = 0;
constexpr std::uint16_t kStop = 1;
constexpr std::uint16_t kReadContacts = 15;
constexpr std::uint16_t kReadCalendars = 16;

Bytes TextArgument(const std::wstring& text) {
    return ByteWriter().String(std::u16string(text.begin(), text.end())).Written();
}

/// What a store has: the surnames of its contacts and the subjects of its appointments.
struct Items {
    std::vector<std::wstring> contacts = {L"Alpha", L"Beta", L"Gamma"};
    std::vector<std::wstring> appointments = {L"Review", L"Training"};
};

/// The kinds of operations by what the end of a call that hung shows of them.
enum class Kind { kRead, kCount, kList, kWrite };

/// An operation that may meet a call that hangs.
struct Operation {
    const char* name;
    Kind kind;
    std::uint16_t procedure;
    /// Its arguments, with a name that no other call had.
    Bytes (*arguments)(const std::wstring& name);
    /// The items that it is about.
    std::vector<std::wstring> Items::*items;
};

void PrintTo(const Operation& operation, std::ostream* out) {
    *out << operation.name;
}

Bytes NoArguments(const std::wstring& /*name*/) {
    return {};
}

Bytes OneCharacter(const std::wstring& /*name*/) {
    return Hex("78 00");
}

Bytes NoMap(const std::wstring& /*name*/) {
    return ReadAll();
}

/// A map that is not there yet, for which everything has changed.
Bytes NewMap(const std::wstring& name) {
    return ByteWriter()
        .String(u"")
        .Align(4)
        .String(std::u16string(name.begin(), name.end()) + u".map")
        .Written();
}

Bytes NewContact(const std::wstring& name) {
    return TextArgument(L"<Contact><lFlag>8</lFlag><LastName>" + name + L"</LastName></Contact>");
}

Bytes NewAppointment(const std::wstring& name) {
    return TextArgument(L"<Calendar><lFlag>8</lFlag><lCalType>3</lCalType><Description>" + name +
                        L"</Description><dtStartTime>05/10/2010 10:00:00</dtStartTime>"
                        L"<dtEndTime>05/10/2010 11:00:00</dtEndTime></Calendar>");
}

/// The text of the first element of a name; empty if there is none.
std::wstring ElementText(const std::wstring& document, const std::wstring& name) {
    const std::wstring begin = L"<" + name + L">";
    const std::size_t first = document.find(begin);
    const std::size_t end = document.find(L"</" + name + L">");
    return first == std::wstring::npos || end == std::wstring::npos
               ? L""
               : document.substr(first + begin.size(), end - first - begin.size());
}

class HangingStore : public testing::TestWithParam<Operation> {
  protected:
    HangingStore() {
        const std::filesystem::path calendar = m_agent.MakeMailFolder(L"Calendar");
        for (const std::wstring& subject : m_items.appointments) {
            WriteAppointmentFile(calendar / (subject + L".msg"), subject);
        }
    }

    /// Makes the call with its n-th call of the store held meanwhile; false if there was none.
    bool CallWithHang(long n) {
        const std::wstring name = m_agent.Contacts().parent_path() / (L"new" + std::to_wstring(n));
        CommandConnection first;
        LogOn(first);
        const std::size_t sent = m_endpoint.Calls().size();
        m_hold.HoldCall(n);
        std::future<CallPdu> answer = std::async(
            std::launch::async, [&] { return first.Call(GetParam().procedure, GetParam().arguments(name)); });
        const bool held = m_hold.WaitUntilHeld(answer);
        CommandConnection second;
        if (held) {
            StopAndLogOn(second);
            EXPECT_TRUE(m_hold.IsHeld());
        }
        m_hold.LetGoOn();
        const CallPdu ended = answer.get();
        if (GetParam().kind == Kind::kWrite) {
            (m_items.*GetParam().items).push_back(name);
        }
        ExpectAnswer(ended, sent);
        if (held && GetParam().kind != Kind::kRead) {
            // No read took the Stop yet.
            EXPECT_EQ(second.Call(kReadContacts, ReadAll()).stub, Failure());
        }
        ExpectWholeReads(second);
        return held;
    }

    /// Makes the call and tells the agent to end while its n-th call of the store is held.
    void EndDuring(long n) {
        CommandConnection first;
        LogOn(first);
        m_hold.HoldCall(n);
        std::future<CallPdu> answer = std::async(std::launch::async, [&] {
            return first.Call(GetParam().procedure,
                              GetParam().arguments(m_agent.Contacts().parent_path() / L"new"));
        });
        ASSERT_TRUE(m_hold.WaitUntilHeld(answer));
        const std::size_t sent = m_endpoint.Calls().size();
        CommandConnection second;
        EXPECT_EQ(second.Call(kShutdown).type, PduType::kResponse);
        ASSERT_TRUE(m_endpoint.WaitForCalls(sent + 1));
        EXPECT_EQ(m_endpoint.Calls().back().procedure, kMAPIServerShutdown);
        WaitUntilLogged("RpcServerUnregisterIf returned");
        EXPECT_TRUE(m_agent.IsRunning());
        m_hold.LetGoOn();
        // Besides its documents the endpoint had the word of the end.
        const CallPdu ended = answer.get();
        ExpectAnswer(ended, 1);
        if (GetParam().kind == Kind::kRead) {
            // Nobody stopped it.
            EXPECT_EQ(ended.stub, Success());
        }
        EXPECT_EQ(m_agent.WaitForExit(), 0U);
        if (GetParam().kind == Kind::kWrite) {
            (m_items.*GetParam().items).emplace_back(L"new");
        }
        // One file an item, and none that was begun and left.
        EXPECT_EQ(FilesIn(m_agent.Contacts()), m_items.contacts.size());
        EXPECT_EQ(FilesIn(m_agent.MakeMailFolder(L"Calendar")), m_items.appointments.size());
    }

  private:
    void WaitUntilLogged(const char* line) const {
        const ULONGLONG end = GetTickCount64() + kPatienceMilliseconds;
        while (m_agent.Log().find(line) == std::string::npos && GetTickCount64() < end) {
            Sleep(1);
        }
    }
    static std::size_t FilesIn(const std::filesystem::path& folder) {
        const std::filesystem::directory_iterator entries(folder);
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }
    /// What another desktop program does. It must not have to wait.
    static void StopAndLogOn(CommandConnection& second) {
        EXPECT_EQ(second.Call(kStop).type, PduType::kResponse);
        LogOn(second);
    }
    /// A Stop leaves a count, a list and a write as they are, and ends a read unless all had arrived.
    void ExpectAnswer(const CallPdu& answer, std::size_t sent) const {
        ASSERT_EQ(answer.type, PduType::kResponse);
        const std::size_t items = (m_items.*GetParam().items).size();
        const std::size_t arrived = m_endpoint.Calls().size() - sent;
        switch (GetParam().kind) {
            case Kind::kRead:
                EXPECT_LE(arrived, items);
                EXPECT_EQ(answer.stub, arrived == items ? Success() : Failure());
                break;
            case Kind::kCount:
                EXPECT_EQ(answer.stub, ByteWriter().U32(static_cast<std::uint32_t>(items)).U32(0).Written());
                break;
            case Kind::kList:
                EXPECT_EQ(answer.stub, Success());
                break;
            case Kind::kWrite:
                // Behind the two texts.
                ASSERT_GE(answer.stub.size(), Success().size());
                EXPECT_EQ(Bytes(answer.stub.end() - 4, answer.stub.end()), Success());
                break;
        }
    }
    void ExpectWholeReads(CommandConnection& connection) {
        EXPECT_THAT(ReadTexts(connection, kReadContacts, kMAPISendBackOneContact, L"LastName"),
                    UnorderedElementsAreArray(m_items.contacts));
        EXPECT_THAT(ReadTexts(connection, kReadCalendars, kMAPISendBackOneCalenda, L"Description"),
                    UnorderedElementsAreArray(m_items.appointments));
    }
    /// Reads everything of a kind, and gives the text of an element of each document.
    std::vector<std::wstring> ReadTexts(CommandConnection& connection, std::uint16_t procedure,
                                        std::uint16_t callback, const wchar_t* element) {
        const std::size_t sent = m_endpoint.Calls().size();
        EXPECT_EQ(connection.Call(procedure, ReadAll()).stub, Success());
        const std::vector<CallPdu> calls = m_endpoint.Calls();
        std::vector<std::wstring> texts;
        for (std::size_t i = sent; i < calls.size(); ++i) {
            texts.push_back(ElementText(Document(calls[i], callback), element));
        }
        return texts;
    }

    // Made before the agent, which looks for it, and gone behind it.
    StoreHold m_hold;
    Items m_items;
    AgentProcess m_agent{m_items.contacts, L"body", FileNamedBy(L"ZEB_HELD_STORE")};
    CallbackEndpoint m_endpoint;
};

TEST_P(HangingStore, KeepsNobodyElseWaitingAndTheNextReadIsWhole) {
    long n = 1;
    for (; !HasFailure(); n += Step()) {
        SCOPED_TRACE(testing::Message() << "call " << n);
        if (!CallWithHang(n)) {
            break;
        }
    }
    EXPECT_GT(n, 1);
}

/// An agent that is told to end while a call is at work.
class EndingAgent : public HangingStore {};

TEST_P(EndingAgent, FinishesACallThatHasJustBegunAndEndsWith0) {
    EndDuring(1);
}
TEST_P(EndingAgent, FinishesACallInItsMidstAndEndsWith0) {
    EndDuring(3);
}

const auto kOperations = testing::Values(
    Operation{"ReadContacts", Kind::kRead, kReadContacts, NoMap, &Items::contacts},
    Operation{"ReadCalendars", Kind::kRead, kReadCalendars, NoMap, &Items::appointments},
    Operation{"ReadContactChanges", Kind::kRead, kReadContacts, NewMap, &Items::contacts},
    Operation{"ReadCalendarChanges", Kind::kRead, kReadCalendars, NewMap, &Items::appointments},
    Operation{"CountContacts", Kind::kCount, 5, NoArguments, &Items::contacts},
    Operation{"CountCalendars", Kind::kCount, 6, NoArguments, &Items::appointments},
    Operation{"ListFolders", Kind::kList, 7, OneCharacter, &Items::contacts},
    Operation{"AddContact", Kind::kWrite, 13, NewContact, &Items::contacts},
    Operation{"AddCalendar", Kind::kWrite, 14, NewAppointment, &Items::appointments});

std::string NameOf(const testing::TestParamInfo<Operation>& operation) {
    return operation.param.name;
}

INSTANTIATE_TEST_SUITE_P(During, HangingStore, kOperations, NameOf);
INSTANTIATE_TEST_SUITE_P(During, EndingAgent, kOperations, NameOf);

}  // namespace
