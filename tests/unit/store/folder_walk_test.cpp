// Reads and counts that go through folders and their sub-folders, which are the same for contacts and for
// appointments.

#include "support/settings.h"
#include "tests/unit/store/appointment_fixture.h"
#include "tests/unit/store/reading_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

/// What differs between the two kinds of items.
struct WalkedKind {
    std::wstring folder;  ///< the default one of the store
    const char* itsClass;
    const char* itsName;  ///< as the recorder knows the folder
    const wchar_t* readOperation;
    const wchar_t* nameElement;
    void (*add)(FolderWriter& writer, const wchar_t* name);
    long (*count)();
    int (*readAll)();
    std::vector<CString> (*takeSent)();
};

void AddContact(FolderWriter& writer, const wchar_t* name) {
    writer.AddContact(PropertyValues().Text(PR_GIVEN_NAME_W, name));
}

long CountContacts() {
    return g_MAPIObject.GetContactCount();
}

int ReadAllContacts() {
    return g_MAPIObject.ReadContacts(L"");
}

void AddAppointment(FolderWriter& writer, const wchar_t* name) {
    NewAppointment(writer, name).Save();
}

long CountAppointments() {
    return g_MAPIObject.GetCalendarCount();
}

int ReadAllAppointments() {
    return g_MAPIObject.ReadCalendars(L"");
}

const WalkedKind kContacts{
    L"Contacts",    "IPF.Contact",    "Contacts", L"ReadContactFromFolder", L"FirstName", &AddContact,
    &CountContacts, &ReadAllContacts, &TakeSent,
};

const WalkedKind kAppointments{
    L"Calendar",        "IPF.Appointment", "Calendar",         L"ReadCalendarEventFromFolder",
    L"Description",     &AddAppointment,   &CountAppointments, &ReadAllAppointments,
    &TakeSentCalendars,
};

class FolderWalk : public ReadingTest, public ::testing::WithParamInterface<const WalkedKind*> {
  protected:
    void SetUp() override {
        ReadingTest::SetUp();
        g_bSubFolder = true;
    }
    static const WalkedKind& Kind() { return *GetParam(); }
    /// Makes a folder below the one of the kind, of the same class or of another, with items.
    void MakeFolderWith(const std::wstring& path, const std::vector<const wchar_t*>& names,
                        const std::string& folderClass = {}) const {
        MakeFolder(L"Work\\Mail\\" + Kind().folder + path);
        if (!folderClass.empty()) {
            WriteFile(L"Work\\Mail\\" + Kind().folder + path + L"\\folder.ini",
                      "[Folder]\r\nClass=" + folderClass + "\r\n");
        }
        recorder::SetRoot(m_root);
        FolderWriter writer(L"Work", Kind().folder + path);
        for (const wchar_t* const name : names) {
            Kind().add(writer, name);
        }
    }
    static std::vector<CString> NamesIn(const std::vector<CString>& documents) {
        const CString begin = CString(L"<") + Kind().nameElement + L">";
        std::vector<CString> names;
        for (const CString& document : documents) {
            const std::size_t from = document.find(begin) + begin.size();
            names.emplace_back(document.substr(from, document.find(L'<', from) - from));
        }
        return names;
    }
    static std::vector<CString> SentNames() { return NamesIn(Kind().takeSent()); }
    static LogLine Line(std::int32_t level, const wchar_t* text) {
        return {level, CString::Format(L"CMAPIObject::%s - %s\r\n", Kind().readOperation, text)};
    }
    /// Whether these lines stand in the log one behind the other.
    static bool HasInARow(const LogLines& log, const LogLines& lines) {
        return std::search(log.begin(), log.end(), lines.begin(), lines.end()) != log.end();
    }
};

using Names = std::vector<CString>;

TEST_P(FolderWalk, SubFoldersAreLeftOutUnlessTheSettingIsOn) {
    MakeFolderWith(L"", {L"Top"});
    MakeFolderWith(L"\\Private", {L"Below"});
    LogOn();
    g_bSubFolder = false;
    EXPECT_EQ(Kind().count(), 1);
    EXPECT_EQ(Kind().readAll(), 0);
    EXPECT_EQ(SentNames(), (Names{L"Top"}));
}

TEST_P(FolderWalk, SubFoldersFollowTheirFolderDepthFirstWithTheirPaths) {
    MakeFolderWith(L"", {L"Top"});
    MakeFolderWith(L"\\A", {L"InA"});
    MakeFolderWith(L"\\A\\Deep", {L"InDeep"});
    MakeFolderWith(L"\\B", {L"InB"});
    LogOn();
    EXPECT_EQ(Kind().count(), 4);
    EXPECT_EQ(Kind().readAll(), 0);
    const std::vector<CString> documents = Kind().takeSent();
    EXPECT_EQ(NamesIn(documents), (Names{L"Top", L"InA", L"InDeep", L"InB"}));
    ASSERT_EQ(documents.size(), 4U);
    const wchar_t* const paths[] = {L"", L"\\A", L"\\A\\Deep", L"\\B"};
    for (std::size_t i = 0; i < documents.size(); ++i) {
        const std::wstring element = L"<CsFolder>" + Kind().folder + paths[i] + L"</CsFolder>";
        EXPECT_TRUE(Contains(documents[i], element.c_str())) << i;
    }
}

