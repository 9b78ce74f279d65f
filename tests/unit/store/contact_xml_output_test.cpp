// One contact as a document: the row part from values, the message part from messages of the store.

#include "contacts/contact_xml_output.h"

#include <mapitags.h>

#include <filesystem>
#include <fstream>

#include "contacts/contact_fields.h"
#include "contacts/contact_photo.h"
#include "localstore/recorder.h"
#include "mapi/property_tags.h"
#include "support/user_folders.h"
#include "tests/unit/store/store_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

/// A document text behind its declaration, with line feeds as they were put in.
CString Body(CXMLParser& document) {
    CString text = document.GetDocumentText();
    text.erase(0, text.find(L"<Contact"));
    for (std::size_t at = 0; (at = text.find(L"\r\n", at)) != CString::npos;) {
        text.erase(at, 1);
    }
    return text.Trim();
}

SPropValue TextValue(ULONG tag, const wchar_t* text) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.lpszW = const_cast<LPWSTR>(text);
    return value;
}

SPropValue TimeValue(ULONG tag, WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second) {
    const SYSTEMTIME time{year, month, 0, day, hour, minute, second, 0};
    SPropValue value{};
    value.ulPropTag = tag;
    SystemTimeToFileTime(&time, &value.Value.ft);
    return value;
}

SPropValue BinaryValue(ULONG tag, BYTE* bytes, ULONG count) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.bin = {count, bytes};
    return value;
}

SPropValue ErrorValue(ULONG tag) {
    SPropValue value{};
    value.ulPropTag = PROP_TAG(PT_ERROR, PROP_ID(tag));
    value.Value.err = MAPI_E_NOT_FOUND;
    return value;
}

/// What the platform calls the local time of a UTC time.
SYSTEMTIME Local(WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second) {
    const SYSTEMTIME utc{year, month, 0, day, hour, minute, second, 0};
    SYSTEMTIME local{};
    SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local);
    return local;
}

struct RowResult {
    CString body;
    CString id;
    CString text;
};

class ContactRow : public ::testing::Test {
  protected:
    static RowResult Append(const std::vector<SPropValue>& values) {
        CXMLParser document;
        EXPECT_TRUE(document.InitDocument());
        document.CreateHeader();
        document.CreateRootElement(L"Contact");
        RowResult result;
        AppendContactRowToXml(document, result.id, values.data(), static_cast<ULONG>(values.size()),
                              &result.text);
        result.body = Body(document);
        return result;
    }
};

TEST_F(ContactRow, EachTextPropertyHasItsElement) {
    const std::pair<ULONG, const wchar_t*> elements[] = {
        {0x3A11001F, L"LastName"},
        {0x3A44001F, L"MiddleName"},
        {0x3A06001F, L"FirstName"},
        {0x3A09001F, L"HomeNumber1"},
        {0x3A25001F, L"HomeFax"},
        {0x3A08001F, L"BusinessNumber"},
        {0x3A24001F, L"BusinessFax"},
        {0x3A1C001F, L"Mobile1"},
        {0x3A21001F, L"Pager1"},
        {0x3A2F001F, L"HomeNumber2"},
        {0x3A1B001F, L"BusinessNumber2"},
        {0x3A1F001F, L"OtherNumber"},
        {0x3A23001F, L"OtherFax"},
        {0x3A57001F, L"CompanyNumber"},
        {0x3A1A001F, L"PrimaryNumber"},
        {0x3A2E001F, L"AssistantNumber"},
        {0x3A2D001F, L"IsdnNumber"},
        {0x3A2C001F, L"TelexNumber"},
        {0x3A4B001F, L"TtyTddNumber"},
        {0x3A1E001F, L"CarNumber"},
        {0x3A1D001F, L"RadioNumber"},
        {0x3A02001F, L"CallBackNumber"},
        {0x3A50001F, L"Web1"},
        {0x3A51001F, L"Web2"},
        {0x3A16001F, L"CompanyX"},
        {0x3A17001F, L"JobTitle"},
        {0x3A4F001F, L"NickName"},
        {0x3A5A001F, L"HomeCountry"},
        {0x3A5C001F, L"HomeState"},
        {0x3A59001F, L"HomeCity"},
        {0x3A5D001F, L"HomeStreet1"},
        {0x3A5B001F, L"HomeZip"},
        {0x3A5E001F, L"HomePobox"},
        {0x3A60001F, L"OtherCountry"},
        {0x3A62001F, L"OtherState"},
        {0x3A5F001F, L"OtherCity"},
        {0x3A63001F, L"OtherStreet1"},
        {0x3A61001F, L"OtherZip"},
        {0x3A64001F, L"OtherPobox"},
        {0x3A05001F, L"PrefixName"},
        {0x3A45001F, L"SuffixName"},
        {0x3A26001F, L"BusinessCountry"},
        {0x3A27001F, L"BusinessCity"},
        {0x3A28001F, L"BusinessState"},
        {0x3A29001F, L"BusinessStreet1"},
        {0x3A2A001F, L"BusinessZip"},
        {0x3A2B001F, L"BusinessPobox"},
    };
    for (const auto& [tag, element] : elements) {
        const CString expected = CString::Format(L"<Contact>\n\t<%s>x</%s></Contact>", element, element);
        EXPECT_EQ(Append({TextValue(tag, L"x")}).body, expected);
    }
    EXPECT_EQ(kContactRowElements.size(), std::size(elements));
}

