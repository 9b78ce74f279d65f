#include "tests/faults/store_state.h"

#include <mapitags.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "libraries/dunmere/change_map.h"
#include "support/settings.h"
#include "support/user_folders.h"
#include "tests/faults/appointment_details.h"
#include "tests/faults/contact_details.h"
#include "tests/unit/calendar/sample_series.h"
#include "tests/unit/store/appointment_fixture.h"

namespace fs = std::filesystem;

namespace {

constexpr const wchar_t* kMail = L"\\Work\\Mail";
/// What the names of files begin with that the store is still writing.
constexpr const wchar_t* kTemporaryPrefix = L"~localstore-";

void AddContacts() {
    FolderWriter writer(L"Work", L"Contacts");
    const ComPtr<IMessage> message = writer.NewMessage(
        L"IPM.Contact", PropertyValues().Text(PR_GIVEN_NAME_W, L"Ada").Text(PR_BODY_W, L"notes"));
    PropertyValues()
        .Text(FolderWriter::AddressTag(message.Get(), 0x8083), L"ada@example.org")
        .Texts(FolderWriter::KeywordsTag(message.Get()), {L"friends", L"work"})
        .SetOn(message.Get());
    FolderWriter::AddAttachment(message.Get(), std::string(5000, 'p'), true);
    FolderWriter::Save(message.Get());
    writer.AddContact(PropertyValues().Text(PR_GIVEN_NAME_W, L"Grace"));
    FolderWriter below(L"Work", L"Contacts\\Below");
    const ComPtr<IMessage> old = below.NewMessage(L"IPM.Contact", PropertyValues()
                                                                      .Text(PR_GIVEN_NAME_W, kOldName)
                                                                      .Text(PR_SURNAME_W, kOldName)
                                                                      .Text(PR_COMPANY_NAME_W, kOldName));
    FolderWriter::AddAttachment(old.Get(), OldPicture(), true);
    FolderWriter::Save(old.Get());
}

void AddAppointments() {
    FolderWriter writer(L"Work", L"Calendar");
    NewAppointment(writer, L"Review").Reminder(15).Series(2, sample_series::WithExceptions()).Save();
    NewAppointment(writer, L"Lunch")
        .Time(lid::kStartWhole, 2011, 3, 7, 12, 0)
        .Time(lid::kEndWhole, 2011, 3, 7, 13, 0)
        .Text(lid::kLocation, L"canteen")
        .Save();
    FolderWriter below(L"Work", L"Calendar\\Below");
    NewAppointment old(below, kOldName);
    SetOldAppointment(old);
    old.Save();
}

/// The identifier in the document of the item that has the old name.
CString IdOfOldItem(const std::vector<CString>& documents) {
    for (const CString& document : documents) {
        if (document.find(kOldName) != CString::npos) {
            const std::size_t start = document.find(L"<PIMID>") + 7;
            return {document.substr(start, document.find(L"</PIMID>") - start)};
        }
    }
    ADD_FAILURE() << "the item with the old name did not arrive";
    return {};
}

}  // namespace

