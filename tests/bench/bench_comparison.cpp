// What a read of changes does with the rows of a folder's list, each alone and all of them at once:
// bench_comparison MAP ITEMS. The lines of the input, each answered by its seconds:
//
//   compare  the comparison of the list with the map, in which nothing changed since the one at the start
//   rows     the list out of the rows
//   dates    of that the conversion of the dates

#include <windows.h>

#include <mapitags.h>

#include <array>
#include <cstdlib>
#include <stdexcept>
#include <vector>

#include "changelog/folder_log.h"
#include "changelog/get_change_log.h"
#include "command_loop.h"
#include "timezone/conversions.h"

namespace {

/// Identifiers of the local store have 56 bytes.
constexpr std::size_t kIdBytes = 56;
constexpr std::uint64_t kFirstDay = 129'000'000'000'000'000;  // in 2009
constexpr std::uint64_t kQuarterOfAnHour = 9'000'000'000;

/// A row as the local store has it: without a long-term identifier.
class Row {
  public:
    explicit Row(std::uint32_t number) {
        m_id.fill(0xAA);
        // What differs between the identifiers of a folder stands at their end.
        for (std::size_t i = 0; i < sizeof(number); ++i) {
            m_id[kIdBytes - 1 - i] = static_cast<BYTE>(number >> (8 * i));
        }
        const std::uint64_t time = kFirstDay + number * kQuarterOfAnHour;
        m_time = {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32U)};
    }
    [[nodiscard]] const FILETIME& Time() const { return m_time; }
    [[nodiscard]] tagLogItem Item() {
        std::array<SPropValue, 3> values{};
        values[0].ulPropTag = PR_ENTRYID;
        values[0].Value.bin = {kIdBytes, m_id.data()};
        values[1].ulPropTag = PROP_TAG(PT_ERROR, kLongTermId);
        values[2].ulPropTag = PR_LAST_MODIFICATION_TIME;
        values[2].Value.ft = m_time;
        tagLogItem item;
        FillLogItem(item, values.data(), static_cast<ULONG>(values.size()));
        return item;
    }

  private:
    static constexpr ULONG kLongTermId = 0x6670;
    std::array<BYTE, kIdBytes> m_id{};
    FILETIME m_time{};
};

LogItems ListOf(std::vector<Row>& rows) {
    LogItems items;
    for (Row& row : rows) {
        items.Add(row.Item());
    }
    return items;
}

/// The sum of the dates, which needs them all.
double ConvertDates(const std::vector<Row>& rows) {
    double sum = 0;
    for (const Row& row : rows) {
        COleDateTime local;
        FileTimeToLocalDateTime(row.Time(), local);
        sum += local.m_dt;
    }
    return sum;
}

void RequireChanges(LogItems& items, const wchar_t* map, int expected) {
    if (FindChanges(items, L"contact", map) != expected) {
        throw std::runtime_error("a comparison does not find as many changes as there are");
    }
}

std::string SecondsText(const std::function<void()>& run) {
    return std::to_string(bench::SecondsOf(run));
}

void Run(const wchar_t* map, std::uint32_t count) {
    std::vector<Row> rows;
    for (std::uint32_t number = 0; number < count; ++number) {
        rows.emplace_back(number);
    }
    LogItems items = ListOf(rows);
    RequireChanges(items, map, static_cast<int>(count));
    const double dates = ConvertDates(rows);
    bench::AnswerLines([&](const std::string& line) {
        if (line == "compare") {
            return SecondsText([&] { RequireChanges(items, map, 0); });
        }
        if (line == "rows") {
            return SecondsText([&] { ListOf(rows); });
        }
        if (line != "dates") {
            throw std::invalid_argument("not a command: " + line);
        }
        return SecondsText([&] {
            if (ConvertDates(rows) != dates) {
                throw std::runtime_error("a date that was converted again is another one");
            }
        });
    });
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    return bench::Guarded("bench_comparison", [&] {
        if (count != 3) {
            throw std::invalid_argument("bench_comparison MAP ITEMS");
        }
        Run(arguments[1], static_cast<std::uint32_t>(std::wcstoul(arguments[2], nullptr, 10)));
    });
}
