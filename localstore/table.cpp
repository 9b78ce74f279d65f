#include "localstore/table.h"

#include <algorithm>
#include <compare>

#include "localstore/buffers.h"

namespace localstore {

namespace {

/// Columns or sort columns that a client can mean.
constexpr ULONG kMostColumns = 4096;

/// Frees rows that were filled before the operation failed.
struct PartialRows {
    LPSRowSet rows;
    std::size_t filled = 0;

    explicit PartialRows(LPSRowSet set) : rows(set) {}
    PartialRows(const PartialRows&) = delete;
    PartialRows& operator=(const PartialRows&) = delete;
    ~PartialRows() {
        for (std::size_t i = 0; rows != nullptr && i < filled; ++i) {
            FreeBuffer(rows->aRow[i].lpProps);
        }
    }
};

/// An order the other way round.
std::partial_ordering Reversed(std::partial_ordering order) {
    if (std::is_lt(order)) {
        return std::partial_ordering::greater;
    }
    return std::is_gt(order) ? std::partial_ordering::less : order;
}

/// The order of two rows by one sort column. Rows without the property come last.
std::partial_ordering CompareRows(const PropertySource& left, const PropertySource& right,
                                  const SSortOrder& order) {
    const std::optional<Property> one = left.Find(IdOf(order.ulPropTag));
    const std::optional<Property> other = right.Find(IdOf(order.ulPropTag));
    if (!one || !other) {
        return other.has_value() <=> one.has_value();
    }
    const std::partial_ordering result = CompareValues(*one, *other, left.CodePage());
    return order.ulOrder == TABLE_SORT_DESCEND ? Reversed(result) : result;
}

}  // namespace

Table::Table(CallSubject subject, std::vector<TableRow> rows, std::vector<PropertyTag> columns)
    : m_subject(std::move(subject)), m_all(std::move(rows)), m_columns(std::move(columns)) {
    Arrange();
}

bool Table::Supports(REFIID iid) const {
    return IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IMAPITable);
}

CallSubject Table::Subject() const {
    return m_subject;
}

STDMETHODIMP Table::GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error) {
    const auto describe = [&](CallText& text) {
        text.Flags("result", static_cast<ULONG>(result)).Flags("flags", flags);
    };
    return Call("GetLastError", describe, [&] {
        Require(error != nullptr, MAPI_E_INVALID_PARAMETER);
        *error = nullptr;
        return S_OK;
    });
}

STDMETHODIMP Table::GetStatus(ULONG* status, ULONG* type) {
    return Call(
        "GetStatus", [](CallText&) {},
        [&] {
            Require(status != nullptr && type != nullptr, MAPI_E_INVALID_PARAMETER);
            *status = TBLSTAT_COMPLETE;
            *type = TBLTYPE_SNAPSHOT;
            return S_OK;
        });
}

STDMETHODIMP Table::SetColumns(LPSPropTagArray tags, ULONG flags) {
    const auto describe = [&](CallText& text) { text.Tags(tags).Flags("flags", flags); };
    return Call("SetColumns", describe, [&] {
        std::vector<PropertyTag> columns = TagsOfClient(tags);
        Require(!columns.empty() && columns.size() <= kMostColumns, MAPI_E_INVALID_PARAMETER);
        m_columns = std::move(columns);
        return S_OK;
    });
}

STDMETHODIMP Table::QueryColumns(ULONG flags, LPSPropTagArray* tags) {
    const auto describe = [&](CallText& text) { text.Flags("flags", flags); };
    return Call("QueryColumns", describe, [&] {
        Require(tags != nullptr, MAPI_E_INVALID_PARAMETER);
        Buffer<SPropTagArray> result(CbNewSPropTagArray(m_columns.size()));
        result->cValues = static_cast<ULONG>(m_columns.size());
        std::copy(m_columns.begin(), m_columns.end(), result->aulPropTag);
        *tags = result.Detach();
        return S_OK;
    });
}

