#pragma once

// IMAPITable over rows that were collected when the table was opened.

#include <map>
#include <memory>
#include <vector>

#include "localstore/com_object.h"
#include "localstore/property_source.h"
#include "localstore/restriction.h"

namespace localstore {

using TableRow = std::shared_ptr<const PropertySource>;

/// A snapshot: what happens to the store later does not show. Without a restriction it has all rows, without
/// a sort order they stand as they were given.
class Table final : public ComObject<RefusingTable> {
  public:
    /// `columns` are those of a table whose client sets none.
    Table(CallSubject subject, std::vector<TableRow> rows, std::vector<PropertyTag> columns);

    STDMETHODIMP GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error) override;
    STDMETHODIMP GetStatus(ULONG* status, ULONG* type) override;
    STDMETHODIMP SetColumns(LPSPropTagArray tags, ULONG flags) override;
    STDMETHODIMP QueryColumns(ULONG flags, LPSPropTagArray* tags) override;
    STDMETHODIMP GetRowCount(ULONG flags, ULONG* count) override;
    STDMETHODIMP SeekRow(BOOKMARK origin, LONG rows, LONG* sought) override;
    STDMETHODIMP QueryPosition(ULONG* row, ULONG* numerator, ULONG* denominator) override;
    STDMETHODIMP FindRow(LPSRestriction restriction, BOOKMARK origin, ULONG flags) override;
    STDMETHODIMP Restrict(LPSRestriction restriction, ULONG flags) override;
    STDMETHODIMP CreateBookmark(BOOKMARK* bookmark) override;
    STDMETHODIMP FreeBookmark(BOOKMARK bookmark) override;
    STDMETHODIMP SortTable(LPSSortOrderSet order, ULONG flags) override;
    STDMETHODIMP QueryRows(LONG count, ULONG flags, LPSRowSet* rows) override;
    STDMETHODIMP Abort() override;

    [[nodiscard]] bool Supports(REFIID iid) const override;
    [[nodiscard]] CallSubject Subject() const override;

  private:
    [[nodiscard]] std::size_t PlaceOf(BOOKMARK bookmark) const;
    [[nodiscard]] LPSRowSet CopyRows(std::size_t first, std::size_t count) const;
    void Arrange();

    CallSubject m_subject;
    std::vector<TableRow> m_all;
    /// Those of all rows that the restriction lets through, in order.
    std::vector<const PropertySource*> m_rows;
    std::vector<PropertyTag> m_columns;
    std::unique_ptr<const Condition> m_condition;
    std::vector<SSortOrder> m_order;
    std::size_t m_position = 0;
    std::map<BOOKMARK, std::size_t> m_bookmarks;
};

/// Makes a table for a client. Flags other than MAPI_UNICODE and MAPI_DEFERRED_ERRORS are the caller's to
/// look at.
LPMAPITABLE NewTable(CallSubject subject, std::vector<TableRow> rows, std::vector<PropertyTag> columns,
                     bool unicode);

}  // namespace localstore
