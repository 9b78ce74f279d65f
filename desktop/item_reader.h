#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>

#include "desktop/callback_service.h"
#include "desktop/failure.h"
#include "desktop/item_kind.h"
#include "desktop/item_output.h"
#include "desktop/progress_bar.h"

/// Takes the items of one read from the agent and hands them to an output. Documents are taken apart and
/// written on a thread of its own, so that the agent makes the next one meanwhile. Tells the agent to stop
/// when the user asks for an end or when the output fails.
class ItemReader : public ItemReceiver {
  public:
    ItemReader(const ItemKind& kind, ItemOutput& output, ProgressBar& progress);
    ItemReader(const ItemReader&) = delete;
    ItemReader& operator=(const ItemReader&) = delete;
    ~ItemReader() override { Finish(); }

    void Receive(const wchar_t* document) noexcept override;

    /// Waits until all that was received is with the output. Nothing may be received any more.
    void Finish();

    /// The results, for after Finish: how many items the output has taken, how many of them were no proper
    /// documents, and what went wrong with the output.
    [[nodiscard]] std::size_t Taken() const { return m_taken; }
    [[nodiscard]] std::size_t Invalid() const { return m_invalid; }
    [[nodiscard]] const std::optional<Failure>& OutputFailure() const { return m_failure; }

  private:
    bool Enqueue(const wchar_t* document);
    bool Dequeue(CString& document);
    void Work() noexcept;
    void Take(const CString& text);
    void Fail(const Failure& failure);
    void StopAgent();

    const ItemKind& m_kind;
    ItemOutput& m_output;
    ProgressBar& m_progress;
    bool m_stopSent = false;
    std::size_t m_taken = 0;
    std::size_t m_invalid = 0;

    /// Guards what follows, which both threads use.
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<CString> m_queue;
    bool m_complete = false;
    std::optional<Failure> m_failure;

    std::thread m_worker;
};
