// Structured storage files of both versions of the format, and such as are large in one respect: many sectors
// of the allocation table, or a long directory.

#include <gtest/gtest.h>

#include <algorithm>

#include "localstore/compound_file.h"
#include "localstore/little_endian.h"

using namespace localstore;

namespace {

constexpr std::uint32_t kEnd = 0xFFFFFFFE;
constexpr std::uint32_t kFree = 0xFFFFFFFF;
constexpr std::uint32_t kHeaderDifat = 109;
// Bytes of an entry of the directory and of a number of an allocation table.
constexpr std::size_t kEntrySize = 128;
constexpr std::size_t kNumberSize = 4;

/// A root with one small stream and as many empty streams as the directory has room for, each to the right of
/// the one before it. The sectors are, in this order: the allocation table, the one that lists the rest of
/// its sectors, the directory, the small allocation table and the small stream.
class File {
  public:
    File(std::uint16_t version, std::uint32_t fatSectors, std::uint32_t directorySectors)
        : m_sector(version == 3 ? 512 : 4096),
          m_fatSectors(fatSectors),
          m_directorySectors(directorySectors),
          m_bytes((fatSectors + directorySectors + 4) * m_sector) {
        WriteHeader(version);
        WriteFat();
        for (std::uint32_t entry = 0; entry < Entries(); ++entry) {
            WriteEntry(entry, entry == 0 ? 5 : 2);
        }
        Put(Entry(0) + 72, kFree);
        Put(Entry(0) + 76, 1);
        Put(Entry(0) + 116, MiniFat() + 1);
        Put(Entry(0) + 120, 64);
        Put(Entry(1) + 116, 0);
        Put(Entry(1) + 120, 64);
        Put(Entry(Entries() - 1) + 72, kFree);
    }

