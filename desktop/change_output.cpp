#include "desktop/change_output.h"

#include <algorithm>
#include <iterator>

#include "desktop/output_stream.h"
#include "support/number_text.h"
#include "support/utf8.h"

namespace {

/// The bits of a document's flag.
constexpr std::int32_t kChanged = 4;
constexpr std::int32_t kNew = 8;
constexpr std::int32_t kDeleted = 32;

TextTable::Row WithChange(const wchar_t* change, const TextTable::Row& row) {
    TextTable::Row result{change};
    result.insert(result.end(), row.begin(), row.end());
    return result;
}

}  // namespace

ChangeOutput::ChangeOutput(const ItemKind& kind, std::unique_ptr<ItemOutput> documents, bool wantsTable)
    : m_kind(kind),
      m_documents(std::move(documents)),
      m_wantsTable(wantsTable),
      m_table(WithChange(L"CHANGE", kind.headings())) {}

void ChangeOutput::Take(ItemDocument& document) {
    m_arrived.insert(Utf8FromWide(document.Field(L"PIMID").View()));
    const std::int32_t flag = ReadNumber(document.Field(L"lFlag").View());
    // The same order in which the agent looks at the bits.
    if ((flag & kNew) != 0) {
        ++m_counts.added;
        HandOn(document, L"new");
    } else if ((flag & kChanged) != 0 || (flag & kDeleted) == 0) {
        ++m_counts.changed;
        HandOn(document, L"changed");
    } else {
        ++m_counts.deleted;
        m_deletions.emplace_back(document.Text());
    }
}

std::vector<std::string> ChangeOutput::MissingOf(const std::vector<std::string>& ids) const {
    std::vector<std::string> missing;
    std::copy_if(ids.begin(), ids.end(), std::back_inserter(missing),
                 [this](const std::string& id) { return !m_arrived.contains(id); });
    const std::size_t matched = ids.size() - missing.size();
    const std::size_t strangers = m_arrived.size() - matched;
    return strangers < missing.size() ? missing : std::vector<std::string>();
}

void ChangeOutput::BelieveDeletions() {
    for (const CString& text : m_deletions) {
        ItemDocument document(m_kind.root, text.View());
        HandOn(document, L"deleted");
    }
    m_deletions.clear();
}

void ChangeOutput::HandOn(ItemDocument& document, const wchar_t* change) {
    m_documents->Take(document);
    if (!m_wantsTable) {
        return;
    }
    TextTable::Row row = WithChange(change, m_kind.row(document));
    // Of an item that is gone the identifier is all that is left.
    if (row[1].empty()) {
        row[1] = document.Field(L"PIMID");
    }
    m_table.Add(row);
}

void ChangeOutput::Finish() {
    if (m_wantsTable && m_table.Size() != 0) {
        PrintOutput(m_table.Aligned(OutputStream(STD_OUTPUT_HANDLE).Columns()).View());
    }
    m_documents->Finish();
}
