#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "desktop/change_guard.h"
#include "desktop/item_output.h"

/// The output of a read of changes: counts them, lists them in a table, and holds deletions back until they
/// are believed.
class ChangeOutput : public ItemOutput {
  public:
    /// `documents` is where the documents go. The table, if one is wanted, goes to standard output at the
    /// end.
    ChangeOutput(const ItemKind& kind, std::unique_ptr<ItemOutput> documents, bool wantsTable);

    void Take(ItemDocument& document) override;
    void Finish() override;
    [[nodiscard]] bool WritesAtOnce() const override { return m_documents->WritesAtOnce(); }

    [[nodiscard]] const ChangeCounts& Counts() const { return m_counts; }
    /// Those of the identifiers of which no document has come: the agent knows nothing of a document that got
    /// lost on its way, and passes over an item that it cannot open, but in its map both count as told.
    /// Documents under identifiers that are not among them stand for as many others, since an appointment
    /// that changed goes out under its short-term identifier and is listed under the long-term one where
    /// there is one; if they are too few for all, it cannot be told for which.
    [[nodiscard]] std::vector<std::string> MissingOf(const std::vector<std::string>& ids) const;

    /// Hands the deletions on too.
    void BelieveDeletions();

  private:
    void HandOn(ItemDocument& document, const wchar_t* change);

    const ItemKind& m_kind;
    std::unique_ptr<ItemOutput> m_documents;
    bool m_wantsTable;
    TextTable m_table;
    ChangeCounts m_counts;
    std::unordered_set<std::string> m_arrived;
    std::vector<CString> m_deletions;
};
