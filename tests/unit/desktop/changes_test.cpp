// What the desktop program makes of a read of changes: the map's copy, the documents and the doubts.

#include <gmock/gmock.h>

#include "desktop/change_output.h"
#include "desktop/failure.h"
#include "desktop/map_difference.h"
#include "desktop/working_map.h"
#include "support/owners.h"
#include "tests/unit/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr const char* kSection = "[contact pim]";

bool Doubted(std::size_t deleted, std::size_t known) {
    return LooksLikeAFailedRead({7, 7, deleted}, known);
}

TEST(Deletions, OfAllItemsAreDoubtedFromFiveOn) {
    EXPECT_FALSE(Doubted(4, 4));
    EXPECT_TRUE(Doubted(5, 5));
    EXPECT_FALSE(Doubted(5, 6));
    EXPECT_TRUE(Doubted(100000, 100000));
}

TEST(Deletions, OfMoreThanHalfAreDoubtedFromFiftyOn) {
    EXPECT_FALSE(Doubted(48, 49));
    EXPECT_TRUE(Doubted(26, 50));
    EXPECT_FALSE(Doubted(25, 50));
    EXPECT_TRUE(Doubted(26, 51));
    EXPECT_FALSE(Doubted(25, 51));
    EXPECT_FALSE(Doubted(0, 0));
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
    EXPECT_THAT(output.MissingOf({"0A", "0D", "0B", "0E"}), ElementsAre("0D", "0E"));
}

TEST(ChangeOutput, TakesDocumentsUnderOtherIdentifiersForAsManyThatAreMissing) {
    std::vector<CString> texts;
    ChangeOutput output(*FindItemKind(L"contacts"), std::make_unique<DocumentList>(texts), false);
    Take(output, L"<Contact><lFlag>4</lFlag><PIMID>5A</PIMID></Contact>");
    Take(output, L"<Contact><lFlag>8</lFlag><PIMID>5B</PIMID></Contact>");
    Take(output, L"<Contact><lFlag>32</lFlag><PIMID>0C</PIMID></Contact>");
    EXPECT_THAT(output.MissingOf({"0A", "0B", "0C"}), IsEmpty());
    EXPECT_THAT(output.MissingOf({"0A", "0B", "0C", "0D"}), ElementsAre("0A", "0B", "0D"));
    EXPECT_THAT(output.MissingOf({"0C"}), IsEmpty());
}

class WorkingMapTest : public ::testing::Test {
  protected:
    CString Map() const { return m_folder.File(L"map"); }
    bool Exists(const wchar_t* name) const { return fs::exists(m_folder.File(name).c_str()); }

    TemporaryFolder m_folder;
};

TEST_F(WorkingMapTest, LeavesTheMapAloneUnlessItIsKept) {
    m_folder.Write(L"map", "[contact pim]\nA\t0\t1\n");
    {
        const WorkingMap map(Map(), kSection);
        EXPECT_EQ(map.Path(), Map() + L".working");
        EXPECT_EQ(m_folder.Read(L"map.working"), "[contact pim]\nA\t0\t1\n");
        EXPECT_FALSE(map.Examine().written);
        m_folder.Write(L"map.working", "[contact pim]\nB\t0\t1\n");
        const MapOutcome outcome = map.Examine();
        EXPECT_TRUE(outcome.written);
        EXPECT_EQ(outcome.known, 1U);
        EXPECT_THAT(outcome.changes, UnorderedElementsAre("A", "B"));
    }
    EXPECT_EQ(m_folder.Read(L"map"), "[contact pim]\nA\t0\t1\n");
    EXPECT_FALSE(Exists(L"map.working"));
    {
        const WorkingMap map(Map(), kSection);
        m_folder.Write(L"map.working", "B\t0\t1\n");
        EXPECT_EQ(map.Keep({}), L"");
    }
    EXPECT_EQ(m_folder.Read(L"map"), "B\t0\t1\n");
    EXPECT_FALSE(Exists(L"map.working"));
}

TEST_F(WorkingMapTest, WithoutAMapHasNoCopyUntilTheAgentWritesOne) {
    // What a read that was killed left behind is no map.
    m_folder.Write(L"map.working", "A\t0\t1\n");
    m_folder.Write(L"map.working.aside", "B\t0\t1\n");
    const WorkingMap map(Map(), kSection);
    EXPECT_FALSE(Exists(L"map.working"));
    const MapOutcome outcome = map.Examine();
    EXPECT_FALSE(outcome.written);
    EXPECT_FALSE(outcome.damaged);
    EXPECT_EQ(outcome.known, 0U);
    EXPECT_THAT(outcome.changes, IsEmpty());
}