STDMETHODIMP Table::GetRowCount(ULONG flags, ULONG* count) {
    const auto describe = [&](CallText& text) { text.Flags("flags", flags); };
    return Call("GetRowCount", describe, [&] {
        Require(count != nullptr, MAPI_E_INVALID_PARAMETER);
        *count = static_cast<ULONG>(m_rows.size());
        return S_OK;
    });
}

std::size_t Table::PlaceOf(BOOKMARK bookmark) const {
    switch (bookmark) {
        case BOOKMARK_BEGINNING:
            return 0;
        case BOOKMARK_CURRENT:
            return m_position;
        case BOOKMARK_END:
            return m_rows.size();
        default:
            break;
    }
    const auto found = m_bookmarks.find(bookmark);
    Require(found != m_bookmarks.end(), MAPI_E_INVALID_BOOKMARK);
    return std::min(found->second, m_rows.size());
}

STDMETHODIMP Table::SeekRow(BOOKMARK origin, LONG rows, LONG* sought) {
    const auto describe = [&](CallText& text) {
        text.Number("origin", static_cast<long long>(origin)).Number("rows", rows);
    };
    return Call("SeekRow", describe, [&] {
        const auto place = static_cast<std::ptrdiff_t>(PlaceOf(origin));
        const auto size = static_cast<std::ptrdiff_t>(m_rows.size());
        const std::ptrdiff_t target = std::clamp<std::ptrdiff_t>(place + rows, 0, size);
        m_position = static_cast<std::size_t>(target);
        if (sought != nullptr) {
            *sought = static_cast<LONG>(target - place);
        }
        return S_OK;
    });
}

STDMETHODIMP Table::QueryPosition(ULONG* row, ULONG* numerator, ULONG* denominator) {
    return Call(
        "QueryPosition", [](CallText&) {},
        [&] {
            Require(row != nullptr && numerator != nullptr && denominator != nullptr,
                    MAPI_E_INVALID_PARAMETER);
            *row = static_cast<ULONG>(m_position);
            *numerator = static_cast<ULONG>(m_position);
            *denominator = std::max<ULONG>(1, static_cast<ULONG>(m_rows.size()));
            return S_OK;
        });
}

STDMETHODIMP Table::FindRow(LPSRestriction restriction, BOOKMARK origin, ULONG flags) {
    const auto describe = [&](CallText& text) {
        text.Condition(restriction).Number("origin", static_cast<long long>(origin)).Flags("flags", flags);
    };
    return Call("FindRow", describe, [&] {
        const std::unique_ptr<const Condition> condition = ConditionOf(restriction);
        const auto matches = [&](const PropertySource* row) { return condition->Holds(*row); };
        const auto begin = m_rows.begin() + static_cast<std::ptrdiff_t>(PlaceOf(origin));
        if ((flags & DIR_BACKWARD) != 0) {
            const auto found = std::find_if(std::make_reverse_iterator(begin), m_rows.rend(), matches);
            Require(found != m_rows.rend(), MAPI_E_NOT_FOUND);
            m_position = static_cast<std::size_t>(found.base() - m_rows.begin()) - 1;
            return S_OK;
        }
        const auto found = std::find_if(begin, m_rows.end(), matches);
        Require(found != m_rows.end(), MAPI_E_NOT_FOUND);
        m_position = static_cast<std::size_t>(found - m_rows.begin());
        return S_OK;
    });
}

STDMETHODIMP Table::Restrict(LPSRestriction restriction, ULONG flags) {
    const auto describe = [&](CallText& text) { text.Condition(restriction).Flags("flags", flags); };
    return Call("Restrict", describe, [&] {
        m_condition = restriction == nullptr ? nullptr : ConditionOf(restriction);
        Arrange();
        return S_OK;
    });
}

STDMETHODIMP Table::CreateBookmark(BOOKMARK* bookmark) {
    return Call(
        "CreateBookmark", [](CallText&) {},
        [&] {
            Require(bookmark != nullptr, MAPI_E_INVALID_PARAMETER);
            constexpr BOOKMARK first = 16;
            const BOOKMARK next = m_bookmarks.empty() ? first : m_bookmarks.rbegin()->first + 1;
            m_bookmarks[next] = m_position;
            *bookmark = next;
            return S_OK;
        });
}

