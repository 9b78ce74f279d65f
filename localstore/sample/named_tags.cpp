#include "localstore/sample/named_tags.h"

#include "localstore/sample/sample_error.h"

namespace sample {

namespace {

ULONG TagOfName(IMAPIProp* object, MAPINAMEID& name) {
    LPMAPINAMEID names = &name;
    MapiBuffer<SPropTagArray> tags;
    Require(object->GetIDsFromNames(1, &names, MAPI_CREATE, tags.Put()), L"name a property");
    return tags->aulPropTag[0];
}

}  // namespace

ULONG NamedTags::Tag(IMAPIProp* object, const GUID& set, LONG number, ULONG type) {
    ULONG& tag = m_tags[{set.Data1, number}];
    if (tag == 0) {
        GUID copy = set;
        MAPINAMEID name{};
        name.lpguid = &copy;
        name.ulKind = MNID_ID;
        name.Kind.lID = number;
        tag = TagOfName(object, name);
    }
    return CHANGE_PROP_TYPE(tag, type);
}

ULONG NamedTags::KeywordsTag(IMAPIProp* object) {
    if (m_keywords == 0) {
        GUID copy = kPublicStringsSet;
        wchar_t text[] = L"Keywords";
        MAPINAMEID name{};
        name.lpguid = &copy;
        name.ulKind = MNID_STRING;
        name.Kind.lpwstrName = text;
        m_keywords = TagOfName(object, name);
    }
    return CHANGE_PROP_TYPE(m_keywords, PT_MV_UNICODE);
}

}  // namespace sample
