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

WriteAnswer Write(CommandConnection& connection, const std::wstring& elements) {
    const std::wstring document = L"<Contact>" + elements + L"</Contact>";
    const CallPdu call =
        connection.Call(13, ByteWriter().String(std::u16string(document.begin(), document.end())).Written());
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

/// The one document of a read of all contacts.
std::wstring ReadTheOne(CommandConnection& connection, const CallbackEndpoint& endpoint) {
    const std::size_t before = endpoint.Calls().size();
    EXPECT_EQ(connection.Call(15, ReadAll()).stub, Success());
    const std::vector<CallPdu> calls = endpoint.Calls();
    EXPECT_EQ(calls.size(), before + 1);
    return calls.empty() ? L"" : Document(calls.back());
}

std::size_t Files(const AgentProcess& agent) {
    const std::filesystem::directory_iterator entries(agent.Contacts());
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
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

}  // namespace
