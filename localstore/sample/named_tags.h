#pragma once

#include <map>
#include <string>

#include "localstore/sample/sample_fields.h"
#include "support/owners.h"

namespace sample {

/// The tags that a store has for names of properties, made in the store on the first use of each and kept.
class NamedTags {
  public:
    /// The tag of a number in a property set, with the type given.
    ULONG Tag(IMAPIProp* object, const GUID& set, LONG number, ULONG type);
    /// The tag of a category list: the text "Keywords" among the public names.
    ULONG KeywordsTag(IMAPIProp* object);

  private:
    std::map<std::pair<unsigned long, LONG>, ULONG> m_tags;
    ULONG m_keywords = 0;
};

}  // namespace sample
