#include "desktop/item_reader.h"

#include <windows.h>

#include <rpc.h>

#include "desktop/interrupt.h"
#include "support/rpc_guard.h"
#include "support/xml_parser.h"

extern "C" {
#include "command.h"
}

namespace {

/// Documents that may wait for the output. An agent that is faster than the output waits with its next one.
constexpr std::size_t kLongestQueue = 64;

}  // namespace

ItemReader::ItemReader(const ItemKind& kind, ItemOutput& output, ProgressBar& progress)
    : m_kind(kind), m_output(output), m_progress(progress), m_worker([this] { Work(); }) {}

void ItemReader::Receive(const wchar_t* document) noexcept {
    bool goOn = false;
    try {
        goOn = Enqueue(document);
    } catch (...) {
        Fail(Failure(ExitCode::kOutputFailed, L"there is not enough memory"));
    }
    if (!goOn || Interrupted()) {
        StopAgent();
    }
}

/// Returns false if the output has failed and takes nothing more.
bool ItemReader::Enqueue(const wchar_t* document) {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_queue.size() < kLongestQueue || m_failure; });
    if (m_failure) {
        return false;
    }
    m_queue.emplace_back(document);
    m_changed.notify_all();
    return true;
}

/// Waits for a document. Returns false if none comes any more.
bool ItemReader::Dequeue(CString& document) {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_queue.empty() || m_complete; });
    if (m_queue.empty() || m_failure) {
        return false;
    }
    document = std::move(m_queue.front());
    m_queue.pop_front();
    m_changed.notify_all();
    return true;
}

void ItemReader::Work() noexcept {
    const ComApartmentHold hold;
    try {
        for (CString document; Dequeue(document);) {
            Take(document);
        }
    } catch (const Failure& failure) {
        Fail(failure);
    } catch (...) {
        Fail(Failure(ExitCode::kOutputFailed, L"there is not enough memory"));
    }
}

void ItemReader::Take(const CString& text) {
    ItemDocument document(m_kind.root, text.View());
    if (!document.IsValid()) {
        ++m_invalid;
    }
    m_output.Take(document);
    ++m_taken;
    m_progress.Show(m_taken);
}

void ItemReader::Fail(const Failure& failure) {
    const std::lock_guard lock(m_mutex);
    if (!m_failure) {
        m_failure = failure;
    }
    m_changed.notify_all();
}

void ItemReader::Finish() {
    {
        const std::lock_guard lock(m_mutex);
        m_complete = true;
        m_changed.notify_all();
    }
    if (m_worker.joinable()) {
        m_worker.join();
    }
}

/// The agent keeps the mark until a read sees it, and a mark that comes too late would end the next read. So
/// it is set only from here, while the agent waits for this document's return in the middle of the read.
void ItemReader::StopAgent() {
    if (!m_stopSent) {
        m_stopSent = GuardRpcCall([](void* /*unused*/) noexcept { Stop(); }, nullptr) == 0;
    }
}
