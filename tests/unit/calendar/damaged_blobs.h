#pragma once

// Damaged recurrence properties without end, the same ones in every build.

#include <iterator>
#include <random>

#include "tests/unit/calendar/sample_blobs.h"

class DamagedBlobs {
  public:
    explicit DamagedBlobs(std::uint64_t seed) : m_random(seed) {}

    /// The next one: a sample with some changes, each of a byte, of a number, of the length, or by a piece
    /// of another sample.
    std::vector<std::uint8_t> Next() {
        std::vector<std::uint8_t> bytes = AnySample();
        for (std::size_t changes = 1 + Below(8); changes > 0; --changes) {
            Change(bytes);
        }
        return bytes;
    }

  private:
    // The distributions of the standard library differ from one to the next, its engines do not.
    std::size_t Below(std::size_t count) { return static_cast<std::size_t>(m_random() % count); }

    const std::vector<std::uint8_t>& AnySample() { return m_samples[Below(m_samples.size())]; }

    void Change(std::vector<std::uint8_t>& bytes) {
        const std::size_t place = Below(bytes.size() + 1);
        const auto from = bytes.begin() + static_cast<std::ptrdiff_t>(place);
        const auto some =
            static_cast<std::ptrdiff_t>(Below(std::min<std::size_t>(64, bytes.size() - place) + 1));
        switch (Below(6)) {
            case 0:
                PutNumber(bytes, place, static_cast<std::uint32_t>(m_random()), 1);
                break;
            case 1:
                PutNumber(bytes, place, TellingNumber(), 2);
                break;
            case 2:
                PutNumber(bytes, place, TellingNumber(), 4);
                break;
            case 3:
                bytes.resize(place);
                break;
            case 4:
                bytes.erase(from, from + some);
                break;
            default:
                InsertPiece(bytes, place);
                break;
        }
    }

    static void PutNumber(std::vector<std::uint8_t>& bytes, std::size_t place, std::uint32_t number,
                          std::size_t size) {
        for (std::size_t i = 0; i < size && place + i < bytes.size(); ++i) {
            bytes[place + i] = static_cast<std::uint8_t>(number >> 8 * i & 0xFFU);
        }
    }

    /// A small number, one at which a reader decides, or a size that leads a little backwards.
    std::uint32_t TellingNumber() {
        constexpr std::uint32_t kNumbers[] = {
            0,        1,        2,      4,      11,         12,         0x11,       0x1FF,     0x1000,
            0x1001,   0x2023,   0x3008, 0x3009, 0x7FFF,     0xFFFF,     0x200A,     0x200C,    0x200D,
            0x100000, 0x100001, 1440,   0x40,   0x40000001, 0x7FFFFFFF, 0xFFFFFFFF, 0xFFFFFFFC};
        const auto small = static_cast<std::uint32_t>(Below(300));
        switch (Below(4)) {
            case 0:
                return kNumbers[Below(std::size(kNumbers))];
            case 1:
                return 0U - small;
            default:
                return small;
        }
    }

    void InsertPiece(std::vector<std::uint8_t>& bytes, std::size_t place) {
        const std::vector<std::uint8_t>& other = AnySample();
        const std::size_t begin = Below(other.size());
        const std::size_t count = Below(std::min<std::size_t>(64, other.size() - begin) + 1);
        const auto piece = other.begin() + static_cast<std::ptrdiff_t>(begin);
        bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(place), piece,
                     piece + static_cast<std::ptrdiff_t>(count));
    }

    std::mt19937_64 m_random;
    std::vector<std::vector<std::uint8_t>> m_samples = SampleBlobs();
};
