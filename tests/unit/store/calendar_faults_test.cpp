// Every call of a read of appointments failed once, and from then on: the read ends with its last line, what
// was sent is whole, nothing is left alive (which the fixture counts), and the next read is complete.

#include "support/settings.h"
#include "tests/unit/calendar/sample_series.h"
#include "tests/unit/store/calendar_reading_fixture.h"
#include "tests/unit/store/change_log.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

class CalendarFaults : public CalendarReading {
  protected:
    static constexpr std::size_t kItems = 3;

    void SetUp() override {
        CalendarReading::SetUp();
        MakeFolder(L"Work\\Mail\\Calendar\\Below");
        AddSeries(L"Calendar", {L"One", L"Two"});
        AddSeries(L"Calendar\\Below", {L"Three"});
        g_bSubFolder = true;
        OnGetChangeLog([](LogItems& items, const GetChangeLogArgs&) {
            for (tagLogItem& item : items) {
                item.m_lLogFlag = 8;
            }
            return static_cast<int>(items.GetSize());
        });
        LogOn();
    }
    void TearDown() override {
        OnGetChangeLog({});
        CalendarReading::TearDown();
    }

    /// Reads while the nth call fails; false if there was no such call.
    static bool ReadWithFault(const wchar_t* map, std::size_t n, bool forever) {
        recorder::FailCall(n, forever, MAPI_E_CALL_FAILED);
        const int status = g_MAPIObject.ReadCalendars(map);
        const bool failed = recorder::HasFailed();
        recorder::ClearFailures();
        EXPECT_TRUE(status == 0 || status == 1) << n;
        const LogLines log = TakeLog();
        EXPECT_EQ(log.back(), (LogLine{1, L"CMAPIObject::ReadCalendars - Finish\r\n"})) << n;
        EXPECT_EQ(
            std::count(log.begin(), log.end(), LogLine{1, L"CMAPIObject::ReadContacts - Succeeded\r\n"}),
            status == 0 ? 1 : 0)
            << n;
        return failed;
    }
    /// True for a document that can be parsed and ends as it should.
    static bool IsWhole(const CString& document) {
        CXMLParser parser;
        EXPECT_TRUE(parser.InitDocument());
        parser.LoadText(document.View());
        return parser.SelectSingleNode(L"/Calendar/PIMID") != nullptr &&
               document.ends_with(L"\n\t<lCalType>3</lCalType></Calendar>\r\n");
    }
    static void FailEachCallOf(const wchar_t* map) {
        for (const bool forever : {false, true}) {
            std::size_t n = 1;
            for (; ReadWithFault(map, n, forever); ++n) {
                const std::vector<CString> documents = TakeSentCalendars();
                EXPECT_LE(documents.size(), kItems) << n;
                EXPECT_TRUE(std::all_of(documents.begin(), documents.end(), IsWhole)) << n;
            }
            EXPECT_GT(n, 50U);
            EXPECT_EQ(TakeSentCalendars().size(), kItems);
        }
    }

  private:
    static void AddSeries(const std::wstring& folder, const std::vector<const wchar_t*>& subjects) {
        FolderWriter writer(L"Work", folder);
        for (const wchar_t* subject : subjects) {
            NewAppointment(writer, subject).Reminder(15).Series(2, sample_series::WithExceptions()).Save();
        }
    }
};

TEST_F(CalendarFaults, FullReadsEndProperlyWhateverCallFails) {
    FailEachCallOf(L"");
}

TEST_F(CalendarFaults, ReadsOfChangesEndProperlyWhateverCallFails) {
    FailEachCallOf(L"map");
}

}  // namespace
