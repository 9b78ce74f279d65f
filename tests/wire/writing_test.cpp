// Writes seen from the desktop program's side of both pipes: what they hand back, against the files of the
// store and what a read then shows.

#include <gmock/gmock.h>

#include <iterator>

#include "tests/wire/agent_process.h"
#include "tests/wire/callback_endpoint.h"
#include "tests/wire/command_connection.h"
#include "tests/wire/contact_calls.h"

namespace {

using testing::HasSubstr;
using testing::SizeIs;

/// A text without the terminator that it must have.
std::wstring TextOf(const WireString& text) {
    EXPECT_EQ(text.units.find(u'\0'), text.units.size() - 1);
    return {text.units.begin(), text.units.end() - 1};
}

/// What a write hands back.
struct WriteAnswer {
    std::wstring id;
    std::wstring time;
    std::uint32_t status = 77;
};

constexpr std::uint16_t kWriteContacts = 13;
constexpr std::uint16_t kWriteCalendars = 14;

Bytes TextArgument(const std::wstring& text) {
    return ByteWriter().String(std::u16string(text.begin(), text.end())).Written();
}

WriteAnswer WriteDocument(CommandConnection& connection, std::uint16_t procedure,
                          const std::wstring& document) {
    const CallPdu call = connection.Call(procedure, TextArgument(document));
    EXPECT_EQ(call.type, PduType::kResponse);
    ByteReader reader(call.stub);
    WriteAnswer answer;
    answer.id = TextOf(ReadString(reader));
    answer.time = TextOf(ReadString(reader));
    reader.Align(4);
    answer.status = reader.U32();
    EXPECT_TRUE(reader.AtEnd());
    return answer;
}

WriteAnswer Write(CommandConnection& connection, const std::wstring& elements) {
    return WriteDocument(connection, kWriteContacts, L"<Contact>" + elements + L"</Contact>");
}

std::wstring CalendarDocument(const std::wstring& elements) {
    return L"<Calendar>" + elements + L"</Calendar>";
}

WriteAnswer WriteCalendar(CommandConnection& connection, const std::wstring& elements) {
    return WriteDocument(connection, kWriteCalendars, CalendarDocument(elements));
}

std::wstring Element(const std::wstring& name, const std::wstring& text) {
    return L"<" + name + L">" + text + L"</" + name + L">";
}

/// The text of an element of a document that has it once.
std::wstring ElementText(const std::wstring& document, const std::wstring& name) {
    const std::wstring begin = L"<" + name + L">";
    const std::size_t first = document.find(begin);
    const std::size_t end = document.find(L"</" + name + L">");
    EXPECT_TRUE(first != std::wstring::npos && end != std::wstring::npos);
    return first == std::wstring::npos ? L""
                                       : document.substr(first + begin.size(), end - first - begin.size());
}

/// The one document of a read of all contacts, or of all items that another procedure reads and sends.
std::wstring ReadTheOne(CommandConnection& connection, const CallbackEndpoint& endpoint,
                        std::uint16_t procedure = 15, std::uint16_t callback = kMAPISendBackOneContact) {
    const std::size_t before = endpoint.Calls().size();
    EXPECT_EQ(connection.Call(procedure, ReadAll()).stub, Success());
    const std::vector<CallPdu> calls = endpoint.Calls();
    EXPECT_EQ(calls.size(), before + 1);
    return calls.empty() ? L"" : Document(calls.back(), callback);
}

std::wstring ReadTheOneCalendar(CommandConnection& connection, const CallbackEndpoint& endpoint) {
    return ReadTheOne(connection, endpoint, 16, kMAPISendBackOneCalenda);
}

std::size_t FilesIn(const std::filesystem::path& folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

std::size_t Files(const AgentProcess& agent) {
    return FilesIn(agent.Contacts());
}

TEST(Writing, AddChangeAndDeleteHandBackTheIdentifierAndTheTimeThatAReadShows) {
    const AgentProcess agent;
    const CallbackEndpoint endpoint;
    CommandConnection connection;
    LogOn(connection);

    const WriteAnswer added = Write(connection, L"<lFlag>8</lFlag><LastName>Alpha</LastName>");
    EXPECT_EQ(added.status, 0U);
    EXPECT_THAT(added.id, SizeIs(testing::Gt(0U)));
    EXPECT_EQ(added.id.find_first_not_of(L"0123456789ABCDEF"), std::wstring::npos);
    EXPECT_EQ(Files(agent), 1U);
    const std::wstring first = ReadTheOne(connection, endpoint);
    EXPECT_EQ(ElementText(first, L"LastName"), L"Alpha");
    EXPECT_EQ(ElementText(first, L"PIMID"), added.id);
    EXPECT_EQ(ElementText(first, L"lastModifiedTime"), added.time);

    const WriteAnswer changed =
        Write(connection, L"<lFlag>4</lFlag>" + Element(L"PIMID", added.id) + L"<LastName>Beta</LastName>");
    EXPECT_EQ(changed.status, 0U);
    EXPECT_EQ(changed.id, added.id);
    const std::wstring second = ReadTheOne(connection, endpoint);
    EXPECT_EQ(ElementText(second, L"LastName"), L"Beta");
    EXPECT_EQ(ElementText(second, L"lastModifiedTime"), changed.time);
    EXPECT_EQ(Files(agent), 1U);

    const WriteAnswer deleted = Write(connection, L"<lFlag>32</lFlag>" + Element(L"PIMID", added.id));
    EXPECT_EQ(deleted.status, 0U);
    EXPECT_EQ(deleted.id, added.id);
    EXPECT_EQ(Files(agent), 0U);
}

TEST(Writing, ChangeThatCannotBeSavedHandsBackTheTimeOfTheOldContact) {
    const AgentProcess agent({L"Alpha"});
    const CallbackEndpoint endpoint;
    // Open here, the file cannot be replaced. Its own time is the contact's, and long ago.
    const FileHandle file(CreateFileW((agent.Contacts() / "1001.msg").c_str(),
                                      GENERIC_READ | FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(file);
    const SYSTEMTIME longAgo{2001, 2, 0, 3, 12, 30, 45, 0};
    FILETIME time{};
    ASSERT_NE(SystemTimeToFileTime(&longAgo, &time), FALSE);
    ASSERT_NE(SetFileTime(file.Get(), nullptr, nullptr, &time), FALSE);
    CommandConnection connection;
    LogOn(connection);

    const std::wstring before = ReadTheOne(connection, endpoint);
    const WriteAnswer answer =
        Write(connection, L"<lFlag>4</lFlag>" + Element(L"PIMID", ElementText(before, L"PIMID")) +
                              L"<LastName>Beta</LastName>");
    EXPECT_EQ(answer.status, 0U);
    EXPECT_EQ(answer.id, ElementText(before, L"PIMID"));
    EXPECT_EQ(answer.time.substr(6, 4), L"2001");
    EXPECT_EQ(answer.time, ElementText(before, L"lastModifiedTime"));
    EXPECT_THAT(agent.Log(), HasSubstr("CMAPIObject::UpdateContact - Finish(Failed)\r\n"));
    EXPECT_EQ(ElementText(ReadTheOne(connection, endpoint), L"LastName"), L"Alpha");
}

const std::wstring kAppointment =
    L"<lCalType>3</lCalType><Description>Dentist</Description><Location>Room 4</Location>"
    L"<dtStartTime>03/10/2026 09:30:00</dtStartTime><dtEndTime>03/10/2026 10:15:00</dtEndTime>"
    L"<lReminderMinutes>15</lReminderMinutes>";

/// The callbacks that have come are so many, and the last one is the empty text that ends a write.
void ExpectTheEndOfAWrite(const CallbackEndpoint& endpoint, std::size_t calls) {
    const std::vector<CallPdu> came = endpoint.Calls();
    ASSERT_EQ(came.size(), calls);
    EXPECT_EQ(Document(came.back(), kMAPISendBackOneCalenda), L"");
    // A text of one character, its terminator.
    EXPECT_EQ(came.back().stub, Hex("01 00 00 00  00 00 00 00  01 00 00 00  00 00"));
}

TEST(WritingCalendars, AddChangeAndDeleteHandBackTheIdentifierAndTheTimeThatAReadShows) {
    const AgentProcess agent;
    const std::filesystem::path folder = agent.MakeMailFolder(L"Calendar");
    const CallbackEndpoint endpoint;
    CommandConnection connection;
    LogOn(connection);

    const WriteAnswer added = WriteCalendar(connection, L"<lFlag>8</lFlag>" + kAppointment);
    EXPECT_EQ(added.status, 0U);
    EXPECT_THAT(added.id, SizeIs(testing::Gt(0U)));
    EXPECT_EQ(added.id.find_first_not_of(L"0123456789ABCDEF"), std::wstring::npos);
    EXPECT_EQ(FilesIn(folder), 1U);
    ExpectTheEndOfAWrite(endpoint, 1);
    const std::wstring first = ReadTheOneCalendar(connection, endpoint);
    EXPECT_EQ(ElementText(first, L"Description"), L"Dentist");
    EXPECT_EQ(ElementText(first, L"dtStartTime"), L"03/10/2026 09:30:00");
    EXPECT_EQ(ElementText(first, L"dtEndTime"), L"03/10/2026 10:15:00");
    EXPECT_EQ(ElementText(first, L"lReminderMinutes"), L"15");
    EXPECT_EQ(ElementText(first, L"PIMID"), added.id);
    EXPECT_EQ(ElementText(first, L"lastModifiedTime"), added.time);

    const WriteAnswer changed =
        WriteCalendar(connection, L"<lFlag>4</lFlag>" + Element(L"PIMID", added.id) +
                                      L"<lCalType>3</lCalType><Description>Doctor</Description>");
    EXPECT_EQ(changed.status, 0U);
    EXPECT_EQ(changed.id, added.id);
    ExpectTheEndOfAWrite(endpoint, 3);
    const std::wstring second = ReadTheOneCalendar(connection, endpoint);
    EXPECT_EQ(ElementText(second, L"Description"), L"Doctor");
    EXPECT_EQ(ElementText(second, L"lastModifiedTime"), changed.time);

    const WriteAnswer deleted = WriteCalendar(connection, L"<lFlag>32</lFlag>" + Element(L"PIMID", added.id));
    EXPECT_EQ(deleted.status, 0U);
    EXPECT_EQ(deleted.id, added.id);
    EXPECT_EQ(deleted.time, L"12/30/1899 00:00:00");
    EXPECT_EQ(FilesIn(folder), 0U);
    ExpectTheEndOfAWrite(endpoint, 5);
}

TEST(WritingCalendars, EveryWriteEndsWithOneEmptyCallbackWhateverCameOfIt) {
    const AgentProcess agent;
    const std::filesystem::path folder = agent.MakeMailFolder(L"Calendar");
    const CallbackEndpoint endpoint;
    CommandConnection connection;
    LogOn(connection);
    std::size_t calls = 0;
    for (const std::wstring document :
         {L"", L"no document", L"<Calendar/>", L"<Calendar><lFlag>8</lFlag></Calendar>",
          L"<Calendar><lFlag>4</lFlag><lCalType>3</lCalType><PIMID>00AB</PIMID></Calendar>",
          L"<Calendar><lFlag>32</lFlag><PIMID>00AB</PIMID></Calendar>"}) {
        const WriteAnswer answer = WriteDocument(connection, kWriteCalendars, document);
        EXPECT_EQ(answer.status, 0U);
        EXPECT_EQ(answer.id, document.find(L"00AB") == std::wstring::npos ? L"" : L"00AB");
        EXPECT_EQ(answer.time, L"12/30/1899 00:00:00");
        ExpectTheEndOfAWrite(endpoint, ++calls);
    }
    EXPECT_EQ(FilesIn(folder), 0U);
}

TEST(WritingCalendars, OutputsHoldNoMoreThanTheirFourHundredAndForty) {
    const AgentProcess agent;
    const CallbackEndpoint endpoint;
    CommandConnection connection;
    LogOn(connection);
    const WriteAnswer answer = WriteCalendar(connection, Element(L"PIMID", std::wstring(5000, L'F')));
    EXPECT_EQ(answer.status, 0U);
    EXPECT_EQ(answer.id, std::wstring(399, L'F'));
    EXPECT_EQ(answer.time, L"12/30/1899 00:00:00");
}

TEST(WritingCalendars, WithoutAnEndpointTheAppointmentIsWrittenTheCallFaultsAndTheAgentGoesOn) {
    const AgentProcess agent;
    const std::filesystem::path folder = agent.MakeMailFolder(L"Calendar");
    CommandConnection connection;
    LogOn(connection);

    const CallPdu call =
        connection.Call(kWriteCalendars, TextArgument(CalendarDocument(L"<lFlag>8</lFlag>" + kAppointment)));
    EXPECT_EQ(call.type, PduType::kFault);
    EXPECT_EQ(call.faultStatus, static_cast<std::uint32_t>(RPC_S_SERVER_UNAVAILABLE));
    EXPECT_EQ(FilesIn(folder), 1U);
    const std::string log = agent.Log();
    EXPECT_THAT(log, HasSubstr("CMAPIObject::AddCalendar - Finish(Succeeded)\r\n"));
    EXPECT_THAT(log, testing::Not(HasSubstr("CMAPIObject::WriteCalendars - Finish")));

    EXPECT_TRUE(agent.IsRunning());
    const CallbackEndpoint endpoint;
    CommandConnection next;
    LogOn(next);
    const std::wstring document = ReadTheOneCalendar(next, endpoint);
    EXPECT_EQ(ElementText(document, L"Description"), L"Dentist");
    const WriteAnswer deleted =
        WriteCalendar(next, L"<lFlag>32</lFlag>" + Element(L"PIMID", ElementText(document, L"PIMID")));
    EXPECT_EQ(deleted.status, 0U);
    EXPECT_EQ(FilesIn(folder), 0U);
}

}  // namespace
