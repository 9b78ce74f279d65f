// The photo of a contact that is written.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "contacts/contact_photo.h"
#include "contacts/contact_photo_writing.h"
#include "mapi/property_tags.h"
#include "support/user_folders.h"
#include "tests/unit/store/contact_writing_fixture.h"
#include "tests/unit/store/file_without_an_end.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

using Numbers = std::vector<unsigned long>;

/// The numbers behind a name in the arguments of a method's calls, in order; 0 for what is no number.
Numbers NumbersOf(const std::string& method, const std::string& name) {
    Numbers numbers;
    for (const recorder::Call& call : recorder::Calls()) {
        if (call.method == method && call.arguments.starts_with(name)) {
            numbers.push_back(std::strtoul(call.arguments.c_str() + name.size(), nullptr, 10));
        }
    }
    return numbers;
}

/// The local time in the form of a file time.
FILETIME LocalNow() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    FILETIME time{};
    SystemTimeToFileTime(&now, &time);
    return time;
}

class ContactPhotoWriting : public ContactWriting {
  protected:
    void SetUp() override {
        ContactWriting::SetUp();
        g_strDataFolder = CString(m_root.c_str());
    }
    /// Makes a file and returns its path.
    [[nodiscard]] std::wstring File(const std::wstring& name, const std::string& bytes) const {
        WriteFile(name, bytes);
        return m_root + L"\\" + name;
    }
    /// What a read of the contact saves as its photo; "(none)" without one.
    [[nodiscard]] std::string PhotoInTheStore() const {
        const ComPtr<IMessage> message = Message();
        const CString path = message ? SaveContactPhoto(message.Get()) : CString();
        if (path.empty()) {
            return "(none)";
        }
        std::ifstream file(std::filesystem::path(path.c_str()), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// Expects a contact without a photo, of which the rest was written.
    void ExpectNoPhoto() {
        EXPECT_EQ(m_contact.m_lFlag, 0);
        EXPECT_EQ(PhotoInTheStore(), "(none)");
        EXPECT_EQ(HasPicture(), 0);
        EXPECT_EQ(Text(PR_GIVEN_NAME_W), L"Jim");
    }
};

TEST_F(ContactPhotoWriting, PhotoIsAttachedAndMarked) {
    Write(8, {{104, L"555"}}, File(L"a.jpg", "first"));
    EXPECT_EQ(PhotoInTheStore(), "first");
    EXPECT_EQ(HasPicture(), 1);
    EXPECT_EQ(Attachments(), 1U);
}

TEST_F(ContactPhotoWriting, NewPhotoTakesThePlaceOfTheOldOne) {
    Write(8, {{104, L"555"}}, File(L"a.jpg", "first"));
    Write(4, {{104, L"555"}}, File(L"b.jpg", "second"));
    EXPECT_EQ(PhotoInTheStore(), "second");
    EXPECT_EQ(Attachments(), 1U);
}

TEST_F(ContactPhotoWriting, UpdateWithoutAPathRemovesThePhoto) {
    Write(8, {{1, L"John"}}, File(L"a.jpg", "first"));
    Write(4, {{1, L"Jim"}});
    ExpectNoPhoto();
    EXPECT_EQ(Attachments(), 0U);
}

TEST_F(ContactPhotoWriting, PathThatCannotBeOpenedRemovesTheOldPhoto) {
    const std::wstring photo = File(L"a.jpg", "first");
    for (const std::wstring& path :
         {m_root + L"\\missing.jpg", m_root, m_root + L"\\" + std::wstring(400, L'x') + L".jpg",
          std::wstring(L"|?*"), std::wstring(L"\\\\.\\pipe\\zeb-no-such-pipe")}) {
        Write(8, {{104, L"555"}}, photo);
        ASSERT_EQ(HasPicture(), 1);
        Write(4, {{1, L"Jim"}}, path);
        ExpectNoPhoto();
    }
}

TEST_F(ContactPhotoWriting, OfNoMessageThereIsNoPhotoToDelete) {
    EXPECT_EQ(DeleteContactPhotoAttachments(nullptr), 1);
    EXPECT_TRUE(recorder::CallLines().empty());
}

TEST_F(ContactPhotoWriting, EmptyFileIsAPhotoWithoutBytes) {
    Write(8, {{104, L"555"}}, File(L"a.jpg", ""));
    EXPECT_EQ(PhotoInTheStore(), "");
    EXPECT_EQ(HasPicture(), 1);
}

TEST_F(ContactPhotoWriting, PhotoOfTwentyMegabytesIsWrittenWhole) {
    std::string bytes(20U << 20, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<char>(i * 31 + i / 1021);
    }
    recorder::Record(false);
    Write(8, {{104, L"555"}}, File(L"a.jpg", bytes));
    recorder::Record(true);
    EXPECT_TRUE(PhotoInTheStore() == bytes);
}

TEST_F(ContactPhotoWriting, FileIsWrittenInPiecesAndItsSizeIsTheirSum) {
    recorder::ClearCalls();
    Write(8, {{104, L"555"}}, File(L"a.jpg", std::string(2500, 'x')));
    EXPECT_EQ(NumbersOf("IStream::Write", "size="), (Numbers{1024, 1024, 452}));
    EXPECT_EQ(NumbersOf("IAttach::SetProps", "0x0E200003="), Numbers{2500});
    recorder::ClearCalls();
    Write(4, {{104, L"555"}}, File(L"b.jpg", std::string(2048, 'x')));
    EXPECT_EQ(NumbersOf("IStream::Write", "size="), (Numbers{1024, 1024}));
    EXPECT_EQ(NumbersOf("IAttach::SetProps", "0x0E200003="), Numbers{2048});
}

TEST_F(ContactPhotoWriting, FileThatIsOpenElsewhereForWritingIsRead) {
    const std::wstring path = File(L"a.jpg", "shared");
    const FileHandle writer(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                                        nullptr));
    ASSERT_TRUE(writer);
    Write(8, {{104, L"555"}}, path);
    EXPECT_EQ(PhotoInTheStore(), "shared");
}

TEST_F(ContactPhotoWriting, FileThatIsLockedElsewhereIsNot) {
    const std::wstring path = File(L"a.jpg", "locked");
    const FileHandle writer(
        CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(writer);
    Write(8, {{1, L"Jim"}}, path);
    ExpectNoPhoto();
}

TEST_F(ContactPhotoWriting, OtherAttachmentsStay) {
    Write(8, {{104, L"555"}}, File(L"a.jpg", "first"));
    {
        const ComPtr<IMessage> message = Message();
        FolderWriter::AddAttachment(message.Get(), "a letter", false);
        FolderWriter::Save(message.Get());
    }
    ASSERT_EQ(Attachments(), 2U);
    Write(4, {{104, L"555"}});
    EXPECT_EQ(Attachments(), 1U);
    EXPECT_EQ(PhotoInTheStore(), "(none)");
    EXPECT_EQ(HasPicture(), 0);
}

TEST_F(ContactPhotoWriting, AttachmentThatCannotBeDescribedOrOpenedIsNoPhoto) {
    for (const char* const method :
         {"IMessage::CreateAttach", "IAttach::SetProps", "IAttach::OpenProperty"}) {
        m_contact.Reset();
        recorder::ClearCalls();
        recorder::FailMethod(method, {}, E_FAIL);
        Write(8, {{104, L"555"}}, File(L"a.jpg", "first"));
        recorder::ClearFailures();
        EXPECT_EQ(m_contact.m_lFlag, 0) << method;
        EXPECT_EQ(HasPicture(), 0) << method;
        // What was begun is not in the message, and nothing says that it has attachments.
        EXPECT_EQ(Attachments(), 0U) << method;
        EXPECT_EQ(PhotoInTheStore(), "(none)") << method;
        EXPECT_EQ(NumbersOf("IMessage::SetProps", "0x0E1B000B=true"), Numbers()) << method;
    }
}

TEST_F(ContactPhotoWriting, StreamThatTakesNothingStillCountsAsAPhotoOfNoSize) {
    recorder::FailMethod("IStream::Write", {}, E_FAIL);
    Write(8, {{104, L"555"}}, File(L"a.jpg", std::string(2500, 'x')));
    recorder::ClearFailures();
    EXPECT_EQ(m_contact.m_lFlag, 0);
    EXPECT_EQ(NumbersOf("IStream::Write", "size="), (Numbers{1024, 1024, 452}));
    EXPECT_EQ(NumbersOf("IAttach::SetProps", "0x0E200003="), Numbers{0});
    EXPECT_EQ(HasPicture(), 1);
    EXPECT_EQ(Attachments(), 1U);
}

TEST_F(ContactPhotoWriting, FileThatCannotBeReadToItsEndEndsTheWrite) {
    Write(8, {{1, L"John"}}, File(L"a.jpg", "first"));
    const FileWithoutAnEnd file(File(L"b.jpg", std::string(3000, 'x')));
    TakeLog();
    const long objects = recorder::LiveObjects();
    Write(4, {{1, L"Jim"}}, file.Path());
    EXPECT_EQ(recorder::LiveObjects(), objects);
    EXPECT_EQ(m_contact.m_lFlag, 4);
    EXPECT_EQ(TakeLog(),
              Lines({L"UpdateContact - Begin", L"UpdateContactMessage - Begin",
                     L"UpdateContactDisplayName - Begin", L"UpdateContactDisplayName - Finish(Succeeded)",
                     L"UpdateContactMessage - Finish(Failed)", L"UpdateContact - Finish(Failed)"}));
    EXPECT_EQ(Text(PR_GIVEN_NAME_W), L"John");
    EXPECT_EQ(PhotoInTheStore(), "first");
    EXPECT_EQ(HasPicture(), 1);
}

TEST_F(ContactPhotoWriting, TimesOfTheAttachmentAreBothTheLocalTimeOfTheWrite) {
    const FILETIME before = LocalNow();
    Write(8, {{104, L"555"}}, File(L"a.jpg", "first"));
    const FILETIME after = LocalNow();
    const ComPtr<IMessage> message = Message();
    ASSERT_TRUE(message);
    ComPtr<IAttach> attachment;
    ASSERT_EQ(message->OpenAttach(0, nullptr, 0, attachment.GetAddressOf()), S_OK);
    const MapiBuffer<SPropValue> start = GetProperty(attachment.Get(), PR_EXCEPTION_STARTTIME);
    const MapiBuffer<SPropValue> end = GetProperty(attachment.Get(), PR_EXCEPTION_ENDTIME);
    ASSERT_TRUE(start && end);
    EXPECT_EQ(CompareFileTime(&start->Value.ft, &end->Value.ft), 0);
    EXPECT_GE(CompareFileTime(&start->Value.ft, &before), 0);
    EXPECT_LE(CompareFileTime(&start->Value.ft, &after), 0);
}

TEST_F(ContactPhotoWriting, FailedCommitAndSaveOfTheAttachmentStillCountAsAPhoto) {
    for (const char* const method : {"IStream::Commit", "IAttach::SaveChanges"}) {
        m_contact.Reset();
        recorder::FailMethod(method, {}, E_FAIL);
        Write(8, {{104, L"555"}}, File(L"a.jpg", "first"));
        recorder::ClearFailures();
        EXPECT_EQ(m_contact.m_lFlag, 0) << method;
        EXPECT_EQ(HasPicture(), 1) << method;
    }
}

}  // namespace
