// What is measured of a read part by part, one item after the other as a read has to do it: bench_turns FILE
// MAPI32.DLL PROFILE contacts|calendars. FILE has the documents of the profile's default folder in the order
// of its items. Each line of the input is one more time for all items:
//
//   turns       each item's store calls, then the building of its document by direct calls, then its callback
//   own-turns   the same with the agent's class instead of the direct calls, with its selections in the
//               document, the conversion of the dates and the text of the series
//   series      the text of each series, and nothing else

#include <windows.h>

#include <stdexcept>

#include "callbacks.h"
#include "command_loop.h"
#include "direct_document.h"
#include "item_series.h"
#include "items.h"
#include "own_document.h"

namespace {

/// The item's document by the agent's class, with what the agent does between its elements.
class OwnBuilding {
  public:
    OwnBuilding(const bench::Item& item, const bench::ItemSeries& series) : m_item(item), m_series(series) {}

    CString Build() {
        return bench::BuildByClass(m_document, m_item.parts,
                                   [this](const bench::ElementPart& part) { return TextBefore(part); });
    }

  private:
    CString TextBefore(const bench::ElementPart& part) {
        for (const wchar_t* const path : bench::SelectionsBefore(part)) {
            m_document.GetNodeText(m_document.SelectSingleNode(path).Get());
        }
        if (m_nextDate < m_item.dates.size() && part.name == m_item.dates[m_nextDate].element) {
            const std::wstring text = bench::TextOf(m_item.dates[m_nextDate++]);
            return {text.data(), text.size()};
        }
        if (!m_series.bytes.empty()) {
            if (part.name == bench::kSeriesElement) {
                m_pattern = bench::PatternOf(m_series);
            } else if (part.name == bench::kExceptionsElement) {
                return bench::ExceptionsOf(m_series, m_pattern);
            }
        }
        return bench::SameText(part);
    }

    const bench::Item& m_item;
    const bench::ItemSeries& m_series;
    CXMLParser m_document;
    std::size_t m_nextDate = 0;
    NAMESPACE_MAPI::tagRecurrencePattern m_pattern;
};

/// A profile's default folder, what its items are read by, and what a read of it has given.
class Read {
  public:
    Read(const std::wstring& file, const std::wstring& profile, const std::wstring& kind)
        : m_loop(kind == L"contacts" ? bench::kContactLoop : bench::kCalendarLoop),
          m_opened(bench::OpenDefaultFolder(
              profile, kind == L"contacts" ? bench::kContactFolder : bench::kCalendarFolder)),
          m_items(bench::ReadItems(file)),
          m_callback(bench::BindCallback(kind)) {
        const ULONG count = Visit([this](const ComPtr<IMessage>& message, std::size_t number) {
            m_series.push_back(bench::SeriesOf(message.Get(), m_items.at(number).parts));
            OwnBuilding building(m_items[number], m_series.back());
            bench::RequireSame(m_items[number], building.Build().View());
        });
        if (count != m_items.size()) {
            throw std::runtime_error("the file has not the documents of the folder");
        }
    }

    std::string Answer(const std::string& line) {
        if (line == "turns") {
            return std::to_string(SecondsOfTurns([this](std::size_t number) {
                const Bstr text = bench::Build(m_items[number].parts);
                bench::Send(m_callback, text.Get());
            }));
        }
        if (line == "own-turns") {
            const ComApartmentHold apartment;
            return std::to_string(SecondsOfTurns([this](std::size_t number) {
                OwnBuilding building(m_items[number], m_series[number]);
                CString text = building.Build();
                bench::Send(m_callback, text.data());
            }));
        }
        if (line == "series") {
            return std::to_string(SecondsOfSeries());
        }
        throw std::invalid_argument("not a command: " + line);
    }

  private:
    ULONG Visit(const bench::MessageVisit& visit) const {
        return bench::VisitWholeFolder(m_loop, m_opened.folder.Get(), visit);
    }

    /// Seconds of the store calls of all items, each with something behind them.
    double SecondsOfTurns(const std::function<void(std::size_t number)>& build) const {
        return bench::SecondsOf([&] {
            Visit([&](ComPtr<IMessage> message, std::size_t number) {
                m_loop.readMessage(message.Get());
                message.Reset();
                build(number);
            });
        });
    }

    double SecondsOfSeries() const {
        return bench::SecondsOf([this] {
            for (const bench::ItemSeries& series : m_series) {
                if (!series.bytes.empty()) {
                    bench::ExceptionsOf(series, bench::PatternOf(series));
                }
            }
        });
    }

    const bench::StoreLoop& m_loop;
    bench::OpenedFolder m_opened;
    std::vector<bench::Item> m_items;
    std::vector<bench::ItemSeries> m_series;
    bench::Callback m_callback;
};

void Run(const std::wstring& file, const wchar_t* library, const std::wstring& profile,
         const std::wstring& kind) {
    const Library loaded = bench::LoadMapi(library);
    Read read(file, profile, kind);
    // Held over all runs: without a document the library could go from memory between two of them.
    const ComPtr<IXMLDOMDocument> hold = bench::MakeDocument();
    bench::AnswerLines([&](const std::string& line) { return read.Answer(line); });
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    return bench::Guarded("bench_turns", [&] {
        if (count != 5) {
            throw std::invalid_argument("bench_turns FILE MAPI32.DLL PROFILE contacts|calendars");
        }
        bench::RequireResult(CoInitialize(nullptr), "CoInitialize");
        Run(arguments[1], arguments[2], arguments[3], arguments[4]);
    });
}
