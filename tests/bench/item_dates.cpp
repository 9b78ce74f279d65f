#include "item_dates.h"

#include <cstdio>
#include <stdexcept>

#include "timezone/conversions.h"

namespace bench {

namespace {

constexpr const wchar_t* kMoment = L"%m/%d/%Y %H:%M:%S";
constexpr const wchar_t* kDay = L"%Y-%m-%d";

struct DateElement {
    std::wstring_view name;
    const wchar_t* format;
};
// The end of a series is not among them: it is local as it stands in the store.
constexpr DateElement kDateElements[] = {{L"CreateTime", kMoment},  {L"lastModifiedTime", kMoment},
                                         {L"dtStartTime", kMoment}, {L"dtEndTime", kMoment},
                                         {L"Birthday", kDay},       {L"Anniversary", kDay}};

FILETIME StoredTime(const std::wstring& text, const wchar_t* format) {
    unsigned short year = 0;
    unsigned short month = 0;
    unsigned short day = 0;
    unsigned short hour = 0;
    unsigned short minute = 0;
    unsigned short second = 0;
    const bool isWhole = format == kMoment
                             ? std::swscanf(text.c_str(), L"%hu/%hu/%hu %hu:%hu:%hu", &month, &day, &year,
                                            &hour, &minute, &second) == 6
                             : std::swscanf(text.c_str(), L"%hu-%hu-%hu", &year, &month, &day) == 3;
    if (!isWhole) {
        throw std::runtime_error("a date of a document is none");
    }
    COleDateTime local;
    local.SetDateTime(year, month, day, hour, minute, second);
    return LocalDateTimeToFileTime(local);
}

}  // namespace

std::wstring TextOf(const ItemDate& date) {
    COleDateTime local;
    FileTimeToLocalDateTime(date.utc, local);
    return local.Format(date.format).c_str();
}

std::vector<ItemDate> DatesOf(const DocumentParts& parts) {
    std::vector<ItemDate> dates;
    for (const ElementPart& part : parts.elements) {
        for (const DateElement& element : kDateElements) {
            if (part.name != element.name || part.text.empty()) {
                continue;
            }
            dates.push_back({StoredTime(part.text, element.format), element.name, element.format});
            if (TextOf(dates.back()) != part.text) {
                throw std::runtime_error("a date that was converted again is another one");
            }
        }
    }
    return dates;
}

}  // namespace bench
