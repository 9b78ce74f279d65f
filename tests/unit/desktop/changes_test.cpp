// What the desktop program makes of a read of changes: the map's copy, the documents and the doubts.

#include <gmock/gmock.h>

#include "desktop/change_output.h"
#include "desktop/failure.h"
#include "desktop/map_difference.h"
#include "desktop/working_map.h"
#include "tests/unit/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

TEST(ChangedIdentifiers, AreThoseThatCameChangedOrWent) {
    const std::string before = "Map 1\n[contact pim]\nA\t0\t1\nB\t0\t2\nC\t0\t3\nchecksum 1\n";
    const std::string after = "Map 1\n[contact pim]\nD\t0\t1\nB\t0\t2\nC\t0\t4\nchecksum 2\n";
    EXPECT_THAT(ChangedIdentifiers(before, after), UnorderedElementsAre("A", "C", "D"));
    EXPECT_THAT(ChangedIdentifiers(before, before), IsEmpty());
}

TEST(ChangedIdentifiers, OfNoMapAreAllOfTheOther) {
    EXPECT_THAT(ChangedIdentifiers("", "A\t0\t1\nB\t0\t2"), UnorderedElementsAre("A", "B"));
    EXPECT_THAT(ChangedIdentifiers("A\t0\t1\n", ""), UnorderedElementsAre("A"));
    EXPECT_THAT(ChangedIdentifiers("", ""), IsEmpty());
}

bool Doubted(std::size_t deleted, std::size_t now, std::size_t added = 0) {
    const ChangeCounts counts{added, 0, deleted};
    return LooksLikeAFailedRead(counts, KnownBefore(counts, now));
}

TEST(Deletions, OfAllItemsAreDoubtedFromFiveOn) {
    EXPECT_FALSE(Doubted(4, 0));
    EXPECT_TRUE(Doubted(5, 0));
    EXPECT_FALSE(Doubted(5, 1));
    EXPECT_TRUE(Doubted(5, 3, 3));
    EXPECT_TRUE(Doubted(100000, 0));
}

TEST(Deletions, OfMoreThanHalfAreDoubtedFromFiftyOn) {
    EXPECT_FALSE(Doubted(48, 1));
    EXPECT_TRUE(Doubted(26, 24));
    EXPECT_FALSE(Doubted(25, 25));
    EXPECT_TRUE(Doubted(26, 25));
    EXPECT_FALSE(Doubted(0, 0));
}

TEST(Deletions, KnownItemsAreThoseThatStayedAndThoseThatWent) {
    EXPECT_EQ(KnownBefore({3, 2, 4}, 10), 11U);
    // A count that came too early must not make the deletions look few.
    EXPECT_EQ(KnownBefore({3, 0, 4}, 1), 4U);
}

class DocumentList : public ItemOutput {
  public:
    explicit DocumentList(std::vector<CString>& texts) : m_texts(texts) {}
    void Take(ItemDocument& document) override { m_texts.emplace_back(document.Text()); }

  private:
    std::vector<CString>& m_texts;
};

void Take(ItemOutput& output, const wchar_t* xml) {
    ItemDocument document(L"Contact", xml);
    output.Take(document);
}

TEST(ChangeOutput, HoldsDeletionsBackUntilTheyAreBelieved) {
    const wchar_t* gone = L"<Contact><lFlag>32</lFlag><PIMID>0A</PIMID></Contact>";
    const wchar_t* added = L"<Contact><lFlag>8</lFlag><PIMID>0B</PIMID></Contact>";
    const wchar_t* changed = L"<Contact><lFlag>36</lFlag><PIMID>0C</PIMID></Contact>";
    std::vector<CString> texts;
    ChangeOutput output(*FindItemKind(L"contacts"), std::make_unique<DocumentList>(texts), false);
    for (const wchar_t* xml : {gone, added, changed}) {
        Take(output, xml);
    }
    EXPECT_EQ(texts, (std::vector<CString>{added, changed}));
    EXPECT_EQ(output.Counts().added, 1U);
    EXPECT_EQ(output.Counts().changed, 1U);
    EXPECT_EQ(output.Counts().deleted, 1U);
    output.BelieveDeletions();
    EXPECT_EQ(texts, (std::vector<CString>{added, changed, gone}));
    output.BelieveDeletions();
    EXPECT_EQ(texts.size(), 3U);
    EXPECT_TRUE(output.HasArrived("0A"));
    EXPECT_TRUE(output.HasArrived("0B"));
    EXPECT_FALSE(output.HasArrived("0D"));
}

