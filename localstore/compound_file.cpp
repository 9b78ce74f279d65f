#include "localstore/compound_file.h"

#include <algorithm>
#include <array>
#include <optional>

#include "localstore/little_endian.h"

namespace localstore {

namespace {

// MS-CFB, section 2.1: sector numbers that mean something else.
constexpr std::uint32_t kLastRegularSector = 0xFFFFFFFA;
constexpr std::uint32_t kEndOfChain = 0xFFFFFFFE;

// MS-CFB, section 2.2: the header.
constexpr std::size_t kHeaderSize = 512;
constexpr std::size_t kMajorVersionAt = 26;
constexpr std::size_t kSectorShiftAt = 30;
constexpr std::size_t kMiniShiftAt = 32;
constexpr std::size_t kFatSectorsAt = 44;
constexpr std::size_t kDirectoryAt = 48;
constexpr std::size_t kMiniCutoffAt = 56;
constexpr std::size_t kMiniFatAt = 60;
constexpr std::size_t kDifatAt = 68;
constexpr std::size_t kHeaderDifatAt = 76;
constexpr std::size_t kHeaderDifatEntries = 109;
constexpr std::array<std::uint8_t, 8> kSignature = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};

// MS-CFB, section 2.6: directory entries.
constexpr std::size_t kEntrySize = 128;
constexpr std::size_t kTypeAt = 66;
constexpr std::size_t kLeftAt = 68;
constexpr std::size_t kRightAt = 72;
constexpr std::size_t kChildAt = 76;
constexpr std::size_t kStartAt = 116;
constexpr std::size_t kSizeAt = 120;
constexpr std::uint32_t kNoEntry = 0xFFFFFFFF;
constexpr std::uint8_t kTypeStorage = 1;
constexpr std::uint8_t kTypeStream = 2;
constexpr std::uint8_t kTypeRoot = 5;

constexpr std::size_t kMiniSectorSize = 64;
/// Steps from the tops of the trees down to all entries together. A tree that is a mere list costs the
/// platform the square of its length.
constexpr std::uint64_t kMostSteps = 4'000'000;

using Sectors = std::vector<std::uint32_t>;

class CompoundFile {
  public:
    explicit CompoundFile(const Bytes& file) : m_file(file) {}

    const char* Damage() {
        if (!ReadHeader()) {
            return "it is no structured storage file";
        }
        if (!ReadFat()) {
            return "its allocation table is damaged";
        }
        const std::optional<Sectors> directory = Chain(ReadU32(m_file, kDirectoryAt));
        const std::optional<Sectors> miniFat = Chain(ReadU32(m_file, kMiniFatAt));
        if (!directory || directory->empty() || !miniFat) {
            return "its directory is damaged";
        }
        m_directory = Content(*directory);
        m_miniFat = Numbers(Content(*miniFat));
        if (!CheckTrees()) {
            return "its directory is damaged";
        }
        return CheckStreams() ? nullptr : "its streams are damaged";
    }

  private:
    bool ReadHeader() {
        if (m_file.size() < kHeaderSize ||
            !std::equal(kSignature.begin(), kSignature.end(), m_file.begin())) {
            return false;
        }
        const std::uint16_t version = ReadU16(m_file, kMajorVersionAt);
        const std::uint16_t shift = ReadU16(m_file, kSectorShiftAt);
        if (!(version == 3 && shift == 9) && !(version == 4 && shift == 12)) {
            return false;
        }
        m_sectorSize = std::size_t{1} << shift;
        // A last sector may be cut short by its writer.
        const std::size_t content = m_file.size() - std::min(m_file.size(), m_sectorSize);
        m_used.assign((content + m_sectorSize - 1) / m_sectorSize, false);
        return ReadU16(m_file, kMiniShiftAt) == 6 && !m_used.empty();
    }

    /// The bytes of one sector, with zeros behind the end of the file.
    void AppendSector(std::uint32_t sector, Bytes& bytes) const {
        const std::size_t begin = (static_cast<std::size_t>(sector) + 1) * m_sectorSize;
        const std::size_t end = std::min(begin + m_sectorSize, m_file.size());
        bytes.insert(bytes.end(), m_file.begin() + static_cast<std::ptrdiff_t>(begin),
                     m_file.begin() + static_cast<std::ptrdiff_t>(end));
        bytes.resize(bytes.size() + m_sectorSize - (end - begin));
    }

    [[nodiscard]] Bytes Content(const Sectors& sectors) const {
        Bytes bytes;
        bytes.reserve(sectors.size() * m_sectorSize);
        for (const std::uint32_t sector : sectors) {
            AppendSector(sector, bytes);
        }
        return bytes;
    }

    static Sectors Numbers(const Bytes& bytes) {
        Sectors numbers(bytes.size() / 4);
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            numbers[i] = ReadU32(bytes, i * 4);
        }
        return numbers;
    }

    /// Takes a sector for one purpose. False if there is no such sector or it has one already.
    bool Use(std::uint32_t sector) {
        if (sector >= m_used.size() || m_used[sector]) {
            return false;
        }
        m_used[sector] = true;
        return true;
    }

