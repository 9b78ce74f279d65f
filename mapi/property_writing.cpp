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

/// Runs a function with the tag of a property with a numeric name, given the type. Returns the result of
/// finding it, without which nothing is done.
template<class Write>
HRESULT WithNamedTag(IMAPIProp* object, ULONG propertySet, LONG id, ULONG type, const Write& write) {
    ULONG tag = 0;
    const HRESULT result = FindNamedPropertyTag(object, propertySet, id, tag);
    if (result == S_OK) {
        write(CHANGE_PROP_TYPE(tag, type));
    }
    return result;
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
    return WithNamedTag(object, propertySet, id, PT_UNICODE,
                        [&](ULONG tag) { SetTextProperty(object, tag, text); });
}

void SetNumberProperty(IMAPIProp* object, ULONG tag, LONG number) {
    SPropValue value = ValueOf(tag);
    value.Value.l = number;
    SetProperty(object, value);
}

void SetNamedNumberProperty(IMAPIProp* object, ULONG propertySet, LONG id, LONG number) {
    WithNamedTag(object, propertySet, id, PT_LONG,
                 [&](ULONG tag) { SetNumberProperty(object, tag, number); });
}

void SetFlagProperty(IMAPIProp* object, ULONG tag, unsigned short flag) {
    SPropValue value = ValueOf(tag);
    value.Value.b = flag;
    SetProperty(object, value);
}

void SetNamedFlagProperty(IMAPIProp* object, ULONG propertySet, LONG id, unsigned short flag) {
    WithNamedTag(object, propertySet, id, PT_BOOLEAN, [&](ULONG tag) { SetFlagProperty(object, tag, flag); });
}

void SetNamedBinaryProperty(IMAPIProp* object, ULONG propertySet, LONG id, const std::uint8_t* bytes,
                            std::uint32_t count) {
    WithNamedTag(object, propertySet, id, PT_BINARY, [&](ULONG tag) {
        SPropValue value = ValueOf(tag);
        value.Value.bin = {count, const_cast<LPBYTE>(bytes)};
        SetProperty(object, value);
    });
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
    return WithNamedTag(object, propertySet, id, PT_SYSTIME,
                        [&](ULONG tag) { SetDateProperty(object, tag, date); });
}

void DeleteProperty(IMAPIProp* object, ULONG tag) {
    SizedSPropTagArray(1, tags) = {1, {tag}};
    object->DeleteProps(reinterpret_cast<LPSPropTagArray>(&tags), nullptr);
}

void DeleteNamedProperty(IMAPIProp* object, ULONG propertySet, LONG id, ULONG type) {
    WithNamedTag(object, propertySet, id, type, [&](ULONG tag) { DeleteProperty(object, tag); });
}