class WorkingMapTest : public ::testing::Test {
  protected:
    CString Map() const { return m_folder.File(L"map"); }
    bool Exists(const wchar_t* name) const { return fs::exists(m_folder.File(name).c_str()); }

    TemporaryFolder m_folder;
};

TEST_F(WorkingMapTest, LeavesTheMapAloneUnlessItIsKept) {
    m_folder.Write(L"map", "A\t0\t1\n");
    {
        const WorkingMap map(Map());
        EXPECT_EQ(map.Path(), Map() + L".working");
        EXPECT_EQ(m_folder.Read(L"map.working"), "A\t0\t1\n");
        EXPECT_FALSE(map.Examine().written);
        m_folder.Write(L"map.working", "B\t0\t1\n");
        const MapOutcome outcome = map.Examine();
        EXPECT_TRUE(outcome.written);
        EXPECT_THAT(outcome.changes, UnorderedElementsAre("A", "B"));
    }
    EXPECT_EQ(m_folder.Read(L"map"), "A\t0\t1\n");
    EXPECT_FALSE(Exists(L"map.working"));
    {
        const WorkingMap map(Map());
        m_folder.Write(L"map.working", "B\t0\t1\n");
        map.Keep();
    }
    EXPECT_EQ(m_folder.Read(L"map"), "B\t0\t1\n");
    EXPECT_FALSE(Exists(L"map.working"));
}

TEST_F(WorkingMapTest, WithoutAMapHasNoCopyUntilTheAgentWritesOne) {
    // What a read that was killed left behind is no map.
    m_folder.Write(L"map.working", "A\t0\t1\n");
    const WorkingMap map(Map());
    EXPECT_FALSE(Exists(L"map.working"));
    EXPECT_FALSE(map.Examine().written);
    EXPECT_THAT(map.Examine().changes, IsEmpty());
}

TEST_F(WorkingMapTest, OfAMapThatWasSetAsideAllItemsCount) {
    m_folder.Write(L"map", "A\t0\t1\nB\t0\t1\n");
    const WorkingMap map(Map());
    fs::rename(m_folder.File(L"map.working").c_str(), m_folder.File(L"map.working.aside").c_str());
    m_folder.Write(L"map.working", "A\t0\t1\n");
    const MapOutcome outcome = map.Examine();
    EXPECT_EQ(outcome.setAside, m_folder.File(L"map.aside"));
    EXPECT_THAT(outcome.changes, UnorderedElementsAre("A"));
    EXPECT_EQ(m_folder.Read(L"map.aside"), "A\t0\t1\nB\t0\t1\n");
}

TEST_F(WorkingMapTest, RefusesAMapThatCouldNotBeReplaced) {
    fs::create_directory(m_folder.File(L"folder").c_str());
    m_folder.Write(L"protected", "x");
    SetFileAttributesW(m_folder.File(L"protected").c_str(), FILE_ATTRIBUTE_READONLY);
    for (const wchar_t* name : {L"folder", L"protected", L"no/map"}) {
        EXPECT_THROW(WorkingMap{m_folder.File(name)}, Failure);
    }
    SetFileAttributesW(m_folder.File(L"protected").c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_FALSE(Exists(L"protected.working"));
}

}  // namespace
