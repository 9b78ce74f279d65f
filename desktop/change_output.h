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
    /// True if a document of the item has come. Identifiers are hexadecimal.
    [[nodiscard]] bool HasArrived(const std::string& id) const { return m_arrived.contains(id); }

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
