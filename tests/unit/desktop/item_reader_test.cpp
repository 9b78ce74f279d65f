#include "desktop/item_reader.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>

namespace {

/// An output that takes its first document only when it is let go.
class SlowOutput : public ItemOutput {
  public:
    void Take(ItemDocument& document) override {
        if (m_taken.empty()) {
            m_gate.get_future().wait();
        }
        m_taken.emplace_back(document.Text());
    }
    void LetGo() { m_gate.set_value(); }
    [[nodiscard]] const std::vector<CString>& Taken() const { return m_taken; }

  private:
    std::promise<void> m_gate;
    std::vector<CString> m_taken;
};

TEST(ItemReader, LetsTheAgentWaitWith64DocumentsInTheQueue) {
    constexpr int kInHandAndQueue = 1 + 64;
    SlowOutput output;
    ProgressBar progress(0, false);
    ItemReader reader(*FindItemKind(L"contacts"), output, progress);
    std::atomic<int> received = 0;
    std::promise<void> full;
    std::thread agent([&] {
        for (int number = 0; number <= kInHandAndQueue; ++number) {
            const CString document =
                L"<Contact><PIMID>" + CString::FromNumber(number) + L"</PIMID></Contact>";
            reader.Receive(document.c_str());
            if (++received == kInHandAndQueue) {
                full.set_value();
            }
        }
    });
    // A shorter queue would never be left by so many.
    EXPECT_EQ(full.get_future().wait_for(std::chrono::minutes(1)), std::future_status::ready);
    // Time enough for one more to get through if it could.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(received, kInHandAndQueue);
    output.LetGo();
    agent.join();
    reader.Finish();
    ASSERT_EQ(output.Taken().size(), static_cast<std::size_t>(kInHandAndQueue) + 1);
    EXPECT_EQ(output.Taken().front(), L"<Contact><PIMID>0</PIMID></Contact>");
    EXPECT_EQ(output.Taken().back(), L"<Contact><PIMID>65</PIMID></Contact>");
    EXPECT_FALSE(reader.OutputFailure());
}

}  // namespace
