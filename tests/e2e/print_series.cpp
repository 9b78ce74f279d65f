// Prints the recurrence properties that documents of appointments lead to: print_series FILE, where each line
// of the file is a document in ASCII. Each line of the output is a property in hexadecimal digits.

#include <fstream>
#include <iomanip>
#include <iostream>
#include <string>

#include "calendar/calendar_xml_input.h"
#include "calendar/recurrence_blob.h"
#include "calendar/recurrence_building.h"

namespace {

/// Prints the property of one document; false if it could not be made.
bool Print(const std::string& document) {
    CCalendarEx calendar;
    ParseCalendarXml(CString(WideString(document.begin(), document.end())), calendar);
    NAMESPACE_MAPI::tagRecurrencePattern pattern;
    BuildRecurrencePattern(pattern, calendar);
    std::unique_ptr<std::uint8_t[]> bytes;
    std::uint32_t size = 0;
    if (WriteRecurrenceBlob(pattern, &bytes, size) != 1) {
        return false;
    }
    for (std::uint32_t i = 0; i < size; ++i) {
        std::cout << std::hex << std::setw(2) << std::setfill('0') << unsigned{bytes[i]};
    }
    std::cout << '\n';
    return true;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    if (count != 2) {
        std::cerr << "print_series FILE\n";
        return 2;
    }
    std::ifstream file(arguments[1]);
    std::string document;
    bool printed = file.is_open();
    while (printed && std::getline(file, document)) {
        printed = Print(document);
    }
    return printed ? 0 : 1;
}
