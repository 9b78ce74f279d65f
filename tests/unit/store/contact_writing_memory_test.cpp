// Every allocation of a write fails in turn: the status is success, the flag and the lines tell what became
// of the message, and the store has the old one or a new one.

#include <filesystem>

#include "tests/unit/localstore/scarce_memory.h"
#include "tests/unit/store/contact_writing_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

class ContactWritingMemory : public ContactWriting {
  protected:
    void SetUp() override {
        ContactWriting::SetUp();
        // What is recorded is allocated too, and not by the agent.
        recorder::Record(false);
        m_objects = recorder::LiveObjects();
        m_buffers = recorder::LiveBuffers();
    }
    void TearDown() override {
        recorder::Record(true);
        TakeLog();
        ContactWriting::TearDown();
    }

    /// Writes the record with the first, the second, the third ... allocation failing, and then with all
    /// behind it failing too, until none is left to fail. `prepare` and `check` have memory.
    template<class Prepare, class Check>
    void FailEach(const Prepare& prepare, const Check& check) {
        for (const bool forever : {false, true}) {
            bool hasFailed = true;
            for (std::size_t n = 1; hasFailed && !HasFailure(); ++n) {
                SCOPED_TRACE(testing::Message()
                             << "allocation " << n << (forever ? " and all behind it" : ""));
                prepare();
                TakeLog();
                int status = -1;
                {
                    const localstore_test::ScarceMemory scarce(n, forever);
                    status = g_MAPIObject.WriteContacts(&m_contact);
                    hasFailed = scarce.HasFailed();
                }
                EXPECT_EQ(status, 0);
                EXPECT_EQ(recorder::LiveObjects(), m_objects);
                EXPECT_EQ(recorder::LiveBuffers(), m_buffers);
                m_log = TakeLog();
                check();
                if (!hasFailed) {
                    EXPECT_EQ(m_contact.m_lFlag, 0);
                    EXPECT_GT(n, 5U) << "nothing was allocated";
                }
            }
        }
    }
    /// True if the log of the last write has a line. One for which there was no memory is lost.
    [[nodiscard]] bool HasLine(const wchar_t* text) const {
        const CString line = CString::Format(L"CMAPIObject::%s\r\n", text);
        return std::ranges::any_of(m_log, [&](const LogLine& logged) { return logged.text == line; });
    }
    /// Expects no line that tells another outcome of an operation than its flag does.
    void ExpectNoLineAgainstTheFlag(const std::wstring& operation) const {
        const std::wstring wrong =
            operation + (m_contact.m_lFlag == 0 ? L" - Finish(Failed)" : L" - Finish(Succeeded)");
        EXPECT_FALSE(HasLine(wrong.c_str()));
    }

    LogLines m_log;

  private:
    long m_objects = 0;
    long m_buffers = 0;
};

TEST_F(ContactWritingMemory, UpdateLeavesTheOldMessageOrANewOne) {
    WriteFile(L"a.jpg", "photo");
    const std::wstring photo = m_root + L"\\a.jpg";
    bool isOld = false;
    int savedWithoutTheNames = 0;
    int givenUp = 0;
    const auto prepare = [&] {
        if (!isOld) {
            m_contact.m_strPIMID.clear();
            Write(8, {{1, L"an old first name"}, {2, L"an old surname"}, {3018, L"old"}}, photo);
            ASSERT_EQ(m_contact.m_lFlag, 0);
        }
        Fill(4, {{1, L"a new first name"}, {2, L"a new surname"}, {3018, L"new;newer"}}, photo);
    };
    FailEach(prepare, [&] {
        isOld = m_contact.m_lFlag != 0;
        ExpectNoLineAgainstTheFlag(L"UpdateContact");
        ExpectNoLineAgainstTheFlag(L"UpdateContactMessage");
        if (isOld) {
            ++givenUp;
            EXPECT_EQ(m_contact.m_lFlag, 4);
            EXPECT_EQ(Text(PR_GIVEN_NAME_W), L"an old first name");
            EXPECT_EQ(Text(PR_SURNAME_W), L"an old surname");
            EXPECT_EQ(Categories(), std::vector<CString>{L"old"});
            EXPECT_EQ(Attachments(), 1U);
        } else if (HasLine(L"UpdateContactDisplayName - Finish(Failed)")) {
            ++savedWithoutTheNames;
            EXPECT_EQ(Text(PR_SURNAME_W), L"a new surname");
            EXPECT_EQ(Categories(), (std::vector<CString>{L"new", L"newer"}));
        }
    });
    EXPECT_GT(givenUp, 0);
    // The names that are made of the parts are no reason to give up.
    EXPECT_GT(savedWithoutTheNames, 0);
}

TEST_F(ContactWritingMemory, AddLeavesNothingOrANewMessageAndNeverTheIdentifierThatWasSentForIt) {
    const CString sent(std::wstring(60, L'A'));
    const auto prepare = [&] {
        for (const auto& entry : std::filesystem::directory_iterator(m_root + L"\\Work\\Mail\\Contacts")) {
            std::filesystem::remove(entry);
        }
        m_contact.m_strPIMID = sent;
        Fill(8, {{1, L"a new first name"}, {3018, L"new"}});
    };
    FailEach(prepare, [&] {
        ExpectNoLineAgainstTheFlag(L"AddContact");
        if (Files() == 0) {
            EXPECT_EQ(m_contact.m_lFlag, 8);
        } else {
            EXPECT_EQ(Files(), 1U);
            EXPECT_NE(m_contact.m_strPIMID, sent);
            // The text of the identifier comes behind the save.
            EXPECT_TRUE(m_contact.m_lFlag == 0 || m_contact.m_strPIMID.empty());
        }
    });
}

TEST_F(ContactWritingMemory, DeleteLeavesTheMessageOrNone) {
    const auto prepare = [&] {
        if (m_contact.m_lFlag == 0) {
            m_contact.m_strPIMID.clear();
            Write(8, {{2, L"old"}});
        }
        Fill(32, {});
    };
    FailEach(prepare, [&] {
        ExpectNoLineAgainstTheFlag(L"DeleteContact");
        EXPECT_EQ(Message() != nullptr, m_contact.m_lFlag == 32);
    });
}

}  // namespace
