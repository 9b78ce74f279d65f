#include "document_parts.h"

#include <stdexcept>

namespace bench {

namespace {

/// Reads a document from its front to its end.
class Scanner {
  public:
    explicit Scanner(const std::wstring& text) : m_text(text) {}

    [[nodiscard]] bool IsAt(const wchar_t* word) const {
        return m_text.compare(m_place, std::wstring(word).size(), word) == 0;
    }
    void Expect(const std::wstring& word) {
        if (m_text.compare(m_place, word.size(), word) != 0) {
            throw std::runtime_error("a document is not built as expected at unit " +
                                     std::to_string(m_place));
        }
        m_place += word.size();
    }
    /// What stands in front of any of these characters.
    std::wstring UpTo(const wchar_t* characters) {
        const std::size_t end = m_text.find_first_of(characters, m_place);
        if (end == std::wstring::npos) {
            throw std::runtime_error("a document ends early");
        }
        std::wstring found = m_text.substr(m_place, end - m_place);
        m_place = end;
        return found;
    }
    [[nodiscard]] bool IsAtEnd() const { return m_place == m_text.size(); }

  private:
    const std::wstring& m_text;
    std::size_t m_place = 0;
};

/// A text of a document as it was put into it: what stands for single characters is resolved, and line ends
/// are line feeds again.
std::wstring Plain(std::wstring text) {
    constexpr struct {
        const wchar_t* written;
        const wchar_t* meant;
    } kForms[] = {{L"\r\n", L"\n"},  {L"&lt;", L"<"},   {L"&gt;", L">"}, {L"&quot;", L"\""},
                  {L"&#13;", L"\r"}, {L"&#xD;", L"\r"}, {L"&amp;", L"&"}};
    for (const auto& form : kForms) {
        const std::wstring written = form.written;
        const std::wstring meant = form.meant;
        for (std::size_t place = 0; (place = text.find(written, place)) != std::wstring::npos;
             place += meant.size()) {
            text.replace(place, written.size(), meant);
        }
    }
    return text;
}

std::vector<Attribute> TakeAttributes(Scanner& scanner) {
    std::vector<Attribute> attributes;
    while (scanner.IsAt(L" ")) {
        scanner.Expect(L" ");
        Attribute attribute;
        attribute.name = scanner.UpTo(L"=");
        scanner.Expect(L"=\"");
        attribute.value = Plain(scanner.UpTo(L"\""));
        scanner.Expect(L"\"");
        attributes.push_back(std::move(attribute));
    }
    return attributes;
}

ElementPart TakeElement(Scanner& scanner, std::wstring indent) {
    ElementPart element;
    element.indent = Plain(std::move(indent));
    scanner.Expect(L"<");
    element.name = scanner.UpTo(L" />");
    element.attributes = TakeAttributes(scanner);
    if (scanner.IsAt(L"/>")) {
        scanner.Expect(L"/>");
        return element;
    }
    scanner.Expect(L">");
    element.text = Plain(scanner.UpTo(L"<"));
    scanner.Expect(L"</" + element.name + L">");
    return element;
}

}  // namespace

DocumentParts TakeApart(const std::wstring& document) {
    Scanner scanner(document);
    scanner.UpTo(L">");
    scanner.Expect(L">\r\n<");
    DocumentParts parts;
    parts.root = scanner.UpTo(L">");
    scanner.Expect(L">");
    const std::wstring end = L"</" + parts.root + L">";
    while (!scanner.IsAt(end.c_str())) {
        std::wstring indent = scanner.UpTo(L"<");
        parts.elements.push_back(TakeElement(scanner, std::move(indent)));
    }
    return parts;
}

}  // namespace bench
