#include "contacts/im_address.h"

std::int32_t SplitIMAddress(CString& address) {
    const std::size_t colon = address.find(WIDE(':'));
    if (colon == CString::npos) {
        return kIMAddressField;
    }
    const CString prefix = address.substr(0, colon + 1);
    for (const IMService& service : kIMServices) {
        if (prefix.EqualsNoCase(service.prefix)) {
            address.erase(0, service.prefix.size());
            return service.fieldId;
        }
    }
    return kIMAddressField;
}
