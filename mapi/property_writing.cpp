#include "mapi/property_writing.h"

#include "mapi/named_properties.h"
#include "timezone/conversions.h"

namespace {

void SetProperty(IMAPIProp* object, SPropValue& value) {
    object->SetProps(1, &value, nullptr);
}

SPropValue ValueOf(ULONG tag) {
    SPropValue value{};
    value.ulPropTag = tag;
    return value;
}

}  // namespace

void SetTextProperty(IMAPIProp* object, ULONG tag, const CString& text) {
    if (text.empty()) {
        DeleteProperty(object, tag);
        return;
    }
    SPropValue value = ValueOf(tag);
    value.Value.lpszW = const_cast<LPWSTR>(text.c_str());
    SetProperty(object, value);
}

HRESULT SetNamedTextProperty(IMAPIProp* object, ULONG propertySet, LONG id, const CString& text) {
    ULONG tag = 0;
    const HRESULT result = FindNamedPropertyTag(object, propertySet, id, tag);
    if (result == S_OK) {
        SetTextProperty(object, CHANGE_PROP_TYPE(tag, PT_UNICODE), text);
    }
    return result;
}

void SetNumberProperty(IMAPIProp* object, ULONG tag, LONG number) {
    SPropValue value = ValueOf(tag);
    value.Value.l = number;
    SetProperty(object, value);
}

void SetFlagProperty(IMAPIProp* object, ULONG tag, bool flag) {
    SPropValue value = ValueOf(tag);
    value.Value.b = static_cast<unsigned short>(flag ? TRUE : FALSE);
    SetProperty(object, value);
}

void SetNamedFlagProperty(IMAPIProp* object, ULONG propertySet, LONG id, bool flag) {
    ULONG tag = 0;
    if (FindNamedPropertyTag(object, propertySet, id, tag) == S_OK) {
        SetFlagProperty(object, CHANGE_PROP_TYPE(tag, PT_BOOLEAN), flag);
    }
}

void SetDateProperty(IMAPIProp* object, ULONG tag, const COleDateTime& date) {
    if (date.IsNoDate()) {
        DeleteProperty(object, tag);
        return;
    }
    SPropValue value = ValueOf(tag);
    value.Value.ft = LocalDateTimeToFileTime(date);
    SetProperty(object, value);
}

HRESULT SetNamedDateProperty(IMAPIProp* object, ULONG propertySet, LONG id, const COleDateTime& date) {
    ULONG tag = 0;
    const HRESULT result = FindNamedPropertyTag(object, propertySet, id, tag);
    if (result == S_OK) {
        SetDateProperty(object, CHANGE_PROP_TYPE(tag, PT_SYSTIME), date);
    }
    return result;
}

void DeleteProperty(IMAPIProp* object, ULONG tag) {
    SizedSPropTagArray(1, tags) = {1, {tag}};
    object->DeleteProps(reinterpret_cast<LPSPropTagArray>(&tags), nullptr);
}
