// A contact's document that was read becomes one that can be written.

#include <gmock/gmock.h>

#include "desktop/contact_pairs.h"
#include "desktop/conversion.h"
#include "desktop/failure.h"
#include "desktop/item_document.h"

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

/// A document of a read with the given elements between its folder and its categories.
CString Read(const CString& elements) {
    return L"<Contact><CsFolder>Contacts</CsFolder>" + elements +
           L"<SP-CATEGORIES>a;b</SP-CATEGORIES></Contact>";
}

CString Converted(const CString& text, bool asNew = false) {
    const Conversion conversion = ConvertDocument(text.View(), asNew);
    EXPECT_THAT(conversion.losses, IsEmpty());
    return conversion.document;
}

/// The text of an element of the converted document.
CString Element(const CString& text, const wchar_t* name, bool asNew = false) {
    const CString converted = Converted(text, asNew);
    return ItemDocument(L"Contact", converted.View()).Field(name);
}

void ExpectRefused(const CString& text, bool asNew = false) {
    try {
        Converted(text, asNew);
        FAIL() << "it was converted";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Code(), ExitCode::kDocumentRefused);
    }
}

TEST(ConvertContact, GivesEveryElementItsOtherName) {
    CString elements;
    for (const ContactPair& pair : kContactPairs) {
        if (CString(pair.read) != L"SP-CATEGORIES") {
            elements += L"<" + CString(pair.read) + L">" + pair.read + L"</" + pair.read + L">";
        }
    }
    const CString converted = Converted(Read(elements));
    ItemDocument document(L"Contact", converted.View());
    for (const ContactPair& pair : kContactPairs) {
        const CString expected = CString(pair.read) == L"SP-CATEGORIES" ? L"a;b" : pair.read;
        EXPECT_EQ(document.Field(pair.write), expected) << pair.write;
    }
}

TEST(ConvertContact, MakesAChangeOfTheSameContact) {
    const CString read = Read(L"<lFlag>8</lFlag><PIMID>00AB</PIMID><PICPath>C:\\PIC1.jpg</PICPath>");
    EXPECT_EQ(Element(read, L"lFlag"), L"4");
    EXPECT_EQ(Element(read, L"PIMID"), L"00AB");
    EXPECT_EQ(Element(read, L"CsFolder"), L"Contacts");
    EXPECT_EQ(Element(read, L"PICPath"), L"C:\\PIC1.jpg");
}

TEST(ConvertContact, MakesANewContactWithoutTheIdentifier) {
    const CString read = Read(L"<PIMID>00AB</PIMID><LastName>Doe</LastName>");
    EXPECT_EQ(Element(read, L"lFlag", true), L"8");
    EXPECT_EQ(Element(read, L"LastName", true), L"Doe");
    EXPECT_THAT(Converted(read, true), Not(HasSubstr(L"PIMID")));
}

TEST(ConvertContact, DropsTimesTheFullNameAndTheRowsBusinessAddress) {
    const CString converted =
        Converted(Read(L"<CreateTime>1</CreateTime><lastModifiedTime>2</lastModifiedTime>"
                       L"<BusinessCity>row</BusinessCity><FULLNAME>full</FULLNAME>"));
    for (const wchar_t* text : {L"Time", L"row", L"full"}) {
        EXPECT_THAT(converted, Not(HasSubstr(text)));
    }
}

TEST(ConvertContact, NamesTheInstantMessagingAddressAfterItsService) {
    const CString icq = Read(L"<SP-IMADRESS IMType=\"4029\">joe</SP-IMADRESS>");
    EXPECT_EQ(Element(icq, L"ICQ"), L"joe");
    EXPECT_EQ(Element(icq, L"IMAddress"), L"");
    EXPECT_EQ(Element(Read(L"<SP-IMADRESS IMType=\"4022\">MSN:joe</SP-IMADRESS>"), L"IMAddress"), L"MSN:joe");
    EXPECT_EQ(Element(Read(L"<SP-IMADRESS>joe</SP-IMADRESS>"), L"IMAddress"), L"joe");
}

TEST(ConvertContact, KeepsMarkupAndLineBreaksOfATextAsTheyAre) {
    EXPECT_EQ(Element(Read(L"<SP-BODY>a &lt;b&gt; &amp;&#13;\nc</SP-BODY>"), L"Body"), L"a <b> &\r\nc");
}

TEST(ConvertContact, LeavesADeletionADeletion) {
    const CString deletion = L"<Contact><lFlag>32</lFlag><PIMID>00AB</PIMID></Contact>";
    EXPECT_EQ(Element(deletion, L"lFlag"), L"32");
    EXPECT_EQ(Element(deletion, L"PIMID"), L"00AB");
    ExpectRefused(deletion, true);
}

TEST(ConvertContact, RefusesWhatIsNoWholeDocumentOfARead) {
    ExpectRefused(L"");
    ExpectRefused(L"no document");
    ExpectRefused(L"<Contacts/>");
    ExpectRefused(L"<Contact/>");
    // One whose message could not be opened: written back, it would empty the contact.
    ExpectRefused(
        L"<Contact><CsFolder>Contacts</CsFolder><LastName>Doe</LastName><PIMID>00AB</PIMID></Contact>");
    // One that was converted already.
    ExpectRefused(Converted(Read(L"<LastName>Doe</LastName>")));
}

}  // namespace
