// Reads many damaged recurrence properties and prints what all reads gave as one number, which must be the
// same in every build: damaged_blobs COUNT [SEED].

#include <cstdio>
#include <cstdlib>

#include "tests/unit/calendar/damaged_blobs.h"
#include "tests/unit/calendar/recurrence_digest.h"

int main(int argc, char** argv) {
    if (argc < 2) {
        (void)std::fputs("usage: damaged_blobs COUNT [SEED]\n", stderr);
        return 2;
    }
    const unsigned long long count = std::strtoull(argv[1], nullptr, 10);
    DamagedBlobs blobs(argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1);
    std::uint64_t digest = 0;
    for (unsigned long long i = 0; i < count; ++i) {
        digest = JoinedDigest(digest, ReadExactly(blobs.Next()));
    }
    std::printf("%08lX%08lX\n", static_cast<unsigned long>(digest >> 32),
                static_cast<unsigned long>(digest & 0xFFFFFFFF));
    return 0;
}