TEST_P(FolderWalk, SubFolderOfAnotherClassIsNotEnteredNorAreItsChildren) {
    MakeFolderWith(L"", {L"Top"});
    MakeFolderWith(L"\\Notes", {L"Below"}, "IPF.Note");
    MakeFolderWith(L"\\Notes\\Inner", {L"Inside"}, Kind().itsClass);
    MakeFolderWith(L"\\Own", {L"Beside"}, std::string(Kind().itsClass) + ".Own");
    LogOn();
    EXPECT_EQ(Kind().count(), 1);
    EXPECT_EQ(Kind().readAll(), 0);
    EXPECT_EQ(SentNames(), (Names{L"Top"}));
}

TEST_P(FolderWalk, EmptySubFolderIsEnteredAndLeftAgain) {
    MakeFolderWith(L"", {L"Top"});
    MakeFolderWith(L"\\A", {});
    MakeFolderWith(L"\\B", {L"InB"});
    LogOn();
    EXPECT_EQ(Kind().readAll(), 0);
    EXPECT_EQ(SentNames(), (Names{L"Top", L"InB"}));
}

TEST_P(FolderWalk, TopFolderWithoutItemsStillHasItsSubFoldersRead) {
    MakeFolderWith(L"\\A", {L"InA"});
    LogOn();
    EXPECT_EQ(Kind().readAll(), 0);
    EXPECT_EQ(SentNames(), (Names{L"InA"}));
}

TEST_P(FolderWalk, SubFolderWhoseContentsCannotBeReadEndsTheWalk) {
    MakeFolderWith(L"", {L"Top"});
    MakeFolderWith(L"\\A", {});
    MakeFolderWith(L"\\B", {L"InB"});
    LogOn();
    recorder::FailMethod("IMAPIFolder::GetContentsTable", Kind().itsName + std::string("\\A"), E_FAIL);
    EXPECT_EQ(Kind().readAll(), 1);
    EXPECT_EQ(SentNames(), (Names{L"Top"}));
    EXPECT_TRUE(HasInARow(TakeLog(), {Line(1, L"lpContainer->GetContentsTable(0X80004005)"),
                                      Line(1, L"Finish(Failed)"), Line(1, L"Finish(Failed)")}));
}

TEST_P(FolderWalk, FolderWithoutContentsStillCountsItsSubFolders) {
    MakeFolderWith(L"", {L"Top"});
    MakeFolderWith(L"\\A", {L"InA"});
    LogOn();
    recorder::FailMethod("IMAPIFolder::GetContentsTable", Kind().itsName, E_FAIL);
    EXPECT_EQ(Kind().count(), 1);
}

TEST_P(FolderWalk, HierarchyThatCannotBeHadDoesNotFailTheRead) {
    MakeFolderWith(L"", {L"Top"});
    LogOn();
    recorder::FailMethod("IMAPIFolder::GetHierarchyTable", {}, E_FAIL);
    EXPECT_EQ(Kind().readAll(), 0);
    EXPECT_EQ(SentNames(), (Names{L"Top"}));
}

TEST_P(FolderWalk, StopDuringTheLastItemOfAFolderLeavesItsSubFoldersOutWithSuccess) {
    MakeFolderWith(L"", {L"Top"});
    MakeFolderWith(L"\\A", {L"InA"});
    LogOn();
    OnSend([] { g_MAPIObject.m_bStop = 1; });
    EXPECT_EQ(Kind().readAll(), 0);
    EXPECT_EQ(SentNames(), (Names{L"Top"}));
    EXPECT_EQ(g_MAPIObject.m_bStop, 0);
}

TEST_P(FolderWalk, StopDuringTheLastItemOfASubFolderEndsTheWalkAtTheNextOne) {
    MakeFolderWith(L"\\A", {L"InA"});
    MakeFolderWith(L"\\B", {L"InB"});
    LogOn();
    OnSend([] { g_MAPIObject.m_bStop = 1; });
    EXPECT_EQ(Kind().readAll(), 1);
    EXPECT_EQ(SentNames(), (Names{L"InA"}));
    EXPECT_TRUE(HasInARow(TakeLog(), {Line(3, L"Interrupted or INVALID Parameter"),
                                      Line(1, L"Finish(Failed)"), Line(1, L"Finish(Failed)")}));
}

INSTANTIATE_TEST_SUITE_P(Of, FolderWalk, ::testing::Values(&kContacts, &kAppointments), [](const auto& kind) {
    return std::string(kind.param == &kContacts ? "Contacts" : "Appointments");
});

}  // namespace
