#pragma once

// What the log of an operation may hold in which something failed.

#include <cstddef>
#include <cstdint>
#include <optional>

#include "tests/faults/operation.h"
#include "tests/unit/recorded_log.h"

/// True if a text is made as a pattern with at most one star says, which stands for any text.
bool IsLike(WideView text, WideView pattern);

/// The lines of a run without failures, which those of any other run are held against.
class LogRules {
  public:
    LogRules(const Operation& operation, Outcome clean);

    /// The first line that has no place: it is neither one of the clean run's, behind the one before it, nor
    /// a line that is documented for a failure. What stands in parentheses at the end, such as a result or a
    /// number, may be another than in the clean run.
    [[nodiscard]] std::optional<LogLine> Stray(const LogLines& lines) const;

    /// Expects the log of a run in which the n-th call of the store failed, as the first one or alone, to be
    /// the clean run's up to that call, and up to the line that tells its result, if there is one: that line
    /// tells the code, which the call gave. Behind it no line tells another result than the code or 0.
    void ExpectStoreFailure(const Outcome& outcome, std::size_t n, std::uint32_t code) const;

  private:
    [[nodiscard]] bool IsFailureLine(const LogLine& line) const;

    CString m_operation;
    Outcome m_clean;
};

/// Expects the log to tell what became of the operation: the line of its outcome is there and the opposite
/// one is not. Where memory failed the line may be lacking.
void ExpectOutcomeLine(const Operation& operation, const LogLines& log, std::optional<bool> succeeded,
                       bool mayLack);
