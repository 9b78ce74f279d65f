// Every call of a write failed once, and from then on: the result is as documented, nothing is left alive
// (which the fixture counts), and the message is the old one or the new one.

#include "tests/unit/store/contact_writing_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

class ContactWritingFaults : public ContactWriting {
  protected:
    /// Writes a contact while its nth call fails; false if there was no such call.
    bool WriteWithFault(std::int32_t flag, std::size_t n, bool forever, const wchar_t* name,
                        const std::wstring& photo) {
        recorder::FailCall(n, forever, MAPI_E_CALL_FAILED);
        Write(flag, {{104, name}, {2, name}, {1000, name}, {3018, L"a;b"}, {4003, L"1980-05-05 00:00:00"}},
              photo);
        const bool failed = recorder::HasFailed();
        recorder::ClearFailures();
        return failed;
    }
};

TEST_F(ContactWritingFaults, UpdateLeavesTheOldMessageOrANewOne) {
    WriteFile(L"a.jpg", "photo");
    const std::wstring photo = m_root + L"\\a.jpg";
    for (const bool forever : {false, true}) {
        std::size_t n = 1;
        for (;; ++n) {
            m_contact.m_strPIMID.clear();
            Write(8, {{104, L"old"}, {2, L"old"}}, photo);
            ASSERT_EQ(m_contact.m_lFlag, 0);
            recorder::ClearCalls();
            if (!WriteWithFault(4, n, forever, L"new", photo)) {
                break;
            }
            ASSERT_TRUE(Message()) << n;
            if (m_contact.m_lFlag == 4) {
                EXPECT_EQ(Text(PR_MOBILE_TELEPHONE_NUMBER_W), L"old") << n;
                EXPECT_EQ(Text(PR_SURNAME_W), L"old") << n;
                EXPECT_EQ(Attachments(), 1U) << n;
            } else {
                EXPECT_EQ(m_contact.m_lFlag, 0) << n;
            }
            TakeLog();
        }
        EXPECT_GT(n, 100U);
        EXPECT_EQ(m_contact.m_lFlag, 0);
        EXPECT_EQ(Text(PR_SURNAME_W), L"new");
    }
}

TEST_F(ContactWritingFaults, AddLeavesNothingOrANewMessage) {
    std::size_t before = 0;
    for (const bool forever : {false, true}) {
        for (std::size_t n = 1;; ++n) {
            m_contact.m_strPIMID.clear();
            const bool failed = WriteWithFault(8, n, forever, L"new", {});
            // Its class may be what could not be set, so the files are counted.
            const std::size_t after = Files();
            EXPECT_EQ(after, m_contact.m_lFlag == 8 ? before : before + 1) << n;
            before = after;
            TakeLog();
            if (!failed) {
                break;
            }
        }
    }
}

TEST_F(ContactWritingFaults, DeleteLeavesTheMessageOrNone) {
    for (const bool forever : {false, true}) {
        for (std::size_t n = 1;; ++n) {
            m_contact.m_strPIMID.clear();
            Write(8, {{2, L"old"}});
            const CString id = m_contact.m_strPIMID;
            const bool failed = WriteWithFault(32, n, forever, L"", {});
            m_contact.m_strPIMID = id;
            EXPECT_EQ(Message() != nullptr, m_contact.m_lFlag == 32) << n;
            if (!failed) {
                EXPECT_EQ(m_contact.m_lFlag, 0);
                break;
            }
        }
    }
}

}  // namespace
