#include "localstore/sample/message_properties.h"

#include <mapitags.h>

#include "localstore/sample/sample_error.h"

namespace sample {

SPropValue& MessageProperties::Add(ULONG tag) {
    SPropValue& value = m_values.emplace_back();
    value.ulPropTag = tag;
    return value;
}

wchar_t* MessageProperties::Keep(const std::wstring& text) {
    return m_texts.emplace_back(text).data();
}

void MessageProperties::Text(ULONG tag, const std::wstring& text) {
    Add(tag).Value.lpszW = Keep(text);
}

void MessageProperties::Texts(ULONG tag, const std::vector<std::wstring>& texts) {
    std::vector<wchar_t*>& list = m_textLists.emplace_back();
    for (const std::wstring& text : texts) {
        list.push_back(Keep(text));
    }
    SWStringArray& array = Add(tag).Value.MVszW;
    array.cValues = static_cast<ULONG>(list.size());
    array.lppszW = list.data();
}

void MessageProperties::Number(ULONG tag, LONG number) {
    Add(tag).Value.l = number;
}

void MessageProperties::Numbers(ULONG tag, const std::vector<LONG>& numbers) {
    std::vector<LONG>& list = m_numberLists.emplace_back(numbers);
    SLongArray& array = Add(tag).Value.MVl;
    array.cValues = static_cast<ULONG>(list.size());
    array.lpl = list.data();
}

void MessageProperties::Flag(ULONG tag, bool flag) {
    Add(tag).Value.b = flag ? 1 : 0;
}

void MessageProperties::Time(ULONG tag, const FILETIME& time) {
    Add(tag).Value.ft = time;
}

void MessageProperties::Bytes(ULONG tag, const std::vector<BYTE>& bytes) {
    std::vector<BYTE>& kept = m_bytes.emplace_back(bytes);
    SBinary& binary = Add(tag).Value.bin;
    binary.cb = static_cast<ULONG>(kept.size());
    binary.lpb = kept.data();
}

void MessageProperties::SetOn(IMAPIProp* object) {
    Require(object->SetProps(static_cast<ULONG>(m_values.size()), m_values.data(), nullptr),
            L"set properties");
}

void WriteStream(IMAPIProp* object, ULONG tag, const void* bytes, std::size_t count) {
    ComPtr<IStream> stream;
    Require(object->OpenProperty(tag, &IID_IStream, 0, MAPI_CREATE | MAPI_MODIFY,
                                 reinterpret_cast<LPUNKNOWN*>(stream.GetAddressOf())),
            L"open a stream on a property");
    ULONG written = 0;
    Require(stream->Write(bytes, static_cast<ULONG>(count), &written), L"write a stream");
    Require(stream->Commit(STGC_DEFAULT), L"commit a stream");
}

}  // namespace sample
