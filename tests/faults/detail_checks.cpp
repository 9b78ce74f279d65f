#include "tests/faults/detail_checks.h"

#include <algorithm>
#include <span>

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

void ExpectOldOrNew(IMessage* message, ULONG tag, const CString& old, const std::vector<CString>& fresh,
                    const Outcome& outcome) {
    const CString shown = ShownProperty(message, tag);
    const bool isNew = outcome.complete ? shown == fresh.front() : std::ranges::count(fresh, shown) != 0;
    EXPECT_TRUE(isNew || (!outcome.complete && shown == old))
        << std::hex << tag << ": " << testing::PrintToString(shown) << ", was " << testing::PrintToString(old)
        << ", to be " << testing::PrintToString(fresh.front());
}
