#include "localstore/compound_file.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "localstore/little_endian.h"

using namespace localstore;

namespace {

constexpr std::uint32_t kEnd = 0xFFFFFFFE;
constexpr std::uint32_t kFree = 0xFFFFFFFF;
constexpr std::size_t kSector = 512;
// Bytes of an entry of the directory and of a number of an allocation table.
constexpr std::size_t kEntrySize = 128;
constexpr std::size_t kNumberSize = 4;

// The sectors of the file that MakeFile makes.
constexpr std::uint32_t kFat = 0;
constexpr std::uint32_t kDirectory = 1;
constexpr std::uint32_t kMiniFat = 2;
constexpr std::uint32_t kMiniStream = 3;
constexpr std::uint32_t kLarge = 4;
constexpr std::uint32_t kLargeSectors = 9;

std::size_t At(std::uint32_t sector) {
    return (sector + 1) * kSector;
}

void Put(Bytes& file, std::size_t offset, std::uint64_t value, std::size_t size = 4) {
    for (std::size_t i = 0; i < size; ++i) {
        file[offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
    }
}

void PutFat(Bytes& file, std::uint32_t sector, std::uint32_t next) {
    Put(file, At(kFat) + sector * kNumberSize, next);
}

std::size_t EntryAt(std::uint32_t entry) {
    return At(kDirectory) + entry * kEntrySize;
}

void PutEntry(Bytes& file, std::uint32_t entry, std::uint8_t type, std::uint32_t start, std::uint32_t size) {
    file[EntryAt(entry) + 66] = type;
    Put(file, EntryAt(entry) + 68, kFree);
    Put(file, EntryAt(entry) + 72, kFree);
    Put(file, EntryAt(entry) + 76, kFree);
    Put(file, EntryAt(entry) + 116, start);
    Put(file, EntryAt(entry) + 120, size);
}

/// A root with a large stream, a small stream and a storage.
Bytes MakeFile() {
    Bytes file(At(kLarge + kLargeSectors));
    const std::uint8_t signature[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
    std::copy(std::begin(signature), std::end(signature), file.begin());
    Put(file, 26, 3, 2);
    Put(file, 30, 9, 2);
    Put(file, 32, 6, 2);
    Put(file, 44, 1);
    Put(file, 48, kDirectory);
    Put(file, 56, 4096);
    Put(file, 60, kMiniFat);
    Put(file, 68, kEnd);
    Put(file, 76, kFat);

    for (std::uint32_t sector = 0; sector < kSector / 4; ++sector) {
        PutFat(file, sector, kFree);
        Put(file, At(kMiniFat) + sector * kNumberSize, kFree);
    }
    for (const std::uint32_t single : {kDirectory, kMiniFat, kMiniStream}) {
        PutFat(file, single, kEnd);
    }
    PutFat(file, kFat, 0xFFFFFFFD);
    for (std::uint32_t i = 0; i < kLargeSectors; ++i) {
        PutFat(file, kLarge + i, i + 1 == kLargeSectors ? kEnd : kLarge + i + 1);
    }
    Put(file, At(kMiniFat), 1);
    Put(file, At(kMiniFat) + 4, kEnd);

    PutEntry(file, 0, 5, kMiniStream, 128);
    PutEntry(file, 1, 2, kLarge, 4600);
    PutEntry(file, 2, 2, 0, 100);
    PutEntry(file, 3, 1, 0, 0);
    Put(file, EntryAt(0) + 76, 1);
    Put(file, EntryAt(1) + 68, 2);
    Put(file, EntryAt(1) + 72, 3);
    return file;
}

const char* Damage(const Bytes& file) {
    return DamageOfCompoundFile(file);
}

}  // namespace

TEST(CompoundFile, ASoundOneHasNoDamage) {
    EXPECT_EQ(Damage(MakeFile()), nullptr);
}

TEST(CompoundFile, AnEmptyChainMayBeginWithTheNumberOfAFreeSector) {
    Bytes file = MakeFile();
    // No small streams: neither their allocation table nor the stream of the root that holds them.
    Put(file, EntryAt(1) + 68, kFree);
    Put(file, 60, kFree);
    Put(file, EntryAt(0) + 116, kFree);
    Put(file, EntryAt(0) + 120, 0);
    EXPECT_EQ(Damage(file), nullptr);
    // A chain with something in it cannot end there.
    PutFat(file, kDirectory, kFree);
    EXPECT_STREQ(Damage(file), "its directory is damaged");
}

TEST(CompoundFile, ALastSectorMayBeCutShort) {
    Bytes file = MakeFile();
    file.resize(file.size() - 500);
    EXPECT_EQ(Damage(file), nullptr);
    file.resize(file.size() - 12);
    EXPECT_STREQ(Damage(file), "its streams are damaged");
}

TEST(CompoundFile, EveryLengthIsTaken) {
    const Bytes file = MakeFile();
    for (std::size_t size = 0; size < file.size() - kSector; ++size) {
        EXPECT_NE(Damage({file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size)}), nullptr) << size;
    }
}

TEST(CompoundFile, TheHeaderMustBeOne) {
    for (const std::size_t offset : {0U, 7U, 26U, 30U, 32U}) {
        Bytes file = MakeFile();
        file[offset] ^= 0xFFU;
        EXPECT_STREQ(Damage(file), "it is no structured storage file") << offset;
    }
}

TEST(CompoundFile, ChainsThatLeadBackAreDamage) {
    Bytes file = MakeFile();
    PutFat(file, kLarge + 3, kLarge);
    EXPECT_STREQ(Damage(file), "its streams are damaged");
    file = MakeFile();
    PutFat(file, kDirectory, kDirectory);
    EXPECT_STREQ(Damage(file), "its directory is damaged");
    file = MakeFile();
    PutFat(file, kMiniFat, kMiniFat);
    EXPECT_STREQ(Damage(file), "its directory is damaged");
    file = MakeFile();
    Put(file, At(kMiniFat) + 4, 0);
    EXPECT_STREQ(Damage(file), "its streams are damaged");
}

TEST(CompoundFile, ChainsThatLeadNowhereAreDamage) {
    Bytes file = MakeFile();
    PutFat(file, kLarge, 5'000);
    EXPECT_STREQ(Damage(file), "its streams are damaged");
    file = MakeFile();
    Put(file, 48, 0x7FFFFFFF);
    EXPECT_STREQ(Damage(file), "its directory is damaged");
    file = MakeFile();
    Put(file, 76, 5'000);
    EXPECT_STREQ(Damage(file), "its allocation table is damaged");
    file = MakeFile();
    Put(file, 44, 0);
    EXPECT_STREQ(Damage(file), "its allocation table is damaged");
}

TEST(CompoundFile, AllocationTablesWithoutEndAreDamage) {
    Bytes file = MakeFile();
    // More sectors than the header names, whose list leads back to itself.
    Put(file, 44, 0xFFFFFFFF);
    Put(file, 68, kLarge + 8);
    for (std::size_t i = 0; i < 109; ++i) {
        Put(file, 76 + i * kNumberSize, kFree);
    }
    Put(file, At(kLarge + 8) + kSector - 4, kLarge + 8);
    EXPECT_STREQ(Damage(file), "its allocation table is damaged");
}

TEST(CompoundFile, SectorsOfTwoChainsAreDamage) {
    Bytes file = MakeFile();
    Put(file, EntryAt(1) + 116, kMiniStream);
    EXPECT_STREQ(Damage(file), "its streams are damaged");
    file = MakeFile();
    Put(file, EntryAt(2) + 116, 1);
    EXPECT_STREQ(Damage(file), "its streams are damaged");
}

TEST(CompoundFile, StreamsLongerThanTheirChainAreDamage) {
    Bytes file = MakeFile();
    Put(file, EntryAt(1) + 120, kLargeSectors * kSector + 1);
    EXPECT_STREQ(Damage(file), "its streams are damaged");
    file = MakeFile();
    Put(file, EntryAt(1) + 120, 0xFFFFFFFF);
    EXPECT_STREQ(Damage(file), "its streams are damaged");
    file = MakeFile();
    Put(file, EntryAt(2) + 120, 129);
    EXPECT_STREQ(Damage(file), "its streams are damaged");
    file = MakeFile();
    Put(file, EntryAt(0) + 120, 513);
    EXPECT_STREQ(Damage(file), "its streams are damaged");
}

TEST(CompoundFile, TreesThatAreNoTreesAreDamage) {
    for (const std::uint32_t target : {0U, 1U, 2U, 4U, 1'000U}) {
        Bytes file = MakeFile();
        Put(file, EntryAt(3) + 76, target);
        EXPECT_STREQ(Damage(file), "its directory is damaged") << target;
    }
    Bytes file = MakeFile();
    file[EntryAt(0) + 66] = 1;
    EXPECT_STREQ(Damage(file), "its directory is damaged");
    file = MakeFile();
    file[EntryAt(2) + 66] = 9;
    EXPECT_STREQ(Damage(file), "its directory is damaged");
}

/// A file whose directory is one list of streams without bytes, each to the right of the one before.
Bytes MakeList(std::uint32_t streams) {
    constexpr std::uint32_t kEntriesOfASector = 4;
    constexpr std::uint32_t kNumbersOfASector = 128;
    const std::uint32_t directorySectors = streams / kEntriesOfASector + 1;
    // Each tells of the other sectors and of those of the table itself.
    const std::uint32_t fatSectors = directorySectors / (kNumbersOfASector - 1) + 1;
    Bytes file = MakeFile();
    file.resize(kSector);
    file.resize(At(fatSectors + directorySectors));
    Put(file, 44, fatSectors);
    Put(file, 48, fatSectors);
    Put(file, 60, kEnd);
    for (std::uint32_t i = 0; i < fatSectors; ++i) {
        Put(file, 76 + i * kNumberSize, i);
    }
    for (std::uint32_t sector = 0; sector < fatSectors * kNumbersOfASector; ++sector) {
        std::uint32_t next = kFree;
        if (sector < fatSectors) {
            next = 0xFFFFFFFD;
        } else if (sector < fatSectors + directorySectors) {
            next = sector + 1 == fatSectors + directorySectors ? kEnd : sector + 1;
        }
        Put(file, At(0) + sector * kNumberSize, next);
    }
    for (std::uint32_t entry = 0; entry <= streams; ++entry) {
        const std::size_t place = At(fatSectors) + entry * kEntrySize;
        file[place + 66] = entry == 0 ? 5 : 2;
        Put(file, place + 68, kFree);
        Put(file, place + 72, entry == 0 || entry == streams ? kFree : entry + 1);
        Put(file, place + 76, entry == 0 ? 1 : kFree);
        Put(file, place + 116, kEnd);
    }
    return file;
}

TEST(CompoundFile, ADirectoryThatTakesFourMillionStepsToSearchIsDamage) {
    // A list of n takes n(n + 1) / 2 steps until each entry was found: 3,997,378 and 4,000,206.
    EXPECT_EQ(Damage(MakeList(2'827)), nullptr);
    EXPECT_STREQ(Damage(MakeList(2'828)), "its directory is damaged");
}
