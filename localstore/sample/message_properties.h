#pragma once

#include <deque>
#include <string>
#include <vector>

#include "support/owners.h"

namespace sample {

/// Properties that are collected and then set at once. Texts and bytes are copied.
class MessageProperties {
  public:
    void Text(ULONG tag, const std::wstring& text);
    /// Several texts in one property.
    void Texts(ULONG tag, const std::vector<std::wstring>& texts);
    void Number(ULONG tag, LONG number);
    void Numbers(ULONG tag, const std::vector<LONG>& numbers);
    void Flag(ULONG tag, bool flag);
    void Time(ULONG tag, const FILETIME& time);
    void Bytes(ULONG tag, const std::vector<BYTE>& bytes);

    void SetOn(IMAPIProp* object);

  private:
    SPropValue& Add(ULONG tag);
    wchar_t* Keep(const std::wstring& text);

    std::vector<SPropValue> m_values;
    // Deques, because what they hold must stay where it is.
    std::deque<std::wstring> m_texts;
    std::deque<std::vector<wchar_t*>> m_textLists;
    std::deque<std::vector<LONG>> m_numberLists;
    std::deque<std::vector<BYTE>> m_bytes;
};

/// Writes bytes into a property through a stream, as a value of any length has to be.
void WriteStream(IMAPIProp* object, ULONG tag, const void* bytes, std::size_t count);

}  // namespace sample
