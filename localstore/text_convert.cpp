#include "localstore/text_convert.h"

#include "localstore/failure.h"

namespace localstore {

UINT UsableCodePage(UINT codePage) {
    // 1200 and 1201 are Unicode itself and no code pages of 8-bit text.
    const bool isUnicode = codePage == 1200 || codePage == 1201;
    return codePage != 0 && !isUnicode && IsValidCodePage(codePage) != FALSE ? codePage : CP_ACP;
}

Text DecodeText(const Bytes& bytes, UINT codePage) {
    if (bytes.empty()) {
        return {};
    }
    Require(bytes.size() <= MAXLONG, MAPI_E_NOT_ENOUGH_MEMORY);
    const auto* source = reinterpret_cast<const char*>(bytes.data());
    const int size = static_cast<int>(bytes.size());
    const int needed = MultiByteToWideChar(codePage, 0, source, size, nullptr, 0);
    Text text(static_cast<std::size_t>(needed), L'\0');
    MultiByteToWideChar(codePage, 0, source, size, text.data(), needed);
    return text;
}

Bytes EncodeText(std::wstring_view text, UINT codePage) {
    if (text.empty()) {
        return {};
    }
    Require(text.size() <= MAXLONG, MAPI_E_NOT_ENOUGH_MEMORY);
    const int size = static_cast<int>(text.size());
    const int needed = WideCharToMultiByte(codePage, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    Bytes bytes(static_cast<std::size_t>(needed));
    WideCharToMultiByte(codePage, 0, text.data(), size, reinterpret_cast<char*>(bytes.data()), needed,
                        nullptr, nullptr);
    return bytes;
}

Text TextOf(const Property& property, UINT codePage) {
    return property.Type() == kTypeString8 ? DecodeText(property.Data(), codePage)
                                           : TextOfBytes(property.Data());
}

}  // namespace localstore