STDMETHODIMP Table::FreeBookmark(BOOKMARK bookmark) {
    const auto describe = [&](CallText& text) { text.Number("bookmark", static_cast<long long>(bookmark)); };
    return Call("FreeBookmark", describe, [&] {
        Require(m_bookmarks.erase(bookmark) != 0 || bookmark <= BOOKMARK_END, MAPI_E_INVALID_BOOKMARK);
        return S_OK;
    });
}

STDMETHODIMP Table::SortTable(LPSSortOrderSet order, ULONG flags) {
    const auto describe = [&](CallText& text) { text.Sort(order).Flags("flags", flags); };
    return Call("SortTable", describe, [&] {
        Require(order != nullptr && order->cSorts <= kMostColumns, MAPI_E_INVALID_PARAMETER);
        Require(order->cCategories == 0, MAPI_E_TOO_COMPLEX);
        m_order.assign(order->aSort, order->aSort + order->cSorts);
        Arrange();
        return S_OK;
    });
}

void Table::Arrange() {
    std::vector<const PropertySource*> rows;
    rows.reserve(m_all.size());
    for (const TableRow& row : m_all) {
        if (m_condition == nullptr || m_condition->Holds(*row)) {
            rows.push_back(row.get());
        }
    }
    if (!m_order.empty()) {
        std::stable_sort(rows.begin(), rows.end(),
                         [this](const PropertySource* left, const PropertySource* right) {
                             for (const SSortOrder& order : m_order) {
                                 const std::partial_ordering result = CompareRows(*left, *right, order);
                                 if (std::is_lt(result) || std::is_gt(result)) {
                                     return std::is_lt(result);
                                 }
                             }
                             return false;
                         });
    }
    m_rows = std::move(rows);
    m_position = 0;
    m_bookmarks.clear();
}

LPSRowSet Table::CopyRows(std::size_t first, std::size_t count) const {
    Buffer<SRowSet> set(CbNewSRowSet(count + 1));
    PartialRows partial(set.Get());
    set->cRows = static_cast<ULONG>(count);
    for (std::size_t i = 0; i < count; ++i) {
        Buffer<SPropValue> values(m_columns.size() * sizeof(SPropValue));
        FillValues(*m_rows[first + i], m_columns, true, kLongestRowValue, values.Get(), values.Get());
        SRow& row = set->aRow[i];
        row.ulAdrEntryPad = 0;
        row.cValues = static_cast<ULONG>(m_columns.size());
        row.lpProps = values.Detach();
        partial.filled = i + 1;
    }
    partial.rows = nullptr;
    return set.Detach();
}

STDMETHODIMP Table::QueryRows(LONG count, ULONG flags, LPSRowSet* rows) {
    const auto describe = [&](CallText& text) { text.Number("count", count).Flags("flags", flags); };
    return Call("QueryRows", describe, [&] {
        Require(rows != nullptr && count != 0, MAPI_E_INVALID_PARAMETER);
        *rows = nullptr;
        // A negative count asks for the rows in front of the position, and leaves the position at the first
        // of them.
        const bool backward = count < 0;
        const auto wanted = static_cast<std::size_t>(backward ? -static_cast<long long>(count) : count);
        const std::size_t available = backward ? m_position : m_rows.size() - m_position;
        const std::size_t size = std::min(wanted, available);
        const std::size_t first = backward ? m_position - size : m_position;
        *rows = CopyRows(first, size);
        if ((flags & TBL_NOADVANCE) == 0) {
            m_position = backward ? first : first + size;
        }
        return S_OK;
    });
}

STDMETHODIMP Table::Abort() {
    return Call(
        "Abort", [](CallText&) {}, [] { return S_OK; });
}

LPMAPITABLE NewTable(CallSubject subject, std::vector<TableRow> rows, std::vector<PropertyTag> columns,
                     bool unicode) {
    for (PropertyTag& column : columns) {
        column = MakeTag(IdOf(column), ClientType(TypeOf(column), unicode));
    }
    subject.interfaceName = "IMAPITable";
    return MakeObject<Table>(std::move(subject), std::move(rows), std::move(columns)).Detach();
}

}  // namespace localstore
