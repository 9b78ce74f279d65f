#include "desktop/item_output.h"

#include <gtest/gtest.h>

#include "desktop/failure.h"
#include "tests/unit/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

std::unique_ptr<ItemOutput> FilesIn(const CString& folder) {
    Arguments arguments;
    arguments.options = kOptionOut;
    arguments.out = folder;
    return MakeItemOutput(*FindItemKind(L"contacts"), arguments);
}

void Take(ItemOutput& output, const wchar_t* xml) {
    ItemDocument document(L"Contact", xml);
    output.Take(document);
}

TEST(ItemOutput, WritesAFileForEachItem) {
    const TemporaryFolder folder;
    const std::unique_ptr<ItemOutput> output = FilesIn(folder.Path() + L"new\\folder");
    const wchar_t* ada = L"<Contact><PIMID>00AB</PIMID><FULLNAME>Ada \u5C71\U0001F600</FULLNAME></Contact>";
    Take(*output, ada);
    Take(*output, L"<Contact><PIMID>00AC</PIMID></Contact>");
    Take(*FilesIn(folder.Path() + L"new\\folder"), ada);
    std::vector<std::string> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.File(L"new/folder").c_str())) {
        files.push_back(folder.Read(entry.path().c_str()));
    }
    std::sort(files.begin(), files.end());
    ASSERT_EQ(files.size(), 2U);
    EXPECT_EQ(files[0], "<Contact><PIMID>00AB</PIMID><FULLNAME>Ada \u5C71\U0001F600</FULLNAME></Contact>");
    EXPECT_EQ(files[1], "<Contact><PIMID>00AC</PIMID></Contact>");
}

TEST(ItemOutput, RefusesAFolderThatIsAFile) {
    const TemporaryFolder folder;
    folder.Write(L"file", "x");
    try {
        FilesIn(folder.Path() + L"file");
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Code(), ExitCode::kOutputFailed);
    }
}

TEST(ItemOutput, SaysWhenAFileCannotBeWritten) {
    const TemporaryFolder folder;
    const wchar_t* xml = L"<Contact><PIMID>00AB</PIMID></Contact>";
    Take(*FilesIn(folder.Path()), xml);
    const fs::path file = fs::directory_iterator(folder.Path().c_str())->path();
    fs::remove(file);
    fs::create_directories(file / "in the way");
    EXPECT_THROW(Take(*FilesIn(folder.Path()), xml), Failure);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path().c_str()), fs::directory_iterator()), 1);
}

}  // namespace
