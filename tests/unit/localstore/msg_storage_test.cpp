#include "localstore/msg_storage.h"

#include "localstore/failure.h"
#include "localstore/message_cache.h"
#include "store_fixture.h"

using namespace localstore;
using namespace localstore_test;

namespace {

int g_failIn = 0;          ///< calls of the platform until one fails, 0 for never
bool g_forever = false;    ///< the ones behind it fail too
bool g_hasFailed = false;  ///< one has failed
HRESULT g_failure = S_OK;  ///< with what it fails

bool IsRefused() {
    if (g_failIn == 0 || --g_failIn != 0) {
        return false;
    }
    g_failIn = g_forever ? 1 : 0;
    g_hasFailed = true;
    return true;
}

#pragma GCC diagnostic push
// Objects of COM end through Release alone.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// The references of an object that stands before one of the platform.
template<class Interface>
class Before : public Interface {
  public:
    explicit Before(ComPtr<Interface> real) : m_real(std::move(real)) {}
    virtual ~Before() = default;

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        const bool isOurs = IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, __uuidof(Interface));
        *object = isOurs ? static_cast<Interface*>(this) : nullptr;
        m_references += isOurs ? 1 : 0;
        return isOurs ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --m_references;
        if (left == 0) {
            delete this;
        }
        return left;
    }

  protected:
    [[nodiscard]] Interface& Real() const { return *m_real.Get(); }

  private:
    ComPtr<Interface> m_real;
    ULONG m_references = 1;
};

/// Puts an object of this kind before one that the platform has given out, or fails in its place.
template<class Object, class Interface>
HRESULT PutBefore(HRESULT result, Interface** object) {
    if (SUCCEEDED(result)) {
        *object = new Object(Adopt(*object));
    }
    return result;
}

/// The platform's memory for a file, which needs more when it grows.
class ScarceBytes final : public Before<ILockBytes> {
  public:
    using Before::Before;

    STDMETHODIMP ReadAt(ULARGE_INTEGER offset, void* buffer, ULONG size, ULONG* read) override {
        return Real().ReadAt(offset, buffer, size, read);
    }
    STDMETHODIMP WriteAt(ULARGE_INTEGER offset, const void* buffer, ULONG size, ULONG* written) override {
        return Grows(offset.QuadPart + size) && IsRefused() ? g_failure
                                                            : Real().WriteAt(offset, buffer, size, written);
    }
    STDMETHODIMP SetSize(ULARGE_INTEGER size) override {
        return Grows(size.QuadPart) && IsRefused() ? g_failure : Real().SetSize(size);
    }
    STDMETHODIMP Flush() override { return Real().Flush(); }
    STDMETHODIMP LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER size, DWORD type) override {
        return Real().LockRegion(offset, size, type);
    }
    STDMETHODIMP UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER size, DWORD type) override {
        return Real().UnlockRegion(offset, size, type);
    }
    STDMETHODIMP Stat(STATSTG* stat, DWORD flags) override { return Real().Stat(stat, flags); }

  private:
    [[nodiscard]] bool Grows(ULONGLONG size) const {
        STATSTG now{};
        return FAILED(Real().Stat(&now, STATFLAG_NONAME)) || size > now.cbSize.QuadPart;
    }
};

class ScarceElements final : public Before<IEnumSTATSTG> {
  public:
    using Before::Before;

    STDMETHODIMP Next(ULONG count, STATSTG* elements, ULONG* fetched) override {
        return IsRefused() ? g_failure : Real().Next(count, elements, fetched);
    }
    STDMETHODIMP Skip(ULONG count) override { return Real().Skip(count); }
    STDMETHODIMP Reset() override { return Real().Reset(); }
    STDMETHODIMP Clone(IEnumSTATSTG**) override { return E_NOTIMPL; }
};

/// A storage that is read.
class ScarceStorage final : public Before<IStorage> {
  public:
    using Before::Before;

