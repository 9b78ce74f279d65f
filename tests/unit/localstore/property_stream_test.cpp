#include "store_fixture.h"

using namespace localstore_test;

namespace {

std::vector<BYTE> BytesOf(const std::wstring& text) {
    const auto* first = reinterpret_cast<const BYTE*>(text.data());
    return {first, first + text.size() * sizeof(wchar_t)};
}

}  // namespace

class PropertyStreams : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        m_contacts = OpenContacts();
        ASSERT_EQ(m_contacts->CreateMessage(nullptr, 0, &m_message), S_OK);
    }
    void TearDown() override {
        m_message.Reset();
        m_contacts.Reset();
        StoreTest::TearDown();
    }
    ComPtr<IStream> Open(ULONG tag, ULONG flags, HRESULT expected = S_OK) const {
        ComPtr<IStream> stream;
        EXPECT_EQ(m_message->OpenProperty(tag, &IID_IStream, 0, flags,
                                          reinterpret_cast<LPUNKNOWN*>(stream.GetAddressOf())),
                  expected);
        return stream;
    }
    ComPtr<IMAPIFolder> m_contacts;
    ComPtr<IMessage> m_message;
};

TEST_F(PropertyStreams, ABodyIsReadInUnicodeWithoutATerminator) {
    const std::wstring body(3'000, L'\x00E9');
    ASSERT_EQ(Set(m_message.Get(), {StringValue(PR_BODY_W, body.c_str())}), S_OK);
    EXPECT_EQ(ReadStream(m_message.Get(), PR_BODY_W), BytesOf(body));
    EXPECT_EQ(ReadStream(m_message.Get(), PR_BODY_A).size(), 3'000U);
}

TEST_F(PropertyStreams, AnAbsentPropertyHasNoStream) {
    Open(PR_BODY_W, 0, MAPI_E_NOT_FOUND);
    Open(PR_BODY_W, MAPI_MODIFY, MAPI_E_NOT_FOUND);
    Open(PR_OBJECT_TYPE, 0, MAPI_E_NO_SUPPORT);
}

TEST_F(PropertyStreams, WhatIsWrittenGoesToTheMessageAtCommit) {
    {
        const ComPtr<IStream> stream = Open(PR_BODY_W, MAPI_MODIFY | MAPI_CREATE);
        const std::vector<BYTE> bytes = BytesOf(L"text");
        ULONG written = 0;
        ASSERT_EQ(stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written), S_OK);
        EXPECT_EQ(TextOf(m_message.Get(), PR_BODY_W), L"");
        ASSERT_EQ(stream->Commit(STGC_DEFAULT), S_OK);
        EXPECT_EQ(TextOf(m_message.Get(), PR_BODY_W), L"text");
    }
    EXPECT_TRUE(FileNames(PathOf(kContactsPath)).empty());
}

TEST_F(PropertyStreams, WhatIsWrittenGoesToTheMessageAtRelease) {
    Open(PR_BODY_W, MAPI_MODIFY | MAPI_CREATE)->Write(L"text", 8, nullptr);
    EXPECT_EQ(TextOf(m_message.Get(), PR_BODY_W), L"text");
}

TEST_F(PropertyStreams, CreateDiscardsWhatWasThere) {
    ASSERT_EQ(Set(m_message.Get(), {StringValue(PR_BODY_W, L"a long text")}), S_OK);
    Open(PR_BODY_W, MAPI_MODIFY | MAPI_CREATE)->Write(L"new", 6, nullptr);
    EXPECT_EQ(TextOf(m_message.Get(), PR_BODY_W), L"new");
}

TEST_F(PropertyStreams, ModifyKeepsWhatWasThere) {
    ASSERT_EQ(Set(m_message.Get(), {StringValue(PR_BODY_W, L"a long text")}), S_OK);
    Open(PR_BODY_W, MAPI_MODIFY)->Write(L"A", 2, nullptr);
    EXPECT_EQ(TextOf(m_message.Get(), PR_BODY_W), L"A long text");
}

TEST_F(PropertyStreams, NarrowTextIsTakenInTheSystemsCodePage) {
    Open(PR_BODY_A, MAPI_MODIFY | MAPI_CREATE)->Write("text", 4, nullptr);
    EXPECT_EQ(TextOf(m_message.Get(), PR_BODY_W), L"text");
}

TEST_F(PropertyStreams, SeekSetSizeAndStat) {
    std::vector<BYTE> bytes = {1, 2, 3, 4};
    ASSERT_EQ(Set(m_message.Get(), {BinaryValue(0x66500102, bytes)}), S_OK);
    const ComPtr<IStream> stream = Open(0x66500102, MAPI_MODIFY);
    STATSTG stat{};
    ASSERT_EQ(stream->Stat(&stat, STATFLAG_NONAME), S_OK);
    EXPECT_EQ(stat.cbSize.QuadPart, 4U);
    LARGE_INTEGER move{};
    ULARGE_INTEGER place{};
    move.QuadPart = -1;
    EXPECT_EQ(stream->Seek(move, STREAM_SEEK_END, &place), S_OK);
    EXPECT_EQ(place.QuadPart, 3U);
    EXPECT_EQ(stream->Seek(move, STREAM_SEEK_SET, &place), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(stream->Seek(move, 9, &place), STG_E_INVALIDFUNCTION);
    move.QuadPart = 3;
    EXPECT_EQ(stream->Seek(move, STREAM_SEEK_CUR, nullptr), S_OK);
    BYTE nine = 9;
    ULONG read = 7;
    EXPECT_EQ(stream->Read(&nine, 1, &read), S_OK);
    EXPECT_EQ(read, 0U);
    EXPECT_EQ(stream->Write(&nine, 1, nullptr), S_OK);
    ULARGE_INTEGER size{};
    size.QuadPart = 8;
    EXPECT_EQ(stream->SetSize(size), S_OK);
    EXPECT_EQ(stream->Commit(0), S_OK);
    EXPECT_EQ(OneValue(m_message.Get(), 0x66500102).Bytes(), (std::vector<BYTE>{1, 2, 3, 4, 0, 0, 9, 0}));
    size.QuadPart = 1ULL << 40U;
    EXPECT_EQ(stream->SetSize(size), STG_E_MEDIUMFULL);
    move.QuadPart = MAXLONGLONG;
    EXPECT_EQ(stream->Seek(move, STREAM_SEEK_CUR, nullptr), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(stream->Read(nullptr, 1, nullptr), STG_E_INVALIDPOINTER);
    EXPECT_EQ(stream->Write(nullptr, 1, nullptr), STG_E_INVALIDPOINTER);
}

TEST_F(PropertyStreams, ForReadingAreNotWritten) {
    ASSERT_EQ(Set(m_message.Get(), {StringValue(PR_BODY_W, L"text")}), S_OK);
    const ComPtr<IStream> stream = Open(PR_BODY_W, 0);
    EXPECT_EQ(stream->Write(L"x", 2, nullptr), STG_E_ACCESSDENIED);
    EXPECT_EQ(stream->SetSize({}), STG_E_ACCESSDENIED);
    EXPECT_EQ(stream->Commit(0), S_OK);
    ASSERT_EQ(m_message->SaveChanges(0), S_OK);
    const ComPtr<IMessage> reading = OpenMessage(m_contacts.Get(), IdOf(m_message.Get()), 0);
    EXPECT_EQ(WriteStream(reading.Get(), PR_BODY_W, {1, 0}), MAPI_E_NO_ACCESS);
}

TEST_F(PropertyStreams, KeepTheirObjectAlive) {
    ComPtr<IStream> stream = Open(PR_BODY_W, MAPI_MODIFY | MAPI_CREATE);
    m_message.Reset();
    EXPECT_EQ(stream->Write(L"x", 2, nullptr), S_OK);
    stream.Reset();
}

TEST_F(PropertyStreams, AreTheOnlyInterfaceOfAProperty) {
    ComPtr<IUnknown> object;
    EXPECT_EQ(m_message->OpenProperty(PR_BODY_W, &IID_IStorage, 0, 0, &object),
              MAPI_E_INTERFACE_NOT_SUPPORTED);
    EXPECT_EQ(m_message->OpenProperty(PR_BODY_W, nullptr, 0, 0, &object), MAPI_E_INVALID_PARAMETER);
}

TEST_F(PropertyStreams, HaveAtMost256Megabytes) {
    constexpr ULONGLONG kLongest = 256ULL * 1024 * 1024;
    const ComPtr<IStream> stream = Open(0x66500102, MAPI_MODIFY | MAPI_CREATE);
    ULARGE_INTEGER size{};
    size.QuadPart = kLongest + 1;
    EXPECT_EQ(stream->SetSize(size), STG_E_MEDIUMFULL);
    size.QuadPart = kLongest;
    EXPECT_EQ(stream->SetSize(size), S_OK);
    LARGE_INTEGER place{};
    place.QuadPart = static_cast<LONGLONG>(kLongest) - 1;
    ASSERT_EQ(stream->Seek(place, STREAM_SEEK_SET, nullptr), S_OK);
    const std::vector<BYTE> two(2);
    EXPECT_EQ(stream->Write(two.data(), 2, nullptr), STG_E_MEDIUMFULL);
    EXPECT_EQ(stream->Write(two.data(), 1, nullptr), S_OK);
    EXPECT_EQ(stream->Write(two.data(), 1, nullptr), STG_E_MEDIUMFULL);
    // The message need not take so much.
    size.QuadPart = 0;
    EXPECT_EQ(stream->SetSize(size), S_OK);
}
