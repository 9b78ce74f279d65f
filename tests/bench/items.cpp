#include "items.h"

#include <stdexcept>

#include "direct_document.h"
#include "own_document.h"
#include "text_file.h"

namespace bench {

std::vector<Item> ReadItems(const std::wstring& path) {
    std::vector<Item> items;
    for (const std::wstring& text : ReadTexts(path)) {
        const DocumentParts parts = TakeApart(text);
        const Item& item = items.emplace_back(Item{text, parts, DatesOf(parts)});
        const Bstr direct = Build(item.parts);
        RequireSame(item, {direct.Get(), SysStringLen(direct.Get())});
        CXMLParser document;
        RequireSame(item, BuildByClass(document, item.parts).View());
    }
    return items;
}

void RequireSame(const Item& item, WideView built) {
    if (built != item.document) {
        throw std::runtime_error("a document that was built again is another one");
    }
}

}  // namespace bench