    STDMETHODIMP OpenStream(LPCOLESTR name, void* reserved, DWORD mode, DWORD other,
                            IStream** stream) override {
        return IsRefused() ? g_failure : Real().OpenStream(name, reserved, mode, other, stream);
    }
    STDMETHODIMP OpenStorage(LPCOLESTR name, IStorage* priority, DWORD mode, SNB exclude, DWORD reserved,
                             IStorage** storage) override {
        return IsRefused()
                   ? g_failure
                   : PutBefore<ScarceStorage>(
                         Real().OpenStorage(name, priority, mode, exclude, reserved, storage), storage);
    }
    STDMETHODIMP EnumElements(DWORD one, void* two, DWORD three, IEnumSTATSTG** elements) override {
        return IsRefused()
                   ? g_failure
                   : PutBefore<ScarceElements>(Real().EnumElements(one, two, three, elements), elements);
    }
    STDMETHODIMP Stat(STATSTG* stat, DWORD flags) override {
        return IsRefused() ? g_failure : Real().Stat(stat, flags);
    }
    // A reader calls none of these.
    STDMETHODIMP CreateStream(LPCOLESTR, DWORD, DWORD, DWORD, IStream**) override { return E_NOTIMPL; }
    STDMETHODIMP CreateStorage(LPCOLESTR, DWORD, DWORD, DWORD, IStorage**) override { return E_NOTIMPL; }
    STDMETHODIMP CopyTo(DWORD, const IID*, SNB, IStorage*) override { return E_NOTIMPL; }
    STDMETHODIMP MoveElementTo(LPCOLESTR, IStorage*, LPCOLESTR, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Commit(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Revert() override { return E_NOTIMPL; }
    STDMETHODIMP DestroyElement(LPCOLESTR) override { return E_NOTIMPL; }
    STDMETHODIMP RenameElement(LPCOLESTR, LPCOLESTR) override { return E_NOTIMPL; }
    STDMETHODIMP SetElementTimes(LPCOLESTR, const FILETIME*, const FILETIME*, const FILETIME*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP SetClass(REFCLSID) override { return E_NOTIMPL; }
    STDMETHODIMP SetStateBits(DWORD, DWORD) override { return E_NOTIMPL; }
};

#pragma GCC diagnostic pop

HRESULT WINAPI CreateScarceMemory(HGLOBAL memory, WINBOOL deleteOnRelease, ILockBytes** bytes) {
    return IsRefused()
               ? g_failure
               : PutBefore<ScarceBytes>(CreateILockBytesOnHGlobal(memory, deleteOnRelease, bytes), bytes);
}

HRESULT WINAPI OpenScarceStorage(ILockBytes* bytes, IStorage* priority, DWORD mode, SNB exclude,
                                 DWORD reserved, IStorage** storage) {
    return IsRefused()
               ? g_failure
               : PutBefore<ScarceStorage>(
                     StgOpenStorageOnILockBytes(bytes, priority, mode, exclude, reserved, storage), storage);
}

HRESULT WINAPI CreateUnwritableMemory(HGLOBAL memory, WINBOOL deleteOnRelease, ILockBytes** bytes) {
    const HRESULT result =
        PutBefore<ScarceBytes>(CreateILockBytesOnHGlobal(memory, deleteOnRelease, bytes), bytes);
    g_failIn = 1;
    return result;
}

const StorageCalls kScarceForReading = {&::CreateILockBytesOnHGlobal, &OpenScarceStorage};
const StorageCalls kScarceForWriting = {&CreateScarceMemory, &::StgOpenStorageOnILockBytes};
/// Functions that say they succeeded and hand nothing out.
HRESULT WINAPI CreateNoMemory(HGLOBAL /*handle*/, BOOL /*deleteOnRelease*/, ILockBytes** bytes) {
    *bytes = nullptr;
    return S_OK;
}

HRESULT WINAPI OpenNoStorage(ILockBytes* /*bytes*/, IStorage* /*priority*/, DWORD /*mode*/, SNB /*exclude*/,
                             DWORD /*reserved*/, IStorage** storage) {
    *storage = nullptr;
    return S_OK;
}

const StorageCalls kUnwritable = {&CreateUnwritableMemory, &::StgOpenStorageOnILockBytes};

/// Storages of several depths, short streams and a long one.
StorageTree SomeTree() {
    StorageTree tree;
    for (int i = 0; i < 12; ++i) {
        tree.AddStream(L"stream" + std::to_wstring(i), Bytes(static_cast<std::size_t>(i) * 7, 'x'));
    }
    tree.AddStream(L"long", Bytes(20'000, 'y'));
    tree.storages[L"inner"].AddStream(L"a", {1, 2, 3});
    tree.storages[L"inner"].storages[L"innermost"].AddStream(L"b", Bytes(5'000, 'z'));
    return tree;
}

/// The code with which an operation ends; S_OK if it runs to its end.
template<class Operation>
HRESULT CodeOf(const Operation& operation) {
    try {
        operation();
        return S_OK;
    } catch (const StoreError& error) {
        return error.Code();
    }
}

class ScarceStorages : public testing::TestWithParam<HRESULT> {
  protected:
    void SetUp() override {
        g_failure = GetParam();
        g_forever = false;
    }
    void TearDown() override { g_failIn = 0; }
};

class ReadingStorage : public ScarceStorages {};
class WritingStorage : public ScarceStorages {};

}  // namespace

TEST_P(ReadingStorage, IsWholeOrTellsOfTheShortage) {
    const StorageTree tree = SomeTree();
    const Bytes bytes = WriteStorage(tree);
    int shortages = 0;
    for (int n = 1;; ++n) {
        g_failIn = n;
        const char* reason = "";
        std::optional<StorageTree> read;
        const HRESULT code = CodeOf([&] { read = ReadStorage(bytes, reason, kScarceForReading); });
        if (g_failIn != 0) {
            EXPECT_EQ(code, S_OK);
            EXPECT_TRUE(read == tree);
            break;
        }
        ASSERT_TRUE(code == MAPI_E_NOT_ENOUGH_MEMORY || read == tree)
            << n << ' ' << std::hex << code << reason;
        shortages += code == MAPI_E_NOT_ENOUGH_MEMORY ? 1 : 0;
    }
    EXPECT_GT(shortages, 10);
}

TEST_P(WritingStorage, IsWholeOrTellsOfTheShortage) {
    const StorageTree tree = SomeTree();
    for (const bool forever : {false, true}) {
        int shortages = 0;
        for (int n = 1;; ++n) {
            g_hasFailed = false;
            g_forever = forever;
            g_failIn = n;
            Bytes bytes;
            const HRESULT code = CodeOf([&] { bytes = WriteStorage(tree, kScarceForWriting); });
            g_failIn = 0;
            const char* reason = "";
            if (code == S_OK) {
                ASSERT_TRUE(ReadStorage(bytes, reason) == tree) << n << ' ' << reason;
            } else {
                ASSERT_EQ(code, MAPI_E_NOT_ENOUGH_MEMORY) << n;
                ++shortages;
            }
            if (!g_hasFailed) {
                EXPECT_EQ(code, S_OK);
                break;
            }
        }
        EXPECT_GT(shortages, 10);
    }
}

INSTANTIATE_TEST_SUITE_P(Shortages, ReadingStorage, testing::Values(E_OUTOFMEMORY, STG_E_INSUFFICIENTMEMORY));
INSTANTIATE_TEST_SUITE_P(Shortages, WritingStorage,
                         testing::Values(E_OUTOFMEMORY, STG_E_INSUFFICIENTMEMORY, STG_E_MEDIUMFULL,
                                         STG_E_WRITEFAULT));

namespace {

/// A file of storages in one another; the root is the first of them.
Bytes NestedFile(int levels) {
    constexpr DWORD kMode = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
    ComPtr<ILockBytes> memory;
    EXPECT_EQ(CreateILockBytesOnHGlobal(nullptr, TRUE, &memory), S_OK);
    std::vector<ComPtr<IStorage>> storages(static_cast<std::size_t>(levels));
    EXPECT_EQ(StgCreateDocfileOnILockBytes(memory.Get(), kMode, 0, storages[0].GetAddressOf()), S_OK);
    for (std::size_t i = 1; i < storages.size(); ++i) {
        EXPECT_EQ(storages[i - 1]->CreateStorage(L"s", kMode, 0, 0, storages[i].GetAddressOf()), S_OK);
    }
    EXPECT_EQ(storages[0]->Commit(STGC_DEFAULT), S_OK);
    STATSTG size{};
    EXPECT_EQ(memory->Stat(&size, STATFLAG_NONAME), S_OK);
    Bytes bytes(static_cast<std::size_t>(size.cbSize.QuadPart));
    ULONG read = 0;
    EXPECT_EQ(memory->ReadAt({}, bytes.data(), static_cast<ULONG>(bytes.size()), &read), S_OK);
    return bytes;
}

}  // namespace

TEST(Storages, In64LevelsAreReadAndInMoreAreNot) {
    const char* reason = "";
    EXPECT_TRUE(ReadStorage(NestedFile(63), reason));
    EXPECT_TRUE(ReadStorage(NestedFile(64), reason));
    EXPECT_FALSE(ReadStorage(NestedFile(65), reason));
    EXPECT_STREQ(reason, "its storages or streams cannot be read");
}

class ShortageWhileReading : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        AddContact(OpenContacts().Get(), L"John Doe");
    }
    void TearDown() override {
        g_failIn = 0;
        StoreTest::TearDown();
    }
    [[nodiscard]] std::wstring File() const {
        return PathOf(std::wstring(kContactsPath) + L"\\John Doe.msg");
    }
};

TEST_F(ShortageWhileReading, IsNoDamageOfTheFileAndTheNextTryWorks) {
    for (const HRESULT failure : {E_OUTOFMEMORY, STG_E_INSUFFICIENTMEMORY}) {
        g_failure = failure;
        MessageCache cache(kScarceForReading);
        // Opening the file, listing it, its second element.
        const std::vector<int> moments = {1, 3, 6};
        for (const int n : moments) {
            g_failIn = n;
            EXPECT_EQ(CodeOf([&] { cache.Load(File()); }), MAPI_E_NOT_ENOUGH_MEMORY) << n;
            EXPECT_EQ(g_failIn, 0);
        }
        LoadedMessage message;
        EXPECT_EQ(CodeOf([&] { message = cache.Load(File()); }), S_OK);
        ASSERT_NE(message.content, nullptr);
        EXPECT_NE(message.content->properties.Find(PROP_ID(PR_SUBJECT)), nullptr);
        EXPECT_EQ(cache.FilesRead(), moments.size() + 1);
    }
    EXPECT_TRUE(localstore::recorder::Diagnostics().empty());
}

TEST_F(ShortageWhileReading, SuccessWithNothingHandedOutIsAShortageToo) {
    for (const StorageCalls& calls : {StorageCalls{&CreateNoMemory, &::StgOpenStorageOnILockBytes},
                                      StorageCalls{&::CreateILockBytesOnHGlobal, &OpenNoStorage}}) {
        MessageCache cache(calls);
        EXPECT_EQ(CodeOf([&] { cache.Load(File()); }), MAPI_E_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(CodeOf([&] { WriteStorage(StorageTree(), calls); }), MAPI_E_NOT_ENOUGH_MEMORY);
    }
    EXPECT_TRUE(localstore::recorder::Diagnostics().empty());
}

TEST_F(ShortageWhileReading, BeforeTheFirstByteIsNoDamageEither) {
    for (const HRESULT failure : {E_OUTOFMEMORY, STG_E_MEDIUMFULL, STG_E_WRITEFAULT}) {
        g_failure = failure;
        MessageCache cache(kUnwritable);
        EXPECT_EQ(CodeOf([&] { cache.Load(File()); }), MAPI_E_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(CodeOf([&] { cache.Load(File()); }), MAPI_E_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(cache.FilesRead(), 2U);
    }
    EXPECT_TRUE(localstore::recorder::Diagnostics().empty());
}
