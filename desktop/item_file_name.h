#pragma once

#include <set>
#include <string>

#include "support/text.h"

/// Names the files of the items of one read. The same item has the same name in every read.
class ItemFileNames {
  public:
    /// `kind` is the word that the names begin with.
    explicit ItemFileNames(WideView kind) : m_kind(kind) {}

    /// "KIND-0123456789abcdef.xml", with a hash of the item's identifier, which is far too long for a file
    /// name itself. A name that this object has given before gets a number behind the hash.
    CString Next(WideView identifier);

  private:
    CString m_kind;
    std::set<CString> m_given;
};
