// Single properties of a contact that cannot be written: which of them end the write, and that no other one
// suffers.

#include <algorithm>
#include <iterator>

#include "contacts/contact_properties.h"
#include "tests/unit/store/contact_writing_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

class ContactPropertyFailures : public ContactWriting {
  protected:
    void WriteAddress() {
        m_contact.m_strPIMID.clear();
        recorder::ClearCalls();
        Write(8, {{2016, L"country"}, {2012, L"city"}, {2013, L"state"}});
    }
    /// Which of the calls of the last write was the search for a name; the first is 1.
    static std::size_t NumberOfSearch(const std::string& name) {
        const std::vector<recorder::Call> calls = recorder::Calls();
        const auto search = std::ranges::find_if(calls, [&](const recorder::Call& call) {
            return call.method == "IMessage::GetIDsFromNames" && call.arguments.starts_with(name);
        });
        EXPECT_NE(search, calls.end());
        return static_cast<std::size_t>(std::distance(calls.begin(), search)) + 1;
    }
};

TEST_F(ContactPropertyFailures, OfTheFourOfAnAddressOnlyTheLastIsAFailure) {
    const std::pair<LONG, const wchar_t*> properties[] = {{0x8082, L"SMTP"},
                                                          {0x8083, L"a@example.com"},
                                                          {0x8084, L"a@example.com"},
                                                          {0x8080, L"a@example.com"}};
    for (std::size_t failing = 0; failing < std::size(properties); ++failing) {
        ComPtr<IMessage> message;
        ASSERT_EQ(g_MAPIObject.m_lpContactFolder->CreateMessage(nullptr, 0, message.GetAddressOf()), S_OK);
        // Each is a search for its name and a call that sets it.
        recorder::FailCall(2 * failing + 1, false, MAPI_E_NO_SUPPORT);
        const HRESULT result = SetContactEmailAddress(message.Get(), 0x8083, L"a@example.com");
        EXPECT_TRUE(recorder::HasFailed());
        recorder::ClearFailures();
        EXPECT_EQ(result, failing == 3 ? MAPI_E_NO_SUPPORT : S_OK) << failing;
        for (std::size_t i = 0; i < std::size(properties); ++i) {
            CString text;
            GetNamedStringProperty(message.Get(), PSETID_Address, properties[i].first, text);
            EXPECT_EQ(text, i == failing ? L"" : properties[i].second) << failing << ' ' << i;
        }
    }
}

TEST_F(ContactPropertyFailures, NameThatIsNotFoundPassesOverItsPropertyAlone) {
    WriteAddress();
    const std::size_t number = NumberOfSearch("{00062004}:8046 ");
    recorder::FailCall(number, false);
    WriteAddress();
    EXPECT_TRUE(recorder::HasFailed());
    recorder::ClearFailures();
    EXPECT_EQ(m_contact.m_lFlag, 0);
    EXPECT_EQ(NamedText(0x8049), L"country");
    EXPECT_EQ(NamedText(0x8046), L"(none)");
    EXPECT_EQ(NamedText(0x8047), L"state");
}

TEST_F(ContactPropertyFailures, CategoriesWithoutABufferEndTheWriteAndTheOldOnesStay) {
    Write(8, {{1, L"John"}, {3018, L"a;b"}});
    TakeLog();
    recorder::FailMethod("MAPIAllocateBuffer", {}, MAPI_E_NOT_ENOUGH_MEMORY);
    Write(4, {{1, L"Jim"}, {3018, L"c"}});
    recorder::ClearFailures();
    EXPECT_EQ(m_contact.m_lFlag, 4);
    EXPECT_EQ(TakeLog(),
              Lines({L"UpdateContact - Begin", L"UpdateContactMessage - Begin",
                     L"UpdateContactMessage - Finish(Failed)", L"UpdateContact - Finish(Failed)"}));
    EXPECT_EQ(Text(PR_GIVEN_NAME_W), L"John");
    EXPECT_EQ(Categories(), (std::vector<CString>{L"a", L"b"}));
}

}  // namespace