TEST_F(ContactRow, ElementsStandInTheOrderOfTheValues) {
    const RowResult result = Append({TextValue(0x3A11001F, L"Doe"), TextValue(0x3A06001F, L"John")});
    EXPECT_EQ(result.body, L"<Contact>\n\t<LastName>Doe</LastName>\n\t<FirstName>John</FirstName></Contact>");
}

TEST_F(ContactRow, TextOutputIsTheDocumentAtThisMoment) {
    const RowResult result = Append({TextValue(0x3A06001F, L"John")});
    EXPECT_NE(result.text.find(L"<FirstName>John</FirstName></Contact>"), CString::npos);
}

TEST_F(ContactRow, IdentifierIsUpperCaseHexadecimalAndNoElement) {
    BYTE id[] = {0x00, 0xAB};
    const RowResult result = Append({BinaryValue(PR_ENTRYID, id, 2)});
    EXPECT_EQ(result.id, L"00AB");
    EXPECT_EQ(result.body, L"<Contact/>");
}

TEST_F(ContactRow, LongTermIdentifierStandsInForTheEntryIdentifier) {
    BYTE id[] = {0x00, 0xAB};
    BYTE longTerm[] = {0xCD};
    EXPECT_EQ(
        Append({BinaryValue(PR_ENTRYID, id, 2), BinaryValue(PR_LONGTERM_ENTRYID_FROM_TABLE, longTerm, 1)}).id,
        L"CD");
}

TEST_F(ContactRow, MissingLongTermIdentifierKeepsTheEntryIdentifier) {
    BYTE id[] = {0x00, 0xAB};
    EXPECT_EQ(Append({BinaryValue(PR_ENTRYID, id, 2), ErrorValue(PR_LONGTERM_ENTRYID_FROM_TABLE)}).id,
              L"00AB");
}

TEST_F(ContactRow, AbsentPropertiesAndUnknownTagsLeaveNoElement) {
    EXPECT_EQ(Append({ErrorValue(0x3A06001F), TextValue(0x3001001F, L"name"), ErrorValue(PR_BIRTHDAY)}).body,
              L"<Contact/>");
}

TEST_F(ContactRow, TimesAreLocal) {
    const RowResult result = Append({TimeValue(PR_CREATION_TIME, 2011, 6, 30, 12, 5, 9),
                                     TimeValue(PR_LAST_MODIFICATION_TIME, 2011, 12, 1, 23, 59, 58)});
    const SYSTEMTIME made = Local(2011, 6, 30, 12, 5, 9);
    const SYSTEMTIME changed = Local(2011, 12, 1, 23, 59, 58);
    EXPECT_EQ(result.body,
              CString::Format(
                  L"<Contact>\n\t<CreateTime>%02d/%02d/%04d %02d:%02d:%02d</CreateTime>"
                  L"\n\t<lastModifiedTime>%02d/%02d/%04d %02d:%02d:%02d</lastModifiedTime></Contact>",
                  made.wMonth, made.wDay, made.wYear, made.wHour, made.wMinute, made.wSecond, changed.wMonth,
                  changed.wDay, changed.wYear, changed.wHour, changed.wMinute, changed.wSecond));
}

