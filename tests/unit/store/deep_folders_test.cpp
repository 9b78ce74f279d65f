// Folders in one another, of which there is no limit but the stack. The local store has one, so the folders
// here are those of a provider that makes each of them when it is opened.

#include <cstring>
#include <thread>
#include <utility>

#include "localstore/com_object.h"
#include "mapi/folder_walk.h"
#include "support/settings.h"
#include "tests/unit/store/store_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

using localstore::CallSubject;
using localstore::ComObject;
using localstore::MakeObject;

constexpr ItemKind kItems{L"IPM.Contact", L"IPF.Contact", L"m_lpContactFolder"};

/// The identifier of a folder is its level.
SBinary IdOfLevel(int& level) {
    return {sizeof(level), reinterpret_cast<LPBYTE>(&level)};
}

/// How deep the folders go; the last one has an item.
int g_deepest = 0;

/// The folders or the items of a level. Rows come from it through QueryRows below and not by its methods.
class LevelTable : public ComObject<localstore::RefusingTable> {
  public:
    LevelTable(int level, bool hasFolders) : m_level(level), m_hasFolders(hasFolders) {}
    [[nodiscard]] CallSubject Subject() const override { return {"IMAPITable", L"level", nullptr}; }
    [[nodiscard]] bool Supports(REFIID iid) const override { return IsEqualGUID(iid, IID_IMAPITable); }

    [[nodiscard]] bool HasRow() const { return m_hasFolders == (m_level < g_deepest); }
    void Fill(SRow& row) const {
        row.cValues = 4;
        EXPECT_EQ(pfnMAPIAllocateBuffer(4 * sizeof(SPropValue), reinterpret_cast<void**>(&row.lpProps)),
                  S_OK);
        std::memset(row.lpProps, 0, 4 * sizeof(SPropValue));
        row.lpProps[kSubFolderClass].ulPropTag = PR_CONTAINER_CLASS_W;
        row.lpProps[kSubFolderClass].Value.lpszW = const_cast<LPWSTR>(L"IPF.Contact");
        row.lpProps[kSubFolderName].ulPropTag = PR_DISPLAY_NAME_W;
        row.lpProps[kSubFolderName].Value.lpszW = const_cast<LPWSTR>(L"f");
        row.lpProps[kSubFolderEntryId].ulPropTag = PR_ENTRYID;
        void* id = nullptr;
        EXPECT_EQ(pfnMAPIAllocateMore(sizeof(int), row.lpProps, &id), S_OK);
        const int next = m_level + 1;
        std::memcpy(id, &next, sizeof(next));
        row.lpProps[kSubFolderEntryId].Value.bin = {sizeof(next), static_cast<LPBYTE>(id)};
    }

  private:
    int m_level;
    bool m_hasFolders;
};

HRESULT WINAPI QueryRows(LPMAPITABLE table, LPSPropTagArray, LPSRestriction, LPSSortOrderSet, LONG,
                         LPSRowSet* rows) {
    const auto& level = *static_cast<LevelTable*>(table);
    EXPECT_EQ(pfnMAPIAllocateBuffer(CbNewSRowSet(1), reinterpret_cast<void**>(rows)), S_OK);
    (*rows)->cRows = level.HasRow() ? 1 : 0;
    if (level.HasRow()) {
        level.Fill((*rows)->aRow[0]);
    }
    return S_OK;
}

HRESULT OpenLevel(ULONG size, const ENTRYID* id, ULONG* type, LPUNKNOWN* object);

class LevelFolder : public ComObject<localstore::RefusingFolder> {
  public:
    explicit LevelFolder(int level) : m_level(level) {}
    [[nodiscard]] CallSubject Subject() const override { return {"IMAPIFolder", L"level", nullptr}; }
    [[nodiscard]] bool Supports(REFIID iid) const override { return IsEqualGUID(iid, IID_IMAPIFolder); }

    STDMETHODIMP OpenEntry(ULONG size, LPENTRYID id, LPCIID, ULONG, ULONG* type, LPUNKNOWN* object) override {
        return OpenLevel(size, id, type, object);
    }
    STDMETHODIMP GetContentsTable(ULONG, LPMAPITABLE* table) override {
        *table = MakeObject<LevelTable>(m_level, false).Detach();
        return S_OK;
    }
    STDMETHODIMP GetHierarchyTable(ULONG, LPMAPITABLE* table) override {
        *table = MakeObject<LevelTable>(m_level, true).Detach();
        return S_OK;
    }

