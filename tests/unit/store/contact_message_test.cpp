// The message part of a contact's document, made of messages of the store.

#include <mapitags.h>

#include <filesystem>
#include <fstream>

#include "contacts/contact_photo.h"
#include "contacts/contact_xml_output.h"
#include "localstore/recorder.h"
#include "support/user_folders.h"
#include "tests/unit/store/document_body.h"
#include "tests/unit/store/store_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

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

TEST_F(ContactMessage, ContactWithoutTelephoneNumbersHasNoNumberElements) {
    const ComPtr<IMessage> message =
        m_writer->NewMessage(L"IPM.Contact", PropertyValues().Text(0x3A11001F, L"Doe"));
    ULONG count = 0;
    MapiBuffer<SPropValue> row;
    ASSERT_TRUE(
        SUCCEEDED(message->GetProps(const_cast<SPropTagArray*>(kContactColumns), 0, &count, row.Put())));
    CXMLParser document;
    EXPECT_TRUE(document.InitDocument());
    document.CreateHeader();
    document.CreateRootElement(L"Contact");
    CString id;
    AppendContactRowToXml(document, id, row.Get(), count, nullptr);
    AppendContactMessageToXml(document, message.Get());
    const CString body = Body(document);
    EXPECT_EQ(Element(body, L"LastName"), L"Doe");
    for (const wchar_t* part : {L"Number", L"Fax", L"Mobile", L"Pager"}) {
        EXPECT_EQ(body.find(part), CString::npos) << part;
    }
    for (const wchar_t* name : {L"SP-EMAIL1", L"SP-EMAIL2", L"SP-EMAIL3"}) {
        EXPECT_EQ(Element(body, name), L"") << name;
    }
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