TEST_F(ContactRow, BirthdayAndAnniversaryAreLocalDates) {
    const RowResult result = Append({TimeValue(PR_WEDDING_ANNIVERSARY, 2001, 5, 6, 12, 0, 0),
                                     TimeValue(PR_BIRTHDAY, 1970, 1, 2, 12, 0, 0)});
    const SYSTEMTIME wedding = Local(2001, 5, 6, 12, 0, 0);
    const SYSTEMTIME birth = Local(1970, 1, 2, 12, 0, 0);
    EXPECT_EQ(result.body, CString::Format(L"<Contact>\n\t<Anniversary>%04d-%02d-%02d</Anniversary>"
                                           L"\n\t<Birthday>%04d-%02d-%02d</Birthday></Contact>",
                                           wedding.wYear, wedding.wMonth, wedding.wDay, birth.wYear,
                                           birth.wMonth, birth.wDay));
}

TEST_F(ContactRow, NullValuesDoNothing) {
    CXMLParser document;
    ASSERT_TRUE(document.InitDocument());
    document.CreateRootElement(L"Contact");
    CString id = L"kept";
    CString text = L"kept";
    AppendContactRowToXml(document, id, nullptr, 3, &text);
    EXPECT_EQ(id, L"kept");
    EXPECT_EQ(text, L"kept");
}

TEST_F(ContactRow, ColumnsAreTheFortySevenInOrder) {
    const ULONG expected[] = {
        0x0FFF0102, 0x66700102, 0x30070040, 0x30080040, 0x3A11001F, 0x3A44001F, 0x3A06001F, 0x3A09001F,
        0x3A25001F, 0x3A08001F, 0x3A24001F, 0x3A1C001F, 0x3A21001F, 0x3A2F001F, 0x3A1B001F, 0x3A1F001F,
        0x3A23001F, 0x3A57001F, 0x3A1A001F, 0x3A2E001F, 0x3A2D001F, 0x3A2C001F, 0x3A4B001F, 0x3A1E001F,
        0x3A1D001F, 0x3A02001F, 0x3A50001F, 0x3A51001F, 0x3A16001F, 0x3A17001F, 0x3A4F001F, 0x3A5A001F,
        0x3A5C001F, 0x3A59001F, 0x3A5D001F, 0x3A5B001F, 0x3A5E001F, 0x3A60001F, 0x3A62001F, 0x3A5F001F,
        0x3A63001F, 0x3A61001F, 0x3A64001F, 0x3A05001F, 0x3A45001F, 0x3A410040, 0x3A420040};
    ASSERT_EQ(kContactColumns->cValues, std::size(expected));
    EXPECT_TRUE(std::equal(std::begin(expected), std::end(expected), kContactColumns->aulPropTag));
}

