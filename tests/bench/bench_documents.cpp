// The building of a read's documents and nothing else, with COM initialised and the XML service's library
// loaded all the while. bench_documents FILE; each line of the input is one more time for every document of
// the file:
//
//   documents    has the XML service build the document again, by direct calls
//   class        the same by the agent's own class
//   selections   the same by direct calls with the selections that the agent makes in the document, whose
//                time alone is told
//   dates        converts the dates of the item as the agent does, and builds nothing

#include <windows.h>

#include <stdexcept>

#include "command_loop.h"
#include "direct_document.h"
#include "items.h"
#include "own_document.h"
#include "require_result.h"

namespace {

using bench::Item;
using Items = std::vector<Item>;

double SecondsOfDocuments(const Items& items) {
    return bench::SecondsOf([&] {
        for (const Item& item : items) {
            bench::Build(item.parts);
        }
    });
}

double SecondsOfClass(const Items& items) {
    return bench::SecondsOf([&] {
        const ComApartmentHold apartment;
        for (const Item& item : items) {
            CXMLParser document;
            bench::BuildByClass(document, item.parts);
        }
    });
}

double SecondsOfSelections(const Items& items) {
    double seconds = 0;
    for (const Item& item : items) {
        bench::Build(item.parts, [&seconds](IXMLDOMDocument* document, const bench::ElementPart& part) {
            const std::span<const wchar_t* const> paths = bench::SelectionsBefore(part);
            if (!paths.empty()) {
                seconds += bench::SecondsOf([&] {
                    for (const wchar_t* const path : paths) {
                        bench::Select(document, path);
                    }
                });
            }
        });
    }
    return seconds;
}

double SecondsOfDates(const Items& items) {
    return bench::SecondsOf([&] {
        for (const Item& item : items) {
            for (const bench::ItemDate& date : item.dates) {
                bench::TextOf(date);
            }
        }
    });
}

std::string Answer(const Items& items, const std::string& line) {
    if (line == "documents") {
        return std::to_string(SecondsOfDocuments(items));
    }
    if (line == "class") {
        return std::to_string(SecondsOfClass(items));
    }
    if (line == "selections") {
        return std::to_string(SecondsOfSelections(items));
    }
    if (line == "dates") {
        return std::to_string(SecondsOfDates(items));
    }
    throw std::invalid_argument("not a command: " + line);
}

void Run(const std::wstring& path) {
    const Items items = bench::ReadItems(path);
    // Held over all runs: without a document the library could go from memory between two of them.
    const ComPtr<IXMLDOMDocument> hold = bench::MakeDocument();
    bench::AnswerLines([&](const std::string& line) { return Answer(items, line); });
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    return bench::Guarded("bench_documents", [&] {
        if (count != 2) {
            throw std::invalid_argument("bench_documents FILE");
        }
        bench::RequireResult(CoInitialize(nullptr), "CoInitialize");
        Run(arguments[1]);
    });
}