TEST_F(WorkingMapTest, KeepsAMapThatTheAgentCouldNotUseUnderANameOfItsOwn) {
    m_folder.Write(L"map.aside", "from an earlier time");
    for (const wchar_t* name : {L"map.aside2", L"map.aside3"}) {
        const std::string damaged = "[contact pim]\nA\t0\t1\nB\t0\t1\n" + std::to_string(name[9]);
        m_folder.Write(L"map", damaged);
        const WorkingMap map(Map(), kSection);
        fs::rename(m_folder.File(L"map.working").c_str(), m_folder.File(L"map.working.aside").c_str());
        m_folder.Write(L"map.working", "[contact pim]\nA\t0\t1\n");
        const MapOutcome outcome = map.Examine();
        EXPECT_TRUE(outcome.damaged);
        EXPECT_EQ(outcome.known, 0U);
        EXPECT_THAT(outcome.changes, UnorderedElementsAre("A"));
        EXPECT_EQ(map.Keep({}), m_folder.File(name));
        EXPECT_EQ(m_folder.Read(name), damaged);
        EXPECT_EQ(m_folder.Read(L"map"), "[contact pim]\nA\t0\t1\n");
    }
    EXPECT_EQ(m_folder.Read(L"map.aside"), "from an earlier time");
}

TEST_F(WorkingMapTest, KeepsAThousandMapsThatTheAgentCouldNotUseAndNoMore) {
    m_folder.Write(L"map.aside", "1");
    for (int number = 2; number < 1000; ++number) {
        m_folder.Write((L"map.aside" + std::to_wstring(number)).c_str(), "");
    }
    const auto keepOneMore = [this](const std::string& damaged) {
        m_folder.Write(L"map", damaged);
        const WorkingMap map(Map(), kSection);
        fs::rename(m_folder.File(L"map.working").c_str(), m_folder.File(L"map.working.aside").c_str());
        m_folder.Write(L"map.working", "[contact pim]\nA\t0\t1\n");
        return map.Keep({});
    };
    EXPECT_EQ(keepOneMore("the last one"), m_folder.File(L"map.aside1000"));
    EXPECT_EQ(m_folder.Read(L"map.aside1000"), "the last one");
    EXPECT_THROW(keepOneMore("one too many"), Failure);
    EXPECT_EQ(m_folder.Read(L"map"), "one too many");
    EXPECT_EQ(m_folder.Read(L"map.aside"), "1");
    EXPECT_FALSE(Exists(L"map.aside1001"));
}

TEST_F(WorkingMapTest, LeavesADamagedMapWhereItIsUntilAReadSucceeds) {
    m_folder.Write(L"map", "damaged");
    {
        const WorkingMap map(Map(), kSection);
        fs::rename(m_folder.File(L"map.working").c_str(), m_folder.File(L"map.working.aside").c_str());
        EXPECT_TRUE(map.Examine().damaged);
    }
    EXPECT_EQ(m_folder.Read(L"map"), "damaged");
    EXPECT_FALSE(Exists(L"map.working.aside"));
    EXPECT_FALSE(Exists(L"map.aside"));
    const WorkingMap next(Map(), kSection);
    EXPECT_FALSE(next.Examine().damaged);
}

TEST_F(WorkingMapTest, IsKeptWithoutTheChangesThatAreMissing) {
    const std::string before = "[contact pim]\nA\t0\t1\nB\t0\t1\nchecksum 0\n";
    m_folder.Write(L"map", before);
    const WorkingMap map(Map(), kSection);
    m_folder.Write(L"map.working", "[contact pim]\nB\t0\t2\nC\t0\t1\nchecksum 0\n");
    (void)map.Keep({"A", "C"});
    EXPECT_THAT(ChangedIdentifiers(before, m_folder.Read(L"map"), kSection), UnorderedElementsAre("B"));
}

TEST_F(WorkingMapTest, ThatCannotTakeTheMapsPlaceLeavesItWhole) {
    m_folder.Write(L"map", "old");
    {
        const WorkingMap map(Map(), kSection);
        m_folder.Write(L"map.working", "new");
        const FileHandle held(
            CreateFileW(Map().c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_THROW((void)map.Keep({}), Failure);
    }
    EXPECT_EQ(m_folder.Read(L"map"), "old");
    EXPECT_FALSE(Exists(L"map.working"));
}

TEST_F(WorkingMapTest, RefusesAMapThatCouldNotBeReplaced) {
    fs::create_directory(m_folder.File(L"folder").c_str());
    m_folder.Write(L"protected", "x");
    SetFileAttributesW(m_folder.File(L"protected").c_str(), FILE_ATTRIBUTE_READONLY);
    for (const wchar_t* name : {L"folder", L"protected", L"no/map"}) {
        EXPECT_THROW((WorkingMap{m_folder.File(name), kSection}), Failure);
    }
    SetFileAttributesW(m_folder.File(L"protected").c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_FALSE(Exists(L"protected.working"));
}

}  // namespace