    [[nodiscard]] std::uint32_t Entries() const {
        return static_cast<std::uint32_t>(m_directorySectors * m_sector / kEntrySize);
    }
    [[nodiscard]] std::size_t Entry(std::uint32_t entry) const {
        return At(Directory()) + entry * kEntrySize;
    }
    File& Put(std::size_t offset, std::uint64_t value, std::size_t size = 4) {
        for (std::size_t i = 0; i < size; ++i) {
            m_bytes[offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
        }
        return *this;
    }
    [[nodiscard]] std::string Damage() const {
        const char* const damage = DamageOfCompoundFile(m_bytes);
        return damage == nullptr ? "" : damage;
    }

  private:
    [[nodiscard]] std::size_t At(std::uint32_t sector) const { return (sector + 1) * m_sector; }
    [[nodiscard]] std::uint32_t Directory() const { return m_fatSectors + 1; }
    [[nodiscard]] std::uint32_t MiniFat() const { return Directory() + m_directorySectors; }

    void WriteHeader(std::uint16_t version) {
        Put(0, 0xE11AB1A1E011CFD0, 8);
        Put(26, version, 2).Put(30, version == 3 ? 9 : 12, 2).Put(32, 6, 2).Put(44, m_fatSectors);
        Put(48, Directory()).Put(56, 4096).Put(60, MiniFat()).Put(68, m_fatSectors);
        for (std::uint32_t i = 0; i < kHeaderDifat; ++i) {
            Put(76 + i * kNumberSize, i < m_fatSectors ? i : kFree);
        }
        for (std::uint32_t i = kHeaderDifat; i < m_fatSectors; ++i) {
            Put(At(m_fatSectors) + (i - kHeaderDifat) * kNumberSize, i);
        }
    }

    void WriteFat() {
        std::fill_n(m_bytes.begin() + static_cast<std::ptrdiff_t>(m_sector), m_fatSectors * m_sector, 0xFF);
        for (std::uint32_t i = 0; i < m_directorySectors; ++i) {
            PutFat(Directory() + i, i + 1 == m_directorySectors ? kEnd : Directory() + i + 1);
        }
        PutFat(MiniFat(), kEnd);
        PutFat(MiniFat() + 1, kEnd);
        Put(At(MiniFat()), kEnd);
    }
    void PutFat(std::uint32_t sector, std::uint32_t next) { Put(m_sector + sector * kNumberSize, next); }

    void WriteEntry(std::uint32_t entry, std::uint8_t type) {
        Put(Entry(entry) + 66, type, 1).Put(Entry(entry) + 68, kFree).Put(Entry(entry) + 72, entry + 1);
        Put(Entry(entry) + 76, kFree).Put(Entry(entry) + 116, kEnd);
    }

    std::size_t m_sector;
    std::uint32_t m_fatSectors;
    std::uint32_t m_directorySectors;
    Bytes m_bytes;
};

}  // namespace

TEST(CompoundFileSizes, BothVersionsAreRead) {
    EXPECT_EQ(File(3, 1, 1).Damage(), "");
    EXPECT_EQ(File(4, 1, 1).Damage(), "");
}

TEST(CompoundFileSizes, AVersionHasSectorsOfOneSize) {
    EXPECT_EQ(File(3, 1, 1).Put(30, 12, 2).Damage(), "it is no structured storage file");
    EXPECT_EQ(File(4, 1, 1).Put(30, 9, 2).Damage(), "it is no structured storage file");
    EXPECT_EQ(File(4, 1, 1).Put(26, 5, 2).Damage(), "it is no structured storage file");
}

TEST(CompoundFileSizes, TheUpperHalfOfASizeCountsInTheLaterVersionOnly) {
    File earlier(3, 1, 1);
    EXPECT_EQ(earlier.Put(earlier.Entry(1) + 124, 1).Damage(), "");
    File later(4, 1, 1);
    EXPECT_EQ(later.Put(later.Entry(1) + 124, 1).Damage(), "its streams are damaged");
}

TEST(CompoundFileSizes, TheAllocationTableMayBeLongerThanTheHeaderTells) {
    EXPECT_EQ(File(3, 109, 1).Damage(), "");
    EXPECT_EQ(File(3, 110, 1).Damage(), "");
    EXPECT_EQ(File(3, 150, 1).Damage(), "");
    // The rest of the list leads nowhere.
    EXPECT_EQ(File(3, 110, 1).Put(68, kEnd).Damage(), "its allocation table is damaged");
}

TEST(CompoundFileSizes, ADirectoryThatIsAListIsReadUpToALength) {
    // As many steps as 1 + 2 + ... + n, n being the entries behind the root: 3,963,520 and 4,054,128.
    ASSERT_EQ(File(4, 1, 88).Entries(), 2816U);
    ASSERT_EQ(File(4, 1, 89).Entries(), 2848U);
    EXPECT_EQ(File(4, 1, 88).Damage(), "");
    EXPECT_EQ(File(4, 1, 89).Damage(), "its directory is damaged");
}

TEST(CompoundFileSizes, ADirectoryMustBeThere) {
    EXPECT_EQ(File(3, 1, 1).Put(48, kFree).Damage(), "its directory is damaged");
}

TEST(CompoundFileSizes, SmallStreamsShareNoSector) {
    File file(3, 1, 1);
    file.Put(file.Entry(2) + 116, 0).Put(file.Entry(2) + 120, 64);
    EXPECT_EQ(file.Damage(), "its streams are damaged");
}

TEST(CompoundFileSizes, ASmallStreamBeginsInTheSmallAllocationTableAndInTheSmallStream) {
    for (const std::uint32_t start : {128U, 8U}) {
        File file(3, 1, 1);
        EXPECT_EQ(file.Put(file.Entry(1) + 116, start).Damage(), "its streams are damaged") << start;
    }
}

TEST(CompoundFileSizes, AnEmptyStreamMayBeginAnywhere) {
    File file(3, 1, 1);
    EXPECT_EQ(file.Put(file.Entry(2) + 116, 12345).Damage(), "");
}
