// write_narrow_contact FILE CODEPAGE BYTES: writes a contact with 8-bit texts, whose surname is given by its
// bytes in hexadecimal. Nothing of the local store has a part in it.

#include <windows.h>

#include <cwchar>
#include <exception>
#include <iostream>
#include <string>

#include "tests/wire/contact_file.h"

namespace {

std::string BytesOf(std::wstring digits) {
    std::string bytes;
    for (; digits.size() >= 2; digits.erase(0, 2)) {
        bytes += static_cast<char>(std::stoul(digits.substr(0, 2), nullptr, 16));
    }
    return bytes;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    if (count != 4) {
        std::cerr << "write_narrow_contact FILE CODEPAGE BYTES\n";
        return 2;
    }
    try {
        WriteNarrowContactFile(arguments[1], BytesOf(arguments[3]), std::stoul(arguments[2]));
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << "write_narrow_contact: " << failure.what() << '\n';
        return 1;
    }
}
