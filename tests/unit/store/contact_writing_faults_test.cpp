// Every call of a write failed once, and from then on: only the calls that decide end the write, the flag and
// the lines tell what became of it, nothing is left alive (which the fixture counts), and the message is the
// old one or the new one.

#include <algorithm>
#include <string>

#include "tests/unit/store/contact_writing_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

/// The result of the calls that fail here, which the store itself does not give.
constexpr HRESULT kFault = MAPI_E_NETWORK_ERROR;

class ContactWritingFaults : public ContactWriting {
  protected:
    void TearDown() override {
        TakeLog();
        ContactWriting::TearDown();
    }
    /// Writes a contact while its nth call fails; false if there was no such call.
    bool WriteWithFault(std::int32_t flag, std::size_t n, bool forever, const wchar_t* name,
                        const std::wstring& photo) {
        TakeLog();
        recorder::ClearCalls();
        recorder::FailCall(n, forever, kFault);
        Write(flag, {{104, name}, {2, name}, {1000, name}, {3018, L"a;b"}, {4003, L"1980-05-05 00:00:00"}},
              photo);
        const bool failed = recorder::HasFailed();
        recorder::ClearFailures();
        m_failed.clear();
        for (const recorder::Call& call : recorder::Calls()) {
            if (call.result == kFault) {
                m_failed.push_back(call.method);
            }
        }
        EXPECT_EQ(!m_failed.empty(), failed) << n;
        return failed;
    }
    /// True if a call of the last write was one of a method, and failed.
    [[nodiscard]] bool HasFailed(const char* method) const {
        return std::ranges::find(m_failed, method) != m_failed.end();
    }
    /// Expects the lines and the flag of a write whose message is gained by a call of one method.
    void ExpectOutcomeOfTheCalls(std::int32_t flag, const std::wstring& operation,
                                 const char* gaining) const {
        const bool saved =
            !HasFailed(gaining) && !HasFailed("MAPIAllocateBuffer") && !HasFailed("IMessage::SaveChanges");
        EXPECT_EQ(m_contact.m_lFlag, saved ? 0 : flag);
        const std::wstring begin = operation + L" - Begin";
        const std::wstring finish = operation + (saved ? L" - Finish(Succeeded)" : L" - Finish(Failed)");
        std::vector<const wchar_t*> lines{begin.c_str()};
        if (!HasFailed(gaining)) {
            lines.push_back(L"UpdateContactMessage - Begin");
            if (!HasFailed("MAPIAllocateBuffer")) {
                lines.push_back(L"UpdateContactDisplayName - Begin");
                lines.push_back(L"UpdateContactDisplayName - Finish(Succeeded)");
            }
            lines.push_back(saved ? L"UpdateContactMessage - Finish(Succeeded)"
                                  : L"UpdateContactMessage - Finish(Failed)");
        }
        lines.push_back(finish.c_str());
        EXPECT_EQ(TakeLog(), Lines(lines));
    }
    /// How many of three properties have a text.
    [[nodiscard]] int PropertiesWith(const wchar_t* text) const {
        return (Text(PR_MOBILE_TELEPHONE_NUMBER_W) == text ? 1 : 0) + (Text(PR_SURNAME_W) == text ? 1 : 0) +
               (NamedText(0x8083) == text ? 1 : 0);
    }

    /// The methods that failed in the last write.
    std::vector<std::string> m_failed;
};

TEST_F(ContactWritingFaults, UpdateLeavesTheOldMessageOrANewOne) {
    WriteFile(L"a.jpg", "photo");
    const std::wstring photo = m_root + L"\\a.jpg";
    for (const bool forever : {false, true}) {
        std::size_t n = 1;
        for (;; ++n) {
            SCOPED_TRACE(testing::Message() << "call " << n << (forever ? " and all behind it" : ""));
            m_contact.m_strPIMID.clear();
            Write(8, {{104, L"old"}, {2, L"old"}, {1000, L"old"}}, photo);
            ASSERT_EQ(m_contact.m_lFlag, 0);
            const bool failed = WriteWithFault(4, n, forever, L"new", photo);
            ExpectOutcomeOfTheCalls(4, L"UpdateContact", "IMAPIFolder::OpenEntry");
            ASSERT_TRUE(Message());
            if (m_contact.m_lFlag == 4) {
                EXPECT_EQ(PropertiesWith(L"old"), 3);
                EXPECT_EQ(Attachments(), 1U);
            } else {
                // A single call that fails is at most one property that stays as it was.
                EXPECT_GE(PropertiesWith(L"new"), forever ? 3 : 2);
            }
            if (!failed) {
                break;
            }
        }
        EXPECT_GT(n, 100U);
        EXPECT_EQ(m_contact.m_lFlag, 0);
        EXPECT_EQ(PropertiesWith(L"new"), 3);
    }
}

TEST_F(ContactWritingFaults, AddLeavesNothingOrANewMessage) {
    std::size_t before = 0;
    for (const bool forever : {false, true}) {
        for (std::size_t n = 1;; ++n) {
            SCOPED_TRACE(testing::Message() << "call " << n << (forever ? " and all behind it" : ""));
            m_contact.m_strPIMID.clear();
            const bool failed = WriteWithFault(8, n, forever, L"new", {});
            ExpectOutcomeOfTheCalls(8, L"AddContact", "IMAPIFolder::CreateMessage");
            // Its class may be what could not be set, so the files are counted.
            const std::size_t after = Files();
            EXPECT_EQ(after, m_contact.m_lFlag == 8 ? before : before + 1);
            before = after;
            if (!failed) {
                break;
            }
        }
    }
}

TEST_F(ContactWritingFaults, DeleteLeavesTheMessageOrNone) {
    for (const bool forever : {false, true}) {
        for (std::size_t n = 1;; ++n) {
            SCOPED_TRACE(testing::Message() << "call " << n << (forever ? " and all behind it" : ""));
            m_contact.m_strPIMID.clear();
            Write(8, {{2, L"old"}});
            const bool failed = WriteWithFault(32, n, forever, L"", {});
            // It takes each of its calls.
            EXPECT_EQ(m_contact.m_lFlag, failed ? 32 : 0);
            EXPECT_EQ(TakeLog(),
                      Lines({L"DeleteContact - Begin", failed ? L"DeleteContact - Finish(Failed)"
                                                              : L"DeleteContact - Finish(Succeeded)"}));
            EXPECT_EQ(Message() != nullptr, failed);
            if (!failed) {
                EXPECT_EQ(n, 5U);
                break;
            }
        }
    }
}

}  // namespace
