#pragma once

#include <filesystem>

#include "desktop/item_document.h"

/// The picture of one contact on its way from the agent's folder to a file beside the contact's document. The
/// agent leaves the file to whoever receives the document, and the next agent gives its first picture the
/// same name again.
class PictureFile {
  public:
    /// `target` is where the picture is to be, as an absolute path: a document is read anywhere.
    PictureFile(ItemDocument& document, std::filesystem::path target);

    /// Copies the picture, with `durable` to the disk itself; an earlier file of the target's name is
    /// replaced. False if there is a picture and it could not be copied: then the document keeps its text.
    [[nodiscard]] bool Copy(bool durable);
    /// The document's text, which names the target once the picture was copied there.
    [[nodiscard]] const CString& Text() const { return m_text; }
    /// Removes what the document that is written now does not name any more: the agent's file of a picture
    /// that was copied, or the earlier picture of a contact that has none.
    void RemoveOthers() const;

    /// The agent's file; empty if the contact has no picture.
    [[nodiscard]] const CString& Source() const { return m_source; }

  private:
    CString m_source;
    std::filesystem::path m_target;
    CString m_text;
    bool m_copied = false;
};
