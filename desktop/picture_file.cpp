#include "desktop/picture_file.h"

#include <windows.h>

#include "desktop/output_file.h"

namespace {

constexpr WideView kOpening = WIDE("<PICPath>");
constexpr WideView kClosing = WIDE("</PICPath>");

/// A text as the content of an element.
CString Escaped(WideView text) {
    CString escaped;
    for (const wide unit : text) {
        switch (unit) {
            case WIDE('&'):
                escaped += WIDE("&amp;");
                break;
            case WIDE('<'):
                escaped += WIDE("&lt;");
                break;
            case WIDE('>'):
                escaped += WIDE("&gt;");
                break;
            default:
                escaped += unit;
        }
    }
    return escaped;
}

/// The text of a document with another path of the picture and otherwise unit for unit as it came, which the
/// XML service would not give back. Empty if it has no such element.
CString WithPath(WideView document, WideView path) {
    const std::size_t opening = document.find(kOpening);
    if (opening == WideView::npos) {
        return {};
    }
    const std::size_t begin = opening + kOpening.size();
    const std::size_t end = document.find(kClosing, begin);
    if (end == WideView::npos) {
        return {};
    }
    return CString(document.substr(0, begin)) + Escaped(path) + CString(document.substr(end));
}

}  // namespace

PictureFile::PictureFile(ItemDocument& document, std::filesystem::path target)
    : m_source(document.Field(L"PICPath")), m_target(std::move(target)), m_text(document.Text()) {}

bool PictureFile::Copy(bool durable) {
    if (m_source.empty()) {
        return true;
    }
    CString text = WithPath(m_text.View(), m_target.c_str());
    m_copied = !text.empty() && CopyFileWhole(m_source.c_str(), m_target, durable);
    if (m_copied) {
        m_text = std::move(text);
    }
    return m_copied;
}

void PictureFile::RemoveOthers() const {
    if (m_source.empty()) {
        DeleteFileW(m_target.c_str());
    } else if (m_copied) {
        DeleteFileW(m_source.c_str());
    }
}
