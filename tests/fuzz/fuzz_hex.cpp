// Hexadecimal texts: reading never fails, half the characters become bytes, and what was written is read
// back.

#include <cstdlib>
#include <cstring>

#include "mapi/hex_text.h"

namespace {

void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CString text;
    text.resize(size / sizeof(wide));
    if (!text.empty()) {
        std::memcpy(text.data(), data, text.size() * sizeof(wide));
    }
    Require(HexStringToBinary(text).size() == text.size() / 2);

    const CString written = BinaryToHexString(data, size);
    const std::vector<std::uint8_t> bytes(data, data + size);
    Require(written.size() == size * 2);
    Require(HexStringToBinary(written) == bytes);
    return 0;
}