/// Messages of a store, of which the message part is appended.
class ContactMessage : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        m_writer = std::make_unique<FolderWriter>(L"Work", L"Contacts");
        g_strDataFolder = CString(m_root.c_str()) + L"\\Pictures";
        std::filesystem::create_directories(std::wstring(m_root) + L"\\Pictures");
    }
    void TearDown() override {
        m_writer.reset();
        StoreTest::TearDown();
    }

    static CString Append(IMessage* message) {
        CXMLParser document;
        EXPECT_TRUE(document.InitDocument());
        document.CreateHeader();
        document.CreateRootElement(L"Contact");
        AppendContactMessageToXml(document, message);
        return Body(document);
    }
    /// The text of an element; "(none)" if it is not there.
    static CString Element(const CString& body, const wchar_t* name) {
        if (body.find(CString::Format(L"<%s/>", name)) != CString::npos) {
            return {};
        }
        const CString open = CString::Format(L"<%s>", name);
        const std::size_t start = body.find(open);
        if (start == CString::npos) {
            return {L"(none)"};
        }
        const std::size_t end = body.find(CString::Format(L"</%s>", name), start);
        return body.substr(start + open.size(), end - start - open.size());
    }
    ComPtr<IMessage> MessageWithAddressTexts(const std::vector<std::pair<LONG, const wchar_t*>>& texts) {
        ComPtr<IMessage> message = m_writer->NewMessage(L"IPM.Contact");
        PropertyValues values;
        for (const auto& [id, text] : texts) {
            values.Text(FolderWriter::AddressTag(message.Get(), id), text);
        }
        values.SetOn(message.Get());
        return message;
    }
    static std::string ReadFile(const CString& path) {
        std::ifstream file(std::filesystem::path(path.c_str()), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::unique_ptr<FolderWriter> m_writer;
};

TEST_F(ContactMessage, EmptyContactHasAllElementsOfTheMessagePartEmpty) {
    EXPECT_EQ(
        Append(m_writer->NewMessage(L"IPM.Contact").Get()),
        L"<Contact>\n\t<FULLNAME/>\n\t<SP-BUSINESSCOUNTRY/>\n\t<SP-BUSINESSCITY/>\n\t<SP-BUSINESSSTATE/>"
        L"\n\t<SP-BUSINESSSTREET1/>\n\t<SP-BUSINESSZIP/>\n\t<SP-BUSINESSPOBOX/>\n\t<SP-YOMIFIRSTNAME/>"
        L"\n\t<SP-YOMILASTNAME/>\n\t<SP-BODY/>\n\t<SP-EMAIL1/>\n\t<SP-EMAIL2/>\n\t<SP-EMAIL3/>"
        L"\n\t<SP-IMADRESS IMType=\"4022\"/>\n\t<SP-CATEGORIES/></Contact>");
}

TEST_F(ContactMessage, NamedPropertyThatIsNoTextIsNotTaken) {
    const ComPtr<IMessage> message = m_writer->NewMessage(L"IPM.Contact");
    PropertyValues().Number(FolderWriter::AddressTag(message.Get(), 0x8005, PT_LONG), 5).SetOn(message.Get());
    EXPECT_EQ(Element(Append(message.Get()), L"FULLNAME"), L"");
}

TEST_F(ContactMessage, OfTwoPhotosThePathNamesTheSecond) {
    const ComPtr<IMessage> message = m_writer->NewMessage(L"IPM.Contact");
    FolderWriter::AddAttachment(message.Get(), "first", true);
    FolderWriter::AddAttachment(message.Get(), "second", true);
    EXPECT_EQ(ReadFile(Element(Append(message.Get()), L"PICPath")), "second");
}

TEST_F(ContactMessage, NullMessageAppendsNothing) {
    EXPECT_EQ(Append(nullptr), L"<Contact/>");
}

TEST_F(ContactMessage, NamedTextsHaveTheirElements) {
    const ComPtr<IMessage> message = MessageWithAddressTexts({{0x8005, L"full"},
                                                              {0x8049, L"country"},
                                                              {0x8046, L"city"},
                                                              {0x8047, L"state"},
                                                              {0x8045, L"street"},
                                                              {0x8048, L"zip"},
                                                              {0x804A, L"pobox"},
                                                              {0x802C, L"yomi first"},
                                                              {0x802D, L"yomi last"}});
    const CString body = Append(message.Get());
    EXPECT_EQ(Element(body, L"FULLNAME"), L"full");
    EXPECT_EQ(Element(body, L"SP-BUSINESSCOUNTRY"), L"country");
    EXPECT_EQ(Element(body, L"SP-BUSINESSCITY"), L"city");
    EXPECT_EQ(Element(body, L"SP-BUSINESSSTATE"), L"state");
    EXPECT_EQ(Element(body, L"SP-BUSINESSSTREET1"), L"street");
    EXPECT_EQ(Element(body, L"SP-BUSINESSZIP"), L"zip");
    EXPECT_EQ(Element(body, L"SP-BUSINESSPOBOX"), L"pobox");
    EXPECT_EQ(Element(body, L"SP-YOMIFIRSTNAME"), L"yomi first");
    EXPECT_EQ(Element(body, L"SP-YOMILASTNAME"), L"yomi last");
}

TEST_F(ContactMessage, AddressesOfTypeSmtpAreReadFromTheirOwnProperty) {
    const ComPtr<IMessage> message = MessageWithAddressTexts({{0x8082, L"SMTP"},
                                                              {0x8083, L"one@example.com"},
                                                              {0x8084, L"not this"},
                                                              {0x8092, L"smtp"},
                                                              {0x8093, L"two@example.com"},
                                                              {0x80A2, L"ex"},
                                                              {0x80A3, L"three@example.com"}});
    const CString body = Append(message.Get());
    EXPECT_EQ(Element(body, L"SP-EMAIL1"), L"one@example.com");
    EXPECT_EQ(Element(body, L"SP-EMAIL2"), L"two@example.com");
    EXPECT_EQ(Element(body, L"SP-EMAIL3"), L"three@example.com");
}

TEST_F(ContactMessage, AddressOfTypeExGivesItsReadableText) {
    const ComPtr<IMessage> message = MessageWithAddressTexts(
        {{0x8082, L"EX"}, {0x8083, L"/o=Example/cn=joe"}, {0x8084, L"joe@example.com"}});
    EXPECT_EQ(Element(Append(message.Get()), L"SP-EMAIL1"), L"joe@example.com");
}

TEST_F(ContactMessage, AddressWithoutATypeStaysEmpty) {
    const ComPtr<IMessage> message = MessageWithAddressTexts({{0x8083, L"one@example.com"}});
    EXPECT_EQ(Element(Append(message.Get()), L"SP-EMAIL1"), L"");
}

TEST_F(ContactMessage, BodyOfOneLineBreakCountsAsNone) {
    for (const wchar_t* text : {L"\r\n", L"\n"}) {
        const ComPtr<IMessage> message =
            m_writer->NewMessage(L"IPM.Contact", PropertyValues().Text(PR_BODY_W, text));
        EXPECT_EQ(Element(Append(message.Get()), L"SP-BODY"), L"");
    }
}

TEST_F(ContactMessage, LongBodyArrivesWhole) {
    std::wstring body;
    for (int line = 0; body.size() < 100000; ++line) {
        body += L"Line " + std::to_wstring(line) + L" \x00E4\x65E5\n";
    }
    const ComPtr<IMessage> message =
        m_writer->NewMessage(L"IPM.Contact", PropertyValues().Text(PR_BODY_W, body.c_str()));
    EXPECT_EQ(Element(Append(message.Get()), L"SP-BODY"), CString(body.c_str()));
}

TEST_F(ContactMessage, BodyIsReadInPiecesOf1024Bytes) {
    const std::wstring body(1500, L'x');
    const ComPtr<IMessage> message =
        m_writer->NewMessage(L"IPM.Contact", PropertyValues().Text(PR_BODY_W, body.c_str()));
    recorder::ClearCalls();
    Append(message.Get());
    std::vector<std::string> reads;
    for (const recorder::Call& call : recorder::Calls()) {
        if (call.method == "IStream::Read") {
            reads.push_back(call.arguments);
        }
    }
    ASSERT_EQ(reads.size(), 4U);  // 1024, 1024, 952 and the end
    for (const std::string& arguments : reads) {
        EXPECT_NE(arguments.find("size=1024"), std::string::npos) << arguments;
    }
}

TEST_F(ContactMessage, MessagingAddressCarriesItsService) {
    const std::tuple<const wchar_t*, const wchar_t*, const wchar_t*> addresses[] = {
        {L"aim:joe", L"4023", L"joe"},
        {L"MSN:joe", L"4022", L"MSN:joe"},
        {L"joe", L"4022", L"joe"},
        {L"JABBER:joe", L"4030", L"joe"}};
    for (const auto& [stored, type, text] : addresses) {
        const ComPtr<IMessage> message = MessageWithAddressTexts({{0x8062, stored}});
        const CString expected =
            CString::Format(L"\n\t<SP-IMADRESS IMType=\"%s\">%s</SP-IMADRESS>", type, text);
        EXPECT_NE(Append(message.Get()).find(expected), CString::npos);
    }
}

TEST_F(ContactMessage, CategoriesAreJoined) {
    const ComPtr<IMessage> message = m_writer->NewMessage(L"IPM.Contact");
    const ULONG tag = FolderWriter::KeywordsTag(message.Get());
    PropertyValues().Texts(tag, {L"a", L"b"}).SetOn(message.Get());
    CString categories;
    EXPECT_EQ(GetContactCategories(message.Get(), categories), 1);
    EXPECT_EQ(categories, L"a;b");
    EXPECT_EQ(Element(Append(message.Get()), L"SP-CATEGORIES"), L"a;b");
}

TEST_F(ContactMessage, WithoutCategoriesNothingIsRead) {
    CString categories = L"old";
    EXPECT_EQ(GetContactCategories(m_writer->NewMessage(L"IPM.Contact").Get(), categories), 0);
    EXPECT_EQ(categories, L"");
}

TEST_F(ContactMessage, PhotoIsWrittenToAFileOfItsOwn) {
    const ComPtr<IMessage> message = m_writer->NewMessage(L"IPM.Contact");
    FolderWriter::AddAttachment(message.Get(), "not a photo", false);
    FolderWriter::AddAttachment(message.Get(), "photo bytes", true);
    const CString path = Element(Append(message.Get()), L"PICPath");
    EXPECT_TRUE(path.starts_with((g_strDataFolder + L"\\PIC").c_str())) << ::testing::PrintToString(path);
    EXPECT_TRUE(path.ends_with(L".jpg"));
    EXPECT_EQ(ReadFile(path), "photo bytes");
}

TEST_F(ContactMessage, PhotoThatIsTooBigForARowComesWholeByItsStream) {
    std::string bytes;
    for (std::size_t i = 0; bytes.size() < 200000; ++i) {
        bytes += static_cast<char>(i * 7);
    }
    const ComPtr<IMessage> message = m_writer->NewMessage(L"IPM.Contact");
    FolderWriter::AddAttachment(message.Get(), bytes, true);
    recorder::ClearCalls();
    const CString path = SaveContactPhoto(message.Get());
    EXPECT_EQ(ReadFile(path), bytes);
    bool streamed = false;
    for (const recorder::Call& call : recorder::Calls()) {
        streamed = streamed || call.method == "IMessage::OpenAttach";
    }
    EXPECT_TRUE(streamed);
}

TEST_F(ContactMessage, OfTwoPhotosBothAreWrittenAndTheSecondIsNamed) {
    const ComPtr<IMessage> message = m_writer->NewMessage(L"IPM.Contact");
    FolderWriter::AddAttachment(message.Get(), "first", true);
    FolderWriter::AddAttachment(message.Get(), "second", true);
    const CString path = SaveContactPhoto(message.Get());
    EXPECT_EQ(ReadFile(path), "second");
    const auto files = std::filesystem::directory_iterator(g_strDataFolder.c_str());
    EXPECT_EQ(std::distance(begin(files), end(files)), 2);
}

TEST_F(ContactMessage, EveryReadMakesANewPhotoFile) {
    const ComPtr<IMessage> message = m_writer->NewMessage(L"IPM.Contact");
    FolderWriter::AddAttachment(message.Get(), "photo", true);
    EXPECT_NE(SaveContactPhoto(message.Get()), SaveContactPhoto(message.Get()));
}

TEST_F(ContactMessage, PhotoThatCannotBeWrittenLeavesNoElement) {
    g_strDataFolder = CString(m_root.c_str()) + L"\\Missing";
    const ComPtr<IMessage> message = m_writer->NewMessage(L"IPM.Contact");
    FolderWriter::AddAttachment(message.Get(), "photo", true);
    EXPECT_NE(SaveContactPhoto(message.Get()), L"");
    EXPECT_EQ(Element(Append(message.Get()), L"PICPath"), L"(none)");
}

TEST_F(ContactMessage, ContactWithoutAPhotoHasNoPath) {
    EXPECT_EQ(SaveContactPhoto(m_writer->NewMessage(L"IPM.Contact").Get()), L"");
    EXPECT_EQ(SaveContactPhoto(nullptr), L"");
}

TEST_F(ContactMessage, FolderOfThePathIsNoFile) {
    EXPECT_FALSE(IsExistingFile(g_strDataFolder));
    EXPECT_FALSE(IsExistingFile(L""));
}

TEST_F(ContactMessage, PropertiesAreAskedForByNameAndMade) {
    const ComPtr<IMessage> message = m_writer->NewMessage(L"IPM.Contact");
    recorder::ClearCalls();
    Append(message.Get());
    std::vector<std::string> names;
    for (const recorder::Call& call : recorder::Calls()) {
        if (call.method == "IMessage::GetIDsFromNames") {
            EXPECT_NE(call.arguments.find("flags=0x00000002"), std::string::npos) << call.arguments;
            names.push_back(call.arguments);
        }
    }
    // Of an address without a type only the type is asked for.
    std::vector<std::string> expected;
    for (const char* id : {"8005", "8049", "8046", "8047", "8045", "8048", "804A", "802C", "802D", "8082",
                           "8092", "80A2", "8062"}) {
        expected.push_back(std::string("{00062004}:") + id + " flags=0x00000002");
    }
    expected.emplace_back("{00020329}:\"Keywords\" flags=0x00000002");
    ASSERT_EQ(names.size(), expected.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(names[i], expected[i]);
    }
}

}  // namespace
