#include "store_fixture.h"

#include "localstore/file_system.h"
#include "localstore/msg_content.h"
#include "localstore/msg_storage.h"

using namespace localstore_test;

namespace {

using localstore::Bytes;
using localstore::MessageContent;
using localstore::Property;

constexpr ULONG kMessageCodePage = 0x3FFD0003;
constexpr ULONG kInternetCodePage = 0x3FDE0003;

// Greek alpha and beta, and the same bytes as Latin letters.
constexpr wchar_t kGreek[] = L"\x03B1\x03B2";
constexpr wchar_t kLatin[] = L"\x00E1\x00E2";

}  // namespace

class CodePages : public StoreTest {
  protected:
    /// A file whose strings are 8-bit, with the given code page properties.
    void WriteMessageFile(std::initializer_list<std::pair<ULONG, ULONG>> codePages) const {
        MessageContent content;
        content.properties.Set(Property::OfBytes(PR_SURNAME_A, Bytes{0xE1, 0xE2}));
        Property words;
        words.tag = 0x6700101E;
        words.items = {std::make_shared<const Bytes>(Bytes{0xE1}), std::make_shared<const Bytes>(Bytes{'x'})};
        content.properties.Set(words);
        localstore::PartContent part;
        part.header = Bytes(localstore::kAttachmentHeader);
        part.properties.Set(Property::OfBytes(PR_ATTACH_FILENAME_A, Bytes{0xE2}));
        content.attachments.push_back(part);
        for (const auto& [tag, codePage] : codePages) {
            content.properties.Set(Property::OfFixed(tag, codePage));
        }
        WriteFileBytes(PathOf(L"Work\\Mail\\Contacts\\a.msg"),
                       localstore::WriteStorage(localstore::WriteMessage(content)));
    }
    [[nodiscard]] static ComPtr<IMessage> TheMessage() {
        const ComPtr<IMAPIFolder> contacts = OpenContacts();
        const RowSet rows = ContentsOf(contacts.Get(), {PR_ENTRYID});
        EXPECT_EQ(rows->cRows, 1U);
        const SBinary& id = rows->aRow[0].lpProps[0].Value.bin;
        return OpenMessage(contacts.Get(), {id.lpb, id.lpb + id.cb});
    }
};

TEST_F(CodePages, TheMessagesOwnComesFirst) {
    WriteMessageFile({{kMessageCodePage, 1253}, {kInternetCodePage, 1252}});
    EXPECT_EQ(TextOf(TheMessage().Get(), PR_SURNAME_W), kGreek);
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    EXPECT_EQ(FirstTexts(ContentsOf(contacts.Get(), {PR_SURNAME_W})), (std::vector<std::wstring>{kGreek}));
}

TEST_F(CodePages, ARestrictionComparesInTheMessagesOwn) {
    WriteMessageFile({{kMessageCodePage, 1253}});
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    for (const auto& [text, count] : {std::pair(kGreek, 1U), std::pair(kLatin, 0U)}) {
        SPropValue value = StringValue(PR_SURNAME_W, text);
        SRestriction restriction{};
        restriction.rt = RES_PROPERTY;
        restriction.res.resProperty = {RELOP_EQ, value.ulPropTag, &value};
        EXPECT_EQ(ContentsOf(contacts.Get(), {PR_SURNAME_W}, &restriction)->cRows, count);
    }
}

TEST_F(CodePages, TheInternetCodePageComesSecond) {
    WriteMessageFile({{kInternetCodePage, 1253}});
    EXPECT_EQ(TextOf(TheMessage().Get(), PR_SURNAME_W), kGreek);
}

TEST_F(CodePages, TheSystemsComesLastAndForOnesThatNobodyKnows) {
    WriteMessageFile({});
    wchar_t system[3] = {};
    MultiByteToWideChar(CP_ACP, 0, "\xE1\xE2", -1, system, 3);
    EXPECT_EQ(TextOf(TheMessage().Get(), PR_SURNAME_W), system);
    WriteMessageFile({{kMessageCodePage, 99'999}});
    EXPECT_EQ(TextOf(TheMessage().Get(), PR_SURNAME_W), system);
    WriteMessageFile({{kMessageCodePage, 1200}});
    EXPECT_EQ(TextOf(TheMessage().Get(), PR_SURNAME_W), system);
}

TEST_F(CodePages, NarrowStringsComeInTheSystemsCodePage) {
    WriteMessageFile({{kMessageCodePage, 1252}});
    const OneValue value(TheMessage().Get(), PR_SURNAME_A);
    wchar_t back[8] = {};
    MultiByteToWideChar(CP_ACP, 0, value.Value().Value.lpszA, -1, back, 8);
    EXPECT_STREQ(back, kLatin);
}

TEST_F(CodePages, MultipleStringsAreDecodedToo) {
    WriteMessageFile({{kMessageCodePage, 1253}});
    const OneValue value(TheMessage().Get(), 0x6700101F);
    ASSERT_EQ(value.Value().Value.MVszW.cValues, 2U);
    EXPECT_STREQ(value.Value().Value.MVszW.lppszW[0], L"\x03B1");
}

TEST_F(CodePages, AMessageThatIsSavedBecomesUnicode) {
    WriteMessageFile({{kMessageCodePage, 1253}});
    const ComPtr<IMessage> message = TheMessage();
    ASSERT_EQ(Set(message.Get(), {StringValue(PR_GIVEN_NAME_W, L"\x5C71")}), S_OK);
    ASSERT_EQ(message->SaveChanges(0), S_OK);

    const char* reason = "";
    const Bytes file = localstore::ReadWholeFile(PathOf(L"Work\\Mail\\Contacts\\a.msg")).bytes;
    const std::optional<MessageContent> content =
        localstore::ReadMessage(*localstore::ReadStorage(file, reason), reason);
    ASSERT_TRUE(content);
    EXPECT_EQ(content->properties.Find(PROP_ID(PR_SURNAME_A))->tag, PR_SURNAME_W);
    EXPECT_EQ(content->properties.Find(0x6700)->tag, 0x6700101FU);
    EXPECT_EQ(content->attachments[0].properties.Find(PROP_ID(PR_ATTACH_FILENAME))->tag,
              PR_ATTACH_FILENAME_W);
    EXPECT_NE(content->properties.Find(0x340D)->fixed & 0x00040000U, 0U);
    EXPECT_EQ(TextOf(message.Get(), PR_SURNAME_W), kGreek);
}

TEST_F(CodePages, AStreamOverNarrowTextIsDecoded) {
    WriteMessageFile({{kMessageCodePage, 1253}});
    const std::vector<BYTE> bytes = ReadStream(TheMessage().Get(), PR_SURNAME_W);
    EXPECT_EQ(bytes, (std::vector<BYTE>{0xB1, 0x03, 0xB2, 0x03}));
}