std::string BytesOf(const std::wstring& path) {
    std::ifstream file(fs::path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteBytes(const std::wstring& path, const std::string& bytes) {
    std::ofstream file(fs::path(path), std::ios::binary);
    file << bytes;
}

StoreState::StoreState(const std::wstring& root) : m_store(root + kMail), m_beside(root + L"-beside") {
    fs::create_directories(m_beside);
    g_strDataFolder = CString(m_beside.c_str());
    g_strOutlookXml = CString((m_beside + L"\\Outlook.xml").c_str());
    g_strProfileXml = CString((m_beside + L"\\Profile.xml").c_str());
    g_bSubFolder = true;
    picture = CString((m_beside + L"\\new.picture").c_str());
    WritePicture(picture.c_str());
    AddContacts();
    AddAppointments();
    contactMap = CString((m_beside + L"\\contacts.map").c_str());
    calendarMap = CString((m_beside + L"\\calendars.map").c_str());
    MakeMap(contactMap, true);
    contactId = IdOfOldItem(TakeSent());
    MakeMap(calendarMap, false);
    calendarId = IdOfOldItem(TakeSentCalendars());
    contactSelection = L"<id>" + FolderWriter(L"Work", L"Contacts\\Below").FolderId() + L"</id>";
    calendarSelection =
        L"<id><event>" + FolderWriter(L"Work", L"Calendar\\Below").FolderId() + L"</event></id>";
    m_knownIds = TopIds();
    m_beginning = Content();
}

StoreState::~StoreState() {
    g_strDataFolder.clear();
    g_strOutlookXml.clear();
    g_strProfileXml.clear();
    g_bSubFolder = false;
    std::error_code ignored;
    fs::remove_all(m_beside, ignored);
}

void StoreState::MakeMap(const CString& map, bool ofContacts) {
    EXPECT_EQ(ofContacts ? g_MAPIObject.ReadContacts(map.c_str()) : g_MAPIObject.ReadCalendars(map.c_str()),
              0);
    ChangeMap known;
    EXPECT_EQ(ReadMap(BytesOf(map.c_str()), known), MapState::kGood);
    ASSERT_EQ(known.sections.size(), 1U);
    std::vector<KnownItem>& items = known.sections[0].items;
    ASSERT_EQ(items.size(), static_cast<std::size_t>(kItems));
    items[0].id = kGoneId;
    items[1].modified.seconds -= 1000;
    WriteBytes(map.c_str(), WriteMap(known));
}

StoreState::Files StoreState::Content() const {
    Files files;
    for (const auto& entry : fs::recursive_directory_iterator(m_store)) {
        if (entry.path().extension() == L".msg") {
            files[entry.path().wstring()] = BytesOf(entry.path().wstring());
        }
    }
    for (const CString& map : {contactMap, calendarMap}) {
        files[map.c_str()] = BytesOf(map.c_str());
    }
    return files;
}

bool StoreState::IsAsInTheBeginning() const {
    return Content() == m_beginning;
}

bool StoreState::KeepsAllBut(const wchar_t* folder) const {
    const Files now = Content();
    return std::ranges::all_of(m_beginning, [&](const auto& file) {
        const auto& [path, bytes] = file;
        if (folder != nullptr && fs::path(path).parent_path() == fs::path(m_store) / folder) {
            return true;
        }
        const auto found = now.find(path);
        return found != now.end() && found->second == bytes;
    });
}

void StoreState::RemoveTemporaries() const {
    std::vector<fs::path> left;
    for (const auto& entry : fs::recursive_directory_iterator(m_store)) {
        if (entry.path().filename().wstring().starts_with(kTemporaryPrefix)) {
            left.push_back(entry.path());
        }
    }
    for (const fs::path& path : left) {
        fs::remove(path);
    }
}

void StoreState::Restore() const {
    RemoveTemporaries();
    for (const auto& [path, bytes] : Content()) {
        const auto before = m_beginning.find(path);
        if (before == m_beginning.end()) {
            fs::remove(path);
        } else if (before->second != bytes) {
            WriteBytes(path, before->second);
        }
    }
    for (const auto& [path, bytes] : m_beginning) {
        if (!fs::exists(path)) {
            WriteBytes(path, bytes);
        }
    }
    for (const auto& entry : fs::directory_iterator(m_beside)) {
        if (entry.path().extension() == L".jpg") {
            fs::remove(entry.path());
        }
    }
}

std::size_t StoreState::MessagesIn(const std::wstring& folder) const {
    const fs::recursive_directory_iterator entries(m_store + L"\\" + folder);
    return static_cast<std::size_t>(std::count_if(
        begin(entries), end(entries), [](const auto& entry) { return entry.path().extension() == L".msg"; }));
}

std::vector<CString> StoreState::TopIds() {
    std::vector<CString> ids = FolderWriter(L"Work", L"Contacts").MessageIds();
    std::ranges::move(FolderWriter(L"Work", L"Calendar").MessageIds(), std::back_inserter(ids));
    return ids;
}

CString StoreState::AddedId() const {
    for (const CString& id : TopIds()) {
        if (std::ranges::find(m_knownIds, id) == m_knownIds.end()) {
            return id;
        }
    }
    return {};
}

void StoreState::RememberFolders() {
    contactFolder = g_MAPIObject.m_lpContactFolder.Get();
    eventFolder = g_MAPIObject.m_lpEventFolder.Get();
}

bool StoreState::MapIsOld(const CString& map) const {
    return BytesOf(map.c_str()) == m_beginning.at(map.c_str());
}

bool StoreState::MapIsWhole(const CString& map) const {
    ChangeMap known;
    return MapIsOld(map) ||
           (ReadMap(BytesOf(map.c_str()), known) == MapState::kGood && known.sections.size() == 1 &&
            known.sections[0].items.size() == static_cast<std::size_t>(kItems) &&
            std::ranges::none_of(known.sections[0].items,
                                 [](const KnownItem& item) { return item.id == kGoneId; }));
}

bool StoreState::KeepsMessages() const {
    Files now = Content();
    for (const CString& map : {contactMap, calendarMap}) {
        now[map.c_str()] = m_beginning.at(map.c_str());
    }
    return now == m_beginning;
}
