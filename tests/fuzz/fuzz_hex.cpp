// Hexadecimal texts: reading never fails, half the characters become bytes, and what was written is read
// back.

#include "mapi/hex_text.h"
#include "tests/fuzz/fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const CString text = TextOf(data, size);
    Require(HexStringToBinary(text).size() == text.size() / 2);

    const CString written = BinaryToHexString(data, size);
    const std::vector<std::uint8_t> bytes(data, data + size);
    Require(written.size() == size * 2);
    Require(HexStringToBinary(written) == bytes);
    return 0;
}
