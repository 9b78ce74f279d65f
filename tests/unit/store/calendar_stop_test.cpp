// Reads of calendar folders that are stopped, and the messages that a read sends to a window.

#include "tests/unit/store/calendar_reading_fixture.h"
#include "tests/unit/store/change_log.h"
#include "tests/unit/text_printer.h"

namespace {

/// A window that keeps the progress messages that it gets.
class ProgressWindow {
  public:
    struct Message {
        WPARAM first;
        LPARAM second;
        bool operator==(const Message&) const = default;
    };

    ProgressWindow() {
        s_received.clear();
        WNDCLASSW windowClass{};
        windowClass.lpszClassName = L"zeb-calendar-progress-test";
        windowClass.lpfnWndProc = &ProgressWindow::Receive;
        RegisterClassW(&windowClass);
        m_window = CreateWindowExW(0, windowClass.lpszClassName, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE,
                                   nullptr, nullptr, nullptr);
        EXPECT_NE(m_window, nullptr);
        g_MAPIObject.m_hNotifyWnd = m_window;
    }
    ProgressWindow(const ProgressWindow&) = delete;
    ProgressWindow& operator=(const ProgressWindow&) = delete;
    ~ProgressWindow() {
        g_MAPIObject.m_hNotifyWnd = nullptr;
        DestroyWindow(m_window);
    }
    static std::vector<Message> Take() { return std::exchange(s_received, {}); }

  private:
    static LRESULT CALLBACK Receive(HWND window, UINT message, WPARAM first, LPARAM second) {
        constexpr UINT kProgress = 2524;
        if (message == kProgress) {
            s_received.push_back({first, second});
        }
        return DefWindowProcW(window, message, first, second);
    }

    static inline std::vector<Message> s_received;
    HWND m_window = nullptr;
};

using Messages = std::vector<ProgressWindow::Message>;

TEST_F(CalendarReading, StopEndsAFullReadAtTheNextRowAndTheFollowingReadStartsClean) {
    AddAppointments(L"Calendar", {L"One", L"Two", L"Three"});
    LogOn();
    const ProgressWindow window;
    OnSend([] { g_MAPIObject.Stop(); });
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 1);
    EXPECT_EQ(TakeSentCalendars().size(), 1U);
    EXPECT_EQ(g_MAPIObject.m_bStop, 0);
    LogLines expected{{1, L"CMAPIObject::ReadCalendarEventFromFolder - Finish(Failed)\r\n"}};
    Append(expected, LastLinesOfAFailedRead(L"Interrupted"));
    EXPECT_EQ(LastOf(TakeLog(), expected), expected);
    EXPECT_EQ(ProgressWindow::Take(), (Messages{{0x10004, 0}, {0x10000014, 21}}));
    OnSend({});
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    EXPECT_EQ(TakeSentCalendars().size(), 3U);
    EXPECT_EQ(ProgressWindow::Take(), (Messages{{0x10004, 0}, {0x10000022, 0}}));
}

TEST_F(CalendarReading, StopWithNoReadRunningEndsTheNextReadThatHasItems) {
    AddAppointments(L"Calendar", {L"One"});
    LogOn();
    g_MAPIObject.Stop();
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 1);
    EXPECT_TRUE(TakeSentCalendars().empty());
    LogLines expected{{1, L"CMAPIObject::ReadCalendarEventFromFolder - Finish\r\n"},
                      {3, L"CMAPIObject::ReadCalendarEventFromFolder - Interrupted or INVALID Parameter\r\n"},
                      {1, L"CMAPIObject::ReadCalendarEventFromFolder - Finish(Failed)\r\n"}};
    Append(expected, LastLinesOfAFailedRead(L"Interrupted"));
    EXPECT_EQ(LastOf(TakeLog(), expected), expected);
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    EXPECT_EQ(TakeSentCalendars().size(), 1U);
}

TEST_F(CalendarReading, StopDoesNotEndACountNorAReadWithoutItems) {
    LogOn();
    g_MAPIObject.m_bStop = 1;
    EXPECT_EQ(g_MAPIObject.GetCalendarCount(), 0);
    EXPECT_EQ(g_MAPIObject.m_bStop, 1);
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    EXPECT_EQ(g_MAPIObject.m_bStop, 0);
}

TEST_F(CalendarReading, AReadThatFailsWithoutAStopSaysSo) {
    const ProgressWindow window;
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 1);
    EXPECT_EQ(ProgressWindow::Take(), (Messages{{0x10004, 0}, {0x10000014, 0}}));
}

TEST_F(CalendarReading, WithoutAChangeOnlyTheMessagesOfEveryReadAreSent) {
    LogOn();
    const ProgressWindow window;
    OnGetChangeLog([](LogItems&, const GetChangeLogArgs&) { return 0; });
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L"map"), 0);
    OnGetChangeLog({});
    EXPECT_EQ(ProgressWindow::Take(), (Messages{{0x10004, 0}, {0x10000022, 0}}));
}

}  // namespace
