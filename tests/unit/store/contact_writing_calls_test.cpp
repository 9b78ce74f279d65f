// The calls of a write, as whole sequences.

#include "tests/unit/store/contact_writing_fixture.h"
#include "tests/unit/store/expected_calls.h"
#include "tests/unit/timezone/date_helpers.h"

namespace {

namespace recorder = localstore::recorder;

/// What a write looks for among the attachments, to remove them.
void QueryPhotos(Expected& calls) {
    calls.Add("IMessage::GetAttachmentTable flags=0x00000000");
    calls.Add(
        "HrQueryAllRows 0x0E210003,0x37010102,0x0E200003 property(0x7FFF000B==0x7FFF000B=true) unsorted "
        "most=0");
}

/// All texts of a contact, each with one value or, for the empty contact, none.
void ExpectTexts(Expected& calls, bool filled) {
    const auto value = [filled](const char* text) { return filled ? std::string(text) : std::string(); };
    calls.Text("0x3A11001F", value("Doe"))
        .Text("0x3A06001F", value("John"))
        .Text("0x3A44001F", value("Van Der"));
    calls.Text("0x001A001F", "IPM.Contact");
    const std::pair<const char*, const char*> tags[] = {
        {"0x3A09001F", "v102"},  {"0x3A25001F", "v111"},  {"0x3A08001F", "v100"},  {"0x3A24001F", "v112"},
        {"0x3A1C001F", "v104"},  {"0x3A21001F", "v106"},  {"0x3A2F001F", "v103"},  {"0x3A1B001F", "v101"},
        {"0x3A1F001F", "v108"},  {"0x3A23001F", "v110"},  {"0x3A02001F", "v113"},  {"0x3A1E001F", "v114"},
        {"0x3A2D001F", "v115"},  {"0x3A57001F", "v116"},  {"0x3A2E001F", "v117"},  {"0x3A1D001F", "v119"},
        {"0x3A2C001F", "v120"},  {"0x3A4B001F", "v121"},  {"0x3A50001F", "v1500"}, {"0x3A51001F", "v1501"},
        {"0x3A16001F", "v4004"}, {"0x3A17001F", "v4015"}, {"0x3A4F001F", "v4005"}, {"0x1000001F", "v3002"},
        {"0x3A5A001F", "v2008"}, {"0x3A59001F", "v2004"}, {"0x3A5C001F", "v2005"}, {"0x3A5D001F", "v2002"},
        {"0x3A5B001F", "v2006"}, {"0x3A5E001F", "v2019"}, {"0x3A60001F", "v2038"}, {"0x3A5F001F", "v2034"},
        {"0x3A62001F", "v2035"}, {"0x3A63001F", "v2032"}, {"0x3A61001F", "v2036"}, {"0x3A64001F", "v2030"}};
    for (const auto& [tag, text] : tags) {
        calls.Text(tag, value(text));
    }
    const std::pair<const char*, const char*> business[] = {{"8049", "v2016"}, {"8046", "v2012"},
                                                            {"8047", "v2013"}, {"8045", "v2010"},
                                                            {"8048", "v2014"}, {"804A", "v2021"}};
    for (const auto& [id, text] : business) {
        calls.Named(id, value(text));
    }
    calls.Email("8082", "8083", "8084", "8080", value("v1000"));
    calls.Email("8092", "8093", "8094", "8090", value("v1001"));
    calls.Email("80A2", "80A3", "80A4", "80A0", value("v1002"));
    calls.Named("8062", value("ICQ:v4029")).Named("802C", value("v4037")).Named("802D", value("v4038"));
    calls.Text("0x3A45001F", value("v4001")).Text("0x3A05001F", value("v4011"));
}

void ExpectNames(Expected& calls, const std::string& initials, const std::string& name) {
    calls.Text("0x3A0A001F", initials)
        .Text("0x3001001F", name)
        .Text("0x0037001F", name)
        .Text("0x0E1D001F", name);
    calls.Named("8005", name);
}

/// The attachment of a photo of five bytes.
void ExpectPhoto(Expected& calls) {
    calls.Add("IMessage::CreateAttach flags=0x00000008");
    calls.Add(
        "IAttach::SetProps 0x3001001F=\"ContactPicture.jpg\" 0x37020102= 0x3703001F=\".jpg\" 0x3704001F=\"\" "
        "0x37050003=1 0x3707001F=\"ContactPicture.jpg\" 0x370B0003=-1 0x37140003=0 0x7FFA0003=0 0x7FFD0003=0 "
        "0x7FFE000B=false 0x7FFF000B=true 0x7FFB0040=* 0x7FFC0040=*");
    calls.Add("IAttach::OpenProperty 0x37010102 iid={0000000C} options=0x00000000 flags=0x00000013");
    calls.Add("IStream::Write size=5 bytes=70686F746F").Add("IStream::Commit flags=0x00000000");
    calls.Add("IAttach::SetProps 0x0E200003=5").Add("IAttach::SaveChanges flags=0x00000004");
    calls.Name("{00062004}:8015").Set("{00062004}:8015/000B=true").Set("0x0E1B000B=true");
}

class ContactWritingCalls : public ContactWriting {
  protected:
    void FillAll() {
        m_contact.m_lFlag = 8;
        m_contact.AddField(5, L"not written");
        m_contact.AddField(1, L"John");
        m_contact.AddField(2, L"Doe");
        m_contact.AddField(3, L"Van Der");
        for (const std::int32_t id :
             {100,  101,  102,  103,  104,  106,  108,  110,  111,  112,  113,  114,  115,  116,
              117,  118,  119,  120,  121,  1000, 1001, 1002, 1500, 1501, 2002, 2004, 2005, 2006,
              2008, 2019, 2010, 2012, 2013, 2014, 2016, 2021, 2030, 2032, 2034, 2035, 2036, 2038,
              3002, 4001, 4011, 4004, 4005, 4015, 4022, 4023, 4029, 4037, 4038}) {
            m_contact.AddField(id, L"v" + CString::FromNumber(id));
        }
        m_contact.AddField(3018, L"a;b");
        m_contact.AddField(4003, L"1980-05-05 00:00:00");
        m_contact.AddField(4019, L"2001-07-15 10:20:30");
        WriteFile(L"photo.jpg", "photo");
        m_contact.m_arrFields[1]->m_strPicPath = CString((m_root + L"\\photo.jpg").c_str());
    }
};

TEST_F(ContactWritingCalls, AddOfEveryField) {
    FillAll();
    // Five and a half hours ahead of UTC: five of them are taken off the dates, so -5 hours are subtracted.
    g_MAPIObject.m_CurrentTimeZone.Bias = -330;
    EXPECT_EQ(g_MAPIObject.WriteContacts(&m_contact), 0);

    Expected calls;
    calls.Add("IMAPIFolder::CreateMessage flags=0x00000000");
    ExpectTexts(calls, true);
    calls.Set("0x3A420040=" + Time(Date(1980, 5, 5)))
        .Set("0x3A410040=" + Time(Date(2001, 7, 15, 10, 20, 30)));
    calls.Name("{00062004}:80DE").Set("{00062004}:80DE/0040=" + Time(Date(1980, 5, 5, 5)));
    calls.Name("{00062004}:80DF").Set("{00062004}:80DF/0040=" + Time(Date(2001, 7, 15, 15, 20, 30)));
    calls.Name("{00020329}:\"Keywords\"").Delete("{00020329}:\"Keywords\"/101F");
    calls.Add("MAPIAllocateBuffer size=16").Set("{00020329}:\"Keywords\"/101F=[\"a\",\"b\"]");
    ExpectNames(calls, "J.V.D.D.", "John Van Der Doe");
    QueryPhotos(calls);
    ExpectPhoto(calls);
    calls.Add("IMessage::SaveChanges flags=0x00000004");
    calls.Add("IMessage::GetProps 0x30080040 flags=0x00000000")
        .Add("IMessage::GetProps 0x0FFF0102 flags=0x00000000");
    EXPECT_EQ(TakeCalls(), calls.Lines());
}

TEST_F(ContactWritingCalls, UpdateWithAnEmptyRecordRemovesEveryField) {
    FillAll();
    ASSERT_EQ(g_MAPIObject.WriteContacts(&m_contact), 0);
    recorder::ClearCalls();
    Write(4, {});

    Expected calls;
    calls.Add("IMAPIFolder::OpenEntry id=* flags=0x00000011");
    ExpectTexts(calls, false);
    calls.Delete("0x3A420040").Delete("0x3A410040");
    calls.Name("{00062004}:80DE").Delete("{00062004}:80DE/0040");
    calls.Name("{00062004}:80DF").Delete("{00062004}:80DF/0040");
    calls.Name("{00020329}:\"Keywords\"").Delete("{00020329}:\"Keywords\"/101F");
    ExpectNames(calls, "", "");
    QueryPhotos(calls);
    calls.Add("IMessage::DeleteAttach number=0 flags=0x00000000").Delete("0x0E1B000B");
    calls.Name("{00062004}:8015").Set("{00062004}:8015/000B=false");
    calls.Add("IMessage::SaveChanges flags=0x00000004").Add("IMessage::GetProps 0x30080040 flags=0x00000000");
    EXPECT_EQ(TakeCalls(), calls.Lines());
    EXPECT_EQ(Attachments(), 0U);
}

TEST_F(ContactWritingCalls, DeleteGoesThroughTheParentFolder) {
    Write(8, {{1, L"John"}});
    recorder::ClearCalls();
    Write(32, {});
    EXPECT_EQ(TakeCalls(),
              "IMAPIFolder::OpenEntry id=* flags=0x00000011\n"
              "IMessage::GetProps 0x0E090102 flags=0x80000000\n"
              "IMAPIFolder::OpenEntry id=* flags=0x00000010\n"
              "IMAPIFolder::DeleteMessages id=* flags=0x00000000\n");
}

}  // namespace
