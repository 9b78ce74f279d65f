#pragma once

#include <cstddef>
#include <optional>

#include "desktop/callback_service.h"
#include "desktop/failure.h"
#include "desktop/item_kind.h"
#include "desktop/item_output.h"
#include "desktop/progress_bar.h"

/// Takes the items of one read from the agent and hands them to an output. Tells the agent to stop when the
/// user asks for an end or when the output fails.
class ItemReader : public ItemReceiver {
  public:
    ItemReader(const ItemKind& kind, ItemOutput& output, ProgressBar& progress)
        : m_kind(kind), m_output(output), m_progress(progress) {}

    void Receive(const wchar_t* document) noexcept override;

    /// The results, for after the read.
    [[nodiscard]] std::size_t Received() const { return m_received; }
    /// Documents that could not be taken apart.
    [[nodiscard]] std::size_t Invalid() const { return m_invalid; }
    [[nodiscard]] const std::optional<Failure>& OutputFailure() const { return m_failure; }

  private:
    void Take(const wchar_t* text);
    void StopAgent();

    const ItemKind& m_kind;
    ItemOutput& m_output;
    ProgressBar& m_progress;
    std::size_t m_received = 0;
    std::size_t m_invalid = 0;
    std::optional<Failure> m_failure;
    bool m_stopSent = false;
};
