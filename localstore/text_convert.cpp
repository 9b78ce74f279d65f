#include "localstore/text_convert.h"

#include <array>
#include <atomic>

#include "localstore/failure.h"

namespace localstore {

namespace {

/// Whether the platform knows a code page. The platform searches its folders for each question, and a store
/// asks it for every property.
bool IsKnownCodePage(UINT codePage) {
    enum Answer : char { kNotAsked, kKnown, kUnknown };
    static std::array<std::atomic<char>, 65536> answers{};  // by code page, shared by all threads
    if (codePage >= answers.size()) {
        return false;
    }
    std::atomic<char>& answer = answers[codePage];
    if (answer == kNotAsked) {
        answer = IsValidCodePage(codePage) != FALSE ? kKnown : kUnknown;
    }
    return answer == kKnown;
}

}  // namespace

UINT UsableCodePage(UINT codePage) {
    // 1200 and 1201 are Unicode itself and no code pages of 8-bit text.
    const bool isUnicode = codePage == 1200 || codePage == 1201;
    return codePage != 0 && !isUnicode && IsKnownCodePage(codePage) ? codePage : CP_ACP;
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
