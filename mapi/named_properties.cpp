#include "mapi/named_properties.h"

#include <mapicode.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace {

constexpr std::size_t kPieceBytes = 1024;

HRESULT FindTagOfName(IMAPIProp* object, MAPINAMEID& name, ULONG& tag) {
    tag = 0;
    LPMAPINAMEID names = &name;
    MapiBuffer<SPropTagArray> tags;
    const HRESULT result = object->GetIDsFromNames(1, &names, MAPI_CREATE, tags.Put());
    if (result != S_OK) {
        return result;
    }
    if (!tags || tags->cValues == 0) {
        return MAPI_E_CALL_FAILED;
    }
    tag = tags->aulPropTag[0];
    return S_OK;
}

/// Appends a text up to its first null character, as texts in a buffer end there.
void AppendPiece(CString& text, const wchar_t* piece, std::size_t units) {
    const std::wstring_view view(piece, units);
    text.append(view.substr(0, view.find(L'\0')));
}

/// Reads a stream to its end. A unit that is split between two reads is put together again.
void ReadText(IStream* stream, CString& text) {
    std::array<wchar_t, kPieceBytes / sizeof(wchar_t) + 1> buffer{};
    std::size_t carried = 0;
    for (;;) {
        ULONG read = 0;
        char* const target = reinterpret_cast<char*>(buffer.data()) + carried;
        if (FAILED(stream->Read(target, kPieceBytes, &read)) || read == 0 || read > kPieceBytes) {
            return;
        }
        const std::size_t bytes = carried + read;
        AppendPiece(text, buffer.data(), bytes / sizeof(wchar_t));
        carried = bytes % sizeof(wchar_t);
        std::memmove(buffer.data(), reinterpret_cast<const char*>(buffer.data()) + bytes - carried, carried);
    }
}

}  // namespace

GUID PropertySet(ULONG firstBits) {
    return {firstBits, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
}

HRESULT FindNamedPropertyTag(IMAPIProp* object, ULONG propertySet, LONG id, ULONG& tag) {
    GUID set = PropertySet(propertySet);
    MAPINAMEID name{};
    name.lpguid = &set;
    name.ulKind = MNID_ID;
    name.Kind.lID = id;
    return FindTagOfName(object, name, tag);
}

ULONG GetNamedPropertyTag(IMAPIProp* object, ULONG propertySet, LONG id) {
    ULONG tag = 0;
    FindNamedPropertyTag(object, propertySet, id, tag);
    return tag;
}

ULONG GetNamedPropertyTag(IMAPIProp* object, ULONG propertySet, const wchar_t* text) {
    GUID set = PropertySet(propertySet);
    MAPINAMEID name{};
    name.lpguid = &set;
    name.ulKind = MNID_STRING;
    name.Kind.lpwstrName = const_cast<LPWSTR>(text);
    ULONG tag = 0;
    FindTagOfName(object, name, tag);
    return tag;
}

MapiBuffer<SPropValue> GetProperty(IMAPIProp* object, ULONG tag, ULONG flags) {
    SizedSPropTagArray(1, tags) = {1, {tag}};
    ULONG count = 0;
    MapiBuffer<SPropValue> value;
    const HRESULT result =
        object->GetProps(reinterpret_cast<LPSPropTagArray>(&tags), flags, &count, value.Put());
    if (result != S_OK || count == 0) {
        value.Reset();
    }
    return value;
}

int GetNamedStringProperty(IMessage* message, ULONG propertySet, LONG id, CString& text) {
    text.clear();
    const ULONG tag = GetNamedPropertyTag(message, propertySet, id);
    if (tag == 0) {
        return 0;
    }
    const MapiBuffer<SPropValue> value = GetProperty(message, tag);
    if (!value || PROP_TYPE(value->ulPropTag) != PT_UNICODE || value->Value.lpszW == nullptr) {
        return 0;
    }
    text = CString(value->Value.lpszW);
    return 1;
}

int ReadLongTextProperty(IMessage* message, ULONG tag, CString& text) {
    text.clear();
    if (message == nullptr) {
        return 0;
    }
    ComPtr<IStream> stream;
    const HRESULT result =
        message->OpenProperty(tag, &IID_IStream, 0, 0, reinterpret_cast<LPUNKNOWN*>(stream.GetAddressOf()));
    if (result != S_OK || !stream) {
        return 0;
    }
    ReadText(stream.Get(), text);
    if (text == L"\r\n" || text == L"\n") {
        text.clear();
    }
    return 1;
}
