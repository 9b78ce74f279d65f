#pragma once

// The people of the sample. All of them are made up, with addresses at example.com and numbers that nobody
// has.

#include <span>
#include <string>
#include <utility>
#include <vector>

#include "localstore/sample/portrait.h"
#include "localstore/sample/sample_fields.h"

namespace sample {

/// One item of the sample.
struct SampleItem {
    const wchar_t* folder;        ///< one of the names in sample_tree.h
    const wchar_t* messageClass;  ///< "IPM.Contact" for those that an agent reads
    Portrait portrait;            ///< of size 0 for none
    std::vector<std::pair<Field, std::wstring>> fields;

    /// The text of a field; empty if the item does not have it.
    [[nodiscard]] std::wstring Text(Field field) const;
};

/// All items, in the order in which they are written.
std::span<const SampleItem> SampleItems();

/// One of any number of plain contacts of the default contact folder, put together from lists.
SampleItem FurtherContact(unsigned number);

}  // namespace sample