  private:
    int m_level;
};

class LevelStore : public ComObject<localstore::RefusingStore> {
  public:
    [[nodiscard]] CallSubject Subject() const override { return {"IMsgStore", L"levels", nullptr}; }
    [[nodiscard]] bool Supports(REFIID iid) const override { return IsEqualGUID(iid, IID_IMsgStore); }
    STDMETHODIMP OpenEntry(ULONG size, LPENTRYID id, LPCIID, ULONG, ULONG* type, LPUNKNOWN* object) override {
        return OpenLevel(size, id, type, object);
    }
};

HRESULT OpenLevel(ULONG size, const ENTRYID* id, ULONG* type, LPUNKNOWN* object) {
    int level = 0;
    EXPECT_EQ(size, sizeof(level));
    std::memcpy(&level, id, sizeof(level));
    *type = MAPI_FOLDER;
    *object = MakeObject<LevelFolder>(level).Detach();
    return S_OK;
}

class DeepFolders : public StoreTest, public ::testing::WithParamInterface<int> {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        m_query = std::exchange(pfnHrQueryAllRows, &QueryRows);
        g_deepest = GetParam();
        g_bSubFolder = true;
    }
    void TearDown() override {
        pfnHrQueryAllRows = m_query;
        StoreTest::TearDown();
    }
    /// Runs on a thread with a stack of the size that the calls of the agent have.
    template<class Work>
    static void OnAThread(const Work& work) {
        std::thread(work).join();
    }

    int m_first = 0;

  private:
    decltype(pfnHrQueryAllRows) m_query = nullptr;
};

TEST_P(DeepFolders, AreReadToTheLast) {
    OnAThread([this] {
        const ComPtr<LevelFolder> top = MakeObject<LevelFolder>(m_first);
        const int stop = 0;
        std::vector<CString> paths;
        const FolderRead read{
            kItems,  L"Read", L"Begin",
            nullptr, stop,    [&](const SRow& /*row*/, const CString& path) { paths.push_back(path); }};
        EXPECT_EQ(ReadFolderItems(read, top.Get(), IdOfLevel(m_first), L"top"), 1);
        ASSERT_EQ(paths.size(), 1U);
        EXPECT_EQ(paths[0].size(), 3U + 2U * static_cast<std::size_t>(GetParam()));
    });
}

TEST_P(DeepFolders, AreCountedToTheLast) {
    OnAThread([this] {
        const ComPtr<LevelFolder> top = MakeObject<LevelFolder>(m_first);
        static constexpr FolderCount kCount{kItems, L"Count", L"INVALID", nullptr, nullptr};
        EXPECT_EQ(CountFolderItems(kCount, top.Get(), IdOfLevel(m_first)), 1U);
    });
}

TEST_P(DeepFolders, StandInTheListToTheLast) {
    OnAThread([this] {
        const ComPtr<LevelStore> store = MakeObject<LevelStore>();
        CXMLParser document;
        ASSERT_TRUE(document.InitDocument());
        ASSERT_TRUE(document.CreateRootElement(L"folders"));
        EXPECT_EQ(g_MAPIObject.GetAppFolderFromFolder(store.Get(), IdOfLevel(m_first), document, nullptr, 1),
                  1);
        const CString text = document.GetDocumentText();
        std::size_t nodes = 0;
        for (std::size_t place = 0; (place = text.find(L"<node ", place)) != CString::npos; ++place) {
            ++nodes;
        }
        EXPECT_EQ(nodes, static_cast<std::size_t>(GetParam()));
        // The last one stands as many tabs from the edge.
        const CString edge(WideString(static_cast<std::size_t>(GetParam()), L'\t'));
        EXPECT_NE(text.find(L"\n" + edge + L"<node "), CString::npos);
    });
}

INSTANTIATE_TEST_SUITE_P(Levels, DeepFolders, ::testing::Values(1, 200, 1000));

}  // namespace
