#pragma once

#include "localstore/sample/named_tags.h"
#include "localstore/sample/sample_contacts.h"
#include "support/owners.h"

namespace sample {

/// Writes an item of the sample as a new message of a folder, with the properties that a mail program gives a
/// contact (MS-OXOCNTC 2.2.1).
void WriteItem(IMAPIFolder* folder, const SampleItem& item, NamedTags& tags);

}  // namespace sample
