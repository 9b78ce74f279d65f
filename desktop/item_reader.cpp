#include "desktop/item_reader.h"

#include <windows.h>

#include <rpc.h>

#include "desktop/interrupt.h"
#include "support/rpc_guard.h"

extern "C" {
#include "command.h"
}

void ItemReader::Receive(const wchar_t* document) noexcept {
    if (!m_failure) {
        try {
            Take(document);
        } catch (const Failure& failure) {
            m_failure = failure;
        } catch (...) {
            m_failure.emplace(ExitCode::kOutputFailed, CString());
        }
    }
    if (m_failure || Interrupted()) {
        StopAgent();
    }
}

void ItemReader::Take(const wchar_t* text) {
    ItemDocument document(m_kind.root, text);
    if (!document.IsValid()) {
        ++m_invalid;
    }
    m_output.Take(document);
    ++m_received;
    m_progress.Show(m_received);
}

/// The agent keeps the mark until a read sees it, and a mark that comes too late would end the next read. So
/// it is set only from here, while the agent waits for this document's return in the middle of the read.
void ItemReader::StopAgent() {
    if (!m_stopSent) {
        m_stopSent = GuardRpcCall([](void* /*unused*/) noexcept { Stop(); }, nullptr) == 0;
    }
}
