#include "tests/faults/detail_checks.h"

#include <algorithm>
#include <cstdio>
#include <span>
#include <utility>

// Behind the base headers.
#include <mapitags.h>

#include "mapi/hex_text.h"
#include "mapi/named_properties.h"
#include "tests/unit/text_printer.h"

namespace {

CString TextOf(const FILETIME& time) {
    SYSTEMTIME utc{};
    EXPECT_TRUE(FileTimeToSystemTime(&time, &utc));
    return TimeText(utc);
}

CString TextOf(const SWStringArray& texts) {
    CString joined;
    for (const wchar_t* const text : std::span(texts.lppszW, texts.cValues)) {
        joined += joined.empty() ? CString(text) : CString(L";") + text;
    }
    return joined;
}

/// A number as the recorded calls show it.
std::string Word(const char* format, ULONG number) {
    char word[16]{};
    (void)std::snprintf(word, sizeof(word), format, static_cast<unsigned>(number));
    return word;
}

}  // namespace

CString TimeText(const SYSTEMTIME& utc) {
    return CString::Format(L"%04d-%02d-%02d %02d:%02d:%02d.%03d", utc.wYear, utc.wMonth, utc.wDay, utc.wHour,
                           utc.wMinute, utc.wSecond, utc.wMilliseconds);
}

CString TimeTextOfLocal(const SYSTEMTIME& local) {
    SYSTEMTIME utc{};
    EXPECT_TRUE(TzSpecificLocalTimeToSystemTime(nullptr, &local, &utc));
    return TimeText(utc);
}

CString ShownProperty(IMessage* message, ULONG tag) {
    const MapiBuffer<SPropValue> value = GetProperty(message, tag);
    if (!value || value->ulPropTag != tag) {
        return kNoValue;
    }
    switch (PROP_TYPE(tag)) {
        case PT_LONG:
            return CString::Format(L"%d", value->Value.l);
        case PT_BOOLEAN:
            return CString::Format(L"%d", value->Value.b);
        case PT_UNICODE:
            return value->Value.lpszW;
        case PT_MV_UNICODE:
            return TextOf(value->Value.MVszW);
        case PT_BINARY:
            return BinaryToHexString(value->Value.bin.lpb, value->Value.bin.cb);
        case PT_SYSTIME:
            return TextOf(value->Value.ft);
        default:
            ADD_FAILURE() << "no text for the type of " << std::hex << tag;
            return {};
    }
}

WrittenProperties::WrittenProperties(IMessage* message, bool wasAdded, bool isDocumentWhole,
                                     const Outcome& outcome)
    : m_message(message),
      m_wasAdded(wasAdded),
      m_outcome(&outcome),
      m_mayMemoryLeaveOne(outcome.memoryFailed && isDocumentWhole) {}

bool WrittenProperties::MayBeLeft(const std::vector<std::string>& words) {
    if (m_outcome->complete || m_outcome->forever) {
        return m_outcome->forever;
    }
    if (m_outcome->storeFailed) {
        return std::ranges::any_of(words, [&](const std::string& word) {
            return m_outcome->failedCall.find(word) != std::string::npos;
        });
    }
    return std::exchange(m_mayMemoryLeaveOne, false);
}

void WrittenProperties::Expect(ULONG tag, const std::vector<std::string>& words,
                               const std::vector<CString>& left, const CString& fresh) {
    const CString shown = ShownProperty(m_message, tag);
    if (shown == fresh) {
        return;
    }
    EXPECT_TRUE(std::ranges::count(left, shown) != 0 && MayBeLeft(words))
        << std::hex << tag << ": " << testing::PrintToString(shown) << ", to be "
        << testing::PrintToString(fresh) << ", behind " << m_outcome->failedCall;
}

void WrittenProperties::Tagged(ULONG tag, const CString& old, const CString& fresh) {
    Expect(tag, {Word("0x%08X", tag)}, {Old(old)}, fresh);
}

void WrittenProperties::Named(LONG id, ULONG type, const CString& old, const CString& fresh,
                              const CString& between) {
    std::vector<CString> left{between.empty() ? Old(old) : between};
    if (m_outcome->forever) {
        left.push_back(Old(old));
    }
    Expect(FolderWriter::AppointmentTag(m_message, id, type), {Word("}:%04X", static_cast<ULONG>(id))}, left,
           fresh);
}

void WrittenProperties::OfNew(ULONG tag, const CString& old, const CString& fresh) {
    Tagged(tag, old, m_wasAdded ? fresh : old);
}

void WrittenProperties::NamedOfNew(LONG id, ULONG type, const CString& old, const CString& fresh) {
    Named(id, type, old, m_wasAdded ? fresh : old);
}

void WrittenProperties::Class(const CString& fresh) {
    Expect(PR_MESSAGE_CLASS_W, {Word("0x%08X", PR_MESSAGE_CLASS_W)},
           {m_wasAdded ? CString(L"IPM.Note") : fresh}, fresh);
}

void WrittenProperties::Categories(const CString& fresh) {
    // Their array is a buffer of its own.
    Expect(FolderWriter::KeywordsTag(m_message), {"Keywords", "MAPIAllocateBuffer"}, {kNoValue}, fresh);
}
