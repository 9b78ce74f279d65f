#include "desktop/contact_conversion.h"

#include "desktop/contact_pairs.h"
#include "support/number_text.h"

bool IsWholeContact(ItemDocument& document) {
    // The last element, which is called otherwise where it is written.
    return document.Has(L"SP-CATEGORIES");
}

std::vector<CString> ConvertContact(ItemDocument& read, WrittenDocument& written) {
    for (const ContactPair& pair : kContactPairs) {
        written.Add(pair.write, read.Field(pair.read));
    }
    written.Add(InstantMessagingElement(ReadNumber(read.Field(L"SP-IMADRESS/@IMType"))),
                read.Field(L"SP-IMADRESS"));
    written.Add(L"PICPath", read.Field(L"PICPath"));
    return {};
}
