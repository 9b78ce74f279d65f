// Structured storage files of any content: the look over them ends, and in a time that their length bounds.

#include "fuzz_input.h"
#include "localstore/compound_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    localstore::Bytes file(data, data + size);
    // Most inputs would end at the header, so the parts of it that never vary are put there.
    const std::uint8_t signature[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
    constexpr std::size_t fixedBegin = 24;
    const std::uint8_t fixed[] = {0x3E, 0, 3, 0, 0xFE, 0xFF, 9, 0, 6, 0};
    if (size > fixedBegin + sizeof(fixed)) {
        std::copy(std::begin(signature), std::end(signature), file.begin());
        std::copy(std::begin(fixed), std::end(fixed), file.begin() + fixedBegin);
    }
    const char* damage = localstore::DamageOfCompoundFile(file);
    // The look has no memory: it says the same again.
    Require(damage == localstore::DamageOfCompoundFile(file));
    return 0;
}
