// The digest of any bytes: a second reading of FIPS 180-4 makes the same. Its constants are worked out as the
// standard defines them, and the message is read bit by bit.

#include <array>
#include <vector>

#include "localstore/sha256.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

/// Of the root of a number, the first 32 bits behind the point (FIPS 180-4, sections 4.2.2 and 5.3.3): the
/// greatest x with x^degree <= number * 2^(32 * degree).
std::uint32_t RootBits(unsigned number, unsigned degree) {
    using Wide = unsigned __int128;
    std::uint64_t root = 0;
    for (std::uint64_t bit = std::uint64_t{1} << 37U; bit != 0; bit >>= 1U) {
        const std::uint64_t next = root | bit;
        Wide power = 1;
        for (unsigned i = 0; i < degree; ++i) {
            power *= next;
        }
        if (power <= Wide{number} << (32 * degree)) {
            root = next;
        }
    }
    return static_cast<std::uint32_t>(root & 0xFFFFFFFFU);
}

std::vector<unsigned> FirstPrimes(std::size_t count) {
    std::vector<unsigned> primes;
    for (unsigned number = 2; primes.size() < count; ++number) {
        bool isPrime = true;
        for (const unsigned prime : primes) {
            isPrime = isPrime && number % prime != 0;
        }
        if (isPrime) {
            primes.push_back(number);
        }
    }
    return primes;
}

std::vector<std::uint32_t> Roots(std::size_t count, unsigned degree) {
    std::vector<std::uint32_t> roots;
    for (const unsigned prime : FirstPrimes(count)) {
        roots.push_back(RootBits(prime, degree));
    }
    return roots;
}

std::uint32_t Turned(std::uint32_t word, unsigned bits) {
    return word >> bits | word << (32 - bits);
}

/// The bits of the message, one set bit, zeros, and the message's length in 64 bits.
std::vector<bool> PaddedBits(const localstore::Bytes& message) {
    std::vector<bool> bits;
    for (const std::uint8_t byte : message) {
        for (unsigned place = 8; place-- != 0;) {
            bits.push_back((byte >> place & 1U) != 0);
        }
    }
    const std::uint64_t length = bits.size();
    bits.push_back(true);
    while (bits.size() % 512 != 448) {
        bits.push_back(false);
    }
    for (unsigned place = 64; place-- != 0;) {
        bits.push_back((length >> place & 1U) != 0);
    }
    return bits;
}

void TakeBlock(std::vector<std::uint32_t>& hash, std::vector<std::uint32_t> w) {
    static const std::vector<std::uint32_t> constants = Roots(64, 3);
    std::vector<std::uint32_t> v = hash;
    for (std::size_t t = 0; t < 64; ++t) {
        if (t >= 16) {
            const std::uint32_t x = w[t - 2];
            const std::uint32_t y = w[t - 15];
            w.push_back((Turned(x, 17) ^ Turned(x, 19) ^ x >> 10U) + w[t - 7] +
                        (Turned(y, 7) ^ Turned(y, 18) ^ y >> 3U) + w[t - 16]);
        }
        const std::uint32_t choice = (v[4] & v[5]) | (~v[4] & v[6]);
        const std::uint32_t majority = (v[0] & v[1]) | (v[0] & v[2]) | (v[1] & v[2]);
        const std::uint32_t first =
            v[7] + (Turned(v[4], 6) ^ Turned(v[4], 11) ^ Turned(v[4], 25)) + choice + constants[t] + w[t];
        const std::uint32_t second = (Turned(v[0], 2) ^ Turned(v[0], 13) ^ Turned(v[0], 22)) + majority;
        v.pop_back();
        v.insert(v.begin(), first + second);
        v[4] += first;
    }
    for (std::size_t i = 0; i < hash.size(); ++i) {
        hash[i] += v[i];
    }
}

std::array<std::uint8_t, 32> PlainDigest(const localstore::Bytes& message) {
    static const std::vector<std::uint32_t> start = Roots(8, 2);
    std::vector<std::uint32_t> hash = start;
    const std::vector<bool> bits = PaddedBits(message);
    for (std::size_t block = 0; block < bits.size(); block += 512) {
        std::vector<std::uint32_t> words(16);
        for (std::size_t i = 0; i < 512; ++i) {
            words[i / 32] = words[i / 32] << 1U | (bits[block + i] ? 1U : 0U);
        }
        TakeBlock(hash, words);
    }
    std::array<std::uint8_t, 32> digest{};
    for (std::size_t i = 0; i < digest.size(); ++i) {
        digest[i] = static_cast<std::uint8_t>(hash[i / 4] >> (24 - 8 * (i % 4)) & 0xFFU);
    }
    return digest;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const localstore::Bytes message(data, data + size);
    Require(localstore::Sha256(message) == PlainDigest(message));
    return 0;
}