    /// The allocation table: its sectors stand in the header and, if there are many, in a chain of sectors of
    /// their own.
    bool ReadFat() {
        std::uint32_t left = ReadU32(m_file, kFatSectorsAt);
        Sectors fatSectors;
        for (std::size_t i = 0; i < kHeaderDifatEntries && left > 0; ++i, --left) {
            fatSectors.push_back(ReadU32(m_file, kHeaderDifatAt + i * 4));
        }
        std::uint32_t next = ReadU32(m_file, kDifatAt);
        while (left > 0) {
            if (!Use(next)) {
                return false;
            }
            const Sectors numbers = Numbers(Content({next}));
            for (std::size_t i = 0; i + 1 < numbers.size() && left > 0; ++i, --left) {
                fatSectors.push_back(numbers[i]);
            }
            next = numbers.back();
        }
        if (!std::all_of(fatSectors.begin(), fatSectors.end(),
                         [this](std::uint32_t sector) { return Use(sector); })) {
            return false;
        }
        m_fat = Numbers(Content(fatSectors));
        return !m_fat.empty();
    }

    /// The sectors of a chain; nothing if it leads nowhere or into a sector that is in use.
    std::optional<Sectors> Chain(std::uint32_t start) {
        Sectors sectors;
        for (std::uint32_t sector = start; sector != kEndOfChain; sector = m_fat[sector]) {
            // Some writers begin an empty chain with the number of a free sector.
            if (sectors.empty() && sector > kLastRegularSector) {
                return sectors;
            }
            if (sector >= m_fat.size() || !Use(sector)) {
                return std::nullopt;
            }
            sectors.push_back(sector);
        }
        return sectors;
    }

    [[nodiscard]] std::size_t EntryCount() const { return m_directory.size() / kEntrySize; }
    [[nodiscard]] std::uint32_t Field(std::uint32_t entry, std::size_t offset) const {
        return ReadU32(m_directory, entry * kEntrySize + offset);
    }
    [[nodiscard]] std::uint8_t TypeOf(std::uint32_t entry) const {
        return m_directory[entry * kEntrySize + kTypeAt];
    }

    /// Walks the trees of all storages from the root on. Every entry may be met once.
    bool CheckTrees() {
        struct Step {
            std::uint32_t entry;
            std::uint32_t depth;
        };
        if (TypeOf(0) != kTypeRoot) {
            return false;
        }
        m_met.assign(EntryCount(), false);
        m_met[0] = true;
        std::uint64_t steps = 0;
        std::vector<Step> open = {{Field(0, kChildAt), 1}};
        while (!open.empty()) {
            const auto [entry, depth] = open.back();
            open.pop_back();
            if (entry == kNoEntry) {
                continue;
            }
            steps += depth;
            if (entry >= m_met.size() || m_met[entry] || steps > kMostSteps) {
                return false;
            }
            m_met[entry] = true;
            open.push_back({Field(entry, kLeftAt), depth + 1});
            open.push_back({Field(entry, kRightAt), depth + 1});
            if (TypeOf(entry) == kTypeStorage) {
                open.push_back({Field(entry, kChildAt), 1});
            } else if (TypeOf(entry) != kTypeStream) {
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] std::uint64_t SizeOf(std::uint32_t entry) const {
        const std::uint64_t size = Field(entry, kSizeAt);
        // In files of version 3 only the lower half counts.
        return m_sectorSize == kHeaderSize
                   ? size
                   : size | static_cast<std::uint64_t>(Field(entry, kSizeAt + 4)) << 32U;
    }

    /// Every stream has as many sectors as it is long.
    bool CheckStreams() {
        const std::uint64_t cutoff = ReadU32(m_file, kMiniCutoffAt);
        const std::optional<Sectors> miniStream = Chain(Field(0, kStartAt));
        if (!miniStream || miniStream->size() * m_sectorSize < SizeOf(0)) {
            return false;
        }
        m_miniUsed.assign(miniStream->size() * m_sectorSize / kMiniSectorSize, false);
        for (std::uint32_t entry = 1; entry < EntryCount(); ++entry) {
            const std::uint64_t size = SizeOf(entry);
            if (!m_met[entry] || TypeOf(entry) != kTypeStream || size == 0) {
                continue;
            }
            const bool fits = size < cutoff ? CheckMiniChain(Field(entry, kStartAt), size)
                                            : CheckChain(Field(entry, kStartAt), size);
            if (!fits) {
                return false;
            }
        }
        return true;
    }

    bool CheckChain(std::uint32_t start, std::uint64_t size) {
        const std::optional<Sectors> sectors = Chain(start);
        return sectors && sectors->size() >= (size - 1) / m_sectorSize + 1;
    }

    bool CheckMiniChain(std::uint32_t start, std::uint64_t size) {
        std::uint64_t count = 0;
        for (std::uint32_t sector = start; sector != kEndOfChain; sector = m_miniFat[sector]) {
            if (sector >= m_miniFat.size() || sector >= m_miniUsed.size() || m_miniUsed[sector]) {
                return false;
            }
            m_miniUsed[sector] = true;
            ++count;
        }
        return count >= (size - 1) / kMiniSectorSize + 1;
    }

    const Bytes& m_file;
    std::size_t m_sectorSize = 0;
    Sectors m_fat;
    Sectors m_miniFat;
    Bytes m_directory;
    std::vector<bool> m_used;
    std::vector<bool> m_miniUsed;
    std::vector<bool> m_met;
};

}  // namespace

const char* DamageOfCompoundFile(const Bytes& file) {
    return CompoundFile(file).Damage();
}

}  // namespace localstore
