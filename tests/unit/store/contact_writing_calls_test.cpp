// The calls of a write, as whole sequences.

#include "tests/unit/store/contact_writing_fixture.h"
#include "tests/unit/store/expected_calls.h"

namespace {

namespace recorder = localstore::recorder;

/// The parts of a name, what is made of them, and what the texts of all other fields begin with. Empty for
/// the empty contact.
struct Filling {
    const char* first;
    const char* middle;
    const char* last;
    const char* name;
    const char* initials;
    const char* text;
};
constexpr Filling kOne{"John", "Van Der", "Doe", "John Van Der Doe", "J.V.D.D.", "v"};
constexpr Filling kAnother{"Ann", "Mary", "Roe", "Ann Mary Roe", "A.M.R.", "another "};
constexpr Filling kNone{"", "", "", "", "", ""};

/// The fields whose text is the one of the filling with their number behind it.
constexpr std::int32_t kNumberedFields[] = {100,  101,  102,  103,  104,  106,  108,  110,  111,  112,  113,
                                            114,  115,  116,  117,  118,  119,  120,  121,  1000, 1001, 1002,
                                            1500, 1501, 2002, 2004, 2005, 2006, 2008, 2019, 2010, 2012, 2013,
                                            2014, 2016, 2021, 2030, 2032, 2034, 2035, 2036, 2038, 3002, 4001,
                                            4011, 4004, 4005, 4015, 4022, 4023, 4029, 4037, 4038};

/// What a write looks for among the attachments, to remove them.
void QueryPhotos(Expected& calls) {
    calls.Add("IMessage::GetAttachmentTable flags=0x00000000");
    calls.Add(
        "HrQueryAllRows 0x0E210003,0x37010102,0x0E200003 property(0x7FFF000B==0x7FFF000B=true) unsorted "
        "most=0");
}

/// All texts of a contact.
void ExpectTexts(Expected& calls, const Filling& filling) {
    const std::string text = filling.text;
    const auto value = [&](const char* number) { return text.empty() ? text : text + number; };
    calls.Text("0x3A11001F", filling.last)
        .Text("0x3A06001F", filling.first)
        .Text("0x3A44001F", filling.middle);
    calls.Text("0x001A001F", "IPM.Contact");
    const std::pair<const char*, const char*> tags[] = {
        {"0x3A09001F", "102"},  {"0x3A25001F", "111"},  {"0x3A08001F", "100"},  {"0x3A24001F", "112"},
        {"0x3A1C001F", "104"},  {"0x3A21001F", "106"},  {"0x3A2F001F", "103"},  {"0x3A1B001F", "101"},
        {"0x3A1F001F", "108"},  {"0x3A23001F", "110"},  {"0x3A02001F", "113"},  {"0x3A1E001F", "114"},
        {"0x3A2D001F", "115"},  {"0x3A57001F", "116"},  {"0x3A2E001F", "117"},  {"0x3A1D001F", "119"},
        {"0x3A2C001F", "120"},  {"0x3A4B001F", "121"},  {"0x3A50001F", "1500"}, {"0x3A51001F", "1501"},
        {"0x3A16001F", "4004"}, {"0x3A17001F", "4015"}, {"0x3A4F001F", "4005"}, {"0x1000001F", "3002"},
        {"0x3A5A001F", "2008"}, {"0x3A59001F", "2004"}, {"0x3A5C001F", "2005"}, {"0x3A5D001F", "2002"},
        {"0x3A5B001F", "2006"}, {"0x3A5E001F", "2019"}, {"0x3A60001F", "2038"}, {"0x3A5F001F", "2034"},
        {"0x3A62001F", "2035"}, {"0x3A63001F", "2032"}, {"0x3A61001F", "2036"}, {"0x3A64001F", "2030"}};
    for (const auto& [tag, number] : tags) {
        calls.Text(tag, value(number));
    }
    const std::pair<const char*, const char*> business[] = {{"8049", "2016"}, {"8046", "2012"},
                                                            {"8047", "2013"}, {"8045", "2010"},
                                                            {"8048", "2014"}, {"804A", "2021"}};
    for (const auto& [id, number] : business) {
        calls.Named(id, value(number));
    }
    calls.Email("8082", "8083", "8084", "8080", value("1000"));
    calls.Email("8092", "8093", "8094", "8090", value("1001"));
    calls.Email("80A2", "80A3", "80A4", "80A0", value("1002"));
    calls.Named("8062", text.empty() ? text : "ICQ:" + text + "4029")
        .Named("802C", value("4037"))
        .Named("802D", value("4038"));
    calls.Text("0x3A45001F", value("4001")).Text("0x3A05001F", value("4011"));
}

void ExpectNames(Expected& calls, const Filling& filling) {
    calls.Text("0x3A0A001F", filling.initials)
        .Text("0x3001001F", filling.name)
        .Text("0x0037001F", filling.name)
        .Text("0x0E1D001F", filling.name);
    calls.Named("8005", filling.name);
}

/// The attachment of a photo whose bytes are given in hexadecimal.
void ExpectPhoto(Expected& calls, const std::string& bytes) {
    const std::string size = std::to_string(bytes.size() / 2);
    calls.Add("IMessage::CreateAttach flags=0x00000008");
    calls.Add(
        "IAttach::SetProps 0x3001001F=\"ContactPicture.jpg\" 0x37020102= 0x3703001F=\".jpg\" 0x3704001F=\"\" "
        "0x37050003=1 0x3707001F=\"ContactPicture.jpg\" 0x370B0003=-1 0x37140003=0 0x7FFA0003=0 0x7FFD0003=0 "
        "0x7FFE000B=false 0x7FFF000B=true 0x7FFB0040=* 0x7FFC0040=*");
    calls.Add("IAttach::OpenProperty 0x37010102 iid={0000000C} options=0x00000000 flags=0x00000013");
    calls.Add("IStream::Write size=" + size + " bytes=" + bytes).Add("IStream::Commit flags=0x00000000");
    calls.Add("IAttach::SetProps 0x0E200003=" + size).Add("IAttach::SaveChanges flags=0x00000004");
    calls.Name("{00062004}:8015").Set("{00062004}:8015/000B=true").Set("0x0E1B000B=true");
}

class ContactWritingCalls : public ContactWriting {
  protected:
    /// Fills every field, with a photo that holds some text; the identifier of the record stays.
    void FillAll(std::int32_t flag, const Filling& filling, const wchar_t* birthday,
                 const wchar_t* anniversary, const wchar_t* categories, const std::string& photo) {
        Fill(flag, {{5, L"not written"},
                    {1, Wide(filling.first).c_str()},
                    {2, Wide(filling.last).c_str()},
                    {3, Wide(filling.middle).c_str()},
                    {3018, categories},
                    {4003, birthday},
                    {4019, anniversary}});
        for (const std::int32_t id : kNumberedFields) {
            m_contact.AddField(id, Wide(filling.text) + CString::FromNumber(id));
        }
        WriteFile(L"photo.jpg", photo);
        SetPhoto(m_root + L"\\photo.jpg");
    }
    static CString Wide(const std::string& ascii) {
        return {std::wstring(ascii.begin(), ascii.end()).c_str()};
    }
};

/// All that a write does to an open message, up to the photos, which it removes.
void ExpectAllBeforeThePhoto(Expected& calls, const Filling& filling, const LocalTime (&dates)[2],
                             std::chrono::hours span, const std::string& categories) {
    ExpectTexts(calls, filling);
    calls.Set("0x3A420040=" + Time(dates[0])).Set("0x3A410040=" + Time(dates[1]));
    calls.Name("{00062004}:80DE").Set("{00062004}:80DE/0040=" + Time(dates[0] - span));
    calls.Name("{00062004}:80DF").Set("{00062004}:80DF/0040=" + Time(dates[1] - span));
    calls.Name("{00020329}:\"Keywords\"").Delete("{00020329}:\"Keywords\"/101F");
    calls.Add("MAPIAllocateBuffer size=16").Set("{00020329}:\"Keywords\"/101F=" + categories);
    ExpectNames(calls, filling);
    QueryPhotos(calls);
}

TEST_F(ContactWritingCalls, AddOfEveryField) {
    FillAll(8, kOne, L"1980-05-05 00:00:00", L"2001-07-15 10:20:30", L"a;b", "photo");
    // Five and a half hours ahead of UTC: -5 hours are subtracted.
    g_MAPIObject.m_CurrentTimeZone.Bias = -330;
    EXPECT_EQ(g_MAPIObject.WriteContacts(&m_contact), 0);

    Expected calls;
    calls.Add("IMAPIFolder::CreateMessage flags=0x00000000");
    ExpectAllBeforeThePhoto(calls, kOne, {At(1980, 5, 5), At(2001, 7, 15, 10, 20, 30)},
                            std::chrono::hours(-5), R"(["a","b"])");
    ExpectPhoto(calls, "70686F746F");
    calls.Add("IMessage::SaveChanges flags=0x00000004");
    calls.Add("IMessage::GetProps 0x30080040 flags=0x00000000")
        .Add("IMessage::GetProps 0x0FFF0102 flags=0x00000000");
    EXPECT_EQ(TakeCalls(), calls.Lines());
}

TEST_F(ContactWritingCalls, UpdateOfEveryFieldReplacesThePhoto) {
    FillAll(8, kOne, L"1980-05-05 00:00:00", L"2001-07-15 10:20:30", L"a;b", "photo");
    ASSERT_EQ(g_MAPIObject.WriteContacts(&m_contact), 0);
    recorder::ClearCalls();
    FillAll(4, kAnother, L"1975-12-24 18:00:00", L"2010-02-03 00:00:00", L"second;third", "picture");
    // Three and a half hours behind UTC: 3 hours are subtracted.
    g_MAPIObject.m_CurrentTimeZone.Bias = 210;
    EXPECT_EQ(g_MAPIObject.WriteContacts(&m_contact), 0);

    Expected calls;
    calls.Add("IMAPIFolder::OpenEntry id=* flags=0x00000011");
    ExpectAllBeforeThePhoto(calls, kAnother, {At(1975, 12, 24, 18), At(2010, 2, 3)}, std::chrono::hours(3),
                            R"(["second","third"])");
    calls.Add("IMessage::DeleteAttach number=0 flags=0x00000000").Delete("0x0E1B000B");
    ExpectPhoto(calls, "70696374757265");
    calls.Add("IMessage::SaveChanges flags=0x00000004").Add("IMessage::GetProps 0x30080040 flags=0x00000000");
    EXPECT_EQ(TakeCalls(), calls.Lines());
    EXPECT_EQ(Attachments(), 1U);
}

/// All that an empty record does to an open message, up to the photos.
void ExpectAllRemoved(Expected& calls) {
    ExpectTexts(calls, kNone);
    calls.Delete("0x3A420040").Delete("0x3A410040");
    calls.Name("{00062004}:80DE").Delete("{00062004}:80DE/0040");
    calls.Name("{00062004}:80DF").Delete("{00062004}:80DF/0040");
    calls.Name("{00020329}:\"Keywords\"").Delete("{00020329}:\"Keywords\"/101F");
    ExpectNames(calls, kNone);
    QueryPhotos(calls);
}

TEST_F(ContactWritingCalls, AddOfAnEmptyRecordRemovesEveryFieldOfTheNewContactToo) {
    Write(8, {});

    Expected calls;
    calls.Add("IMAPIFolder::CreateMessage flags=0x00000000");
    ExpectAllRemoved(calls);
    calls.Name("{00062004}:8015").Set("{00062004}:8015/000B=false");
    calls.Add("IMessage::SaveChanges flags=0x00000004");
    calls.Add("IMessage::GetProps 0x30080040 flags=0x00000000")
        .Add("IMessage::GetProps 0x0FFF0102 flags=0x00000000");
    EXPECT_EQ(TakeCalls(), calls.Lines());
}

TEST_F(ContactWritingCalls, UpdateWithAnEmptyRecordRemovesEveryField) {
    FillAll(8, kOne, L"1980-05-05 00:00:00", L"2001-07-15 10:20:30", L"a;b", "photo");
    ASSERT_EQ(g_MAPIObject.WriteContacts(&m_contact), 0);
    recorder::ClearCalls();
    Write(4, {});

    Expected calls;
    calls.Add("IMAPIFolder::OpenEntry id=* flags=0x00000011");
    ExpectAllRemoved(calls);
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
