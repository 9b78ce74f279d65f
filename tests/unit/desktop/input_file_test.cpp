#include "desktop/input_file.h"

#include <gtest/gtest.h>

#include "desktop/failure.h"
#include "tests/unit/temporary_folder.h"
#include "tests/unit/text_printer.h"

namespace {

TEST(ReadFileBytes, TakesAFileUpToTheMostAndNoneThatIsLonger) {
    // Several of the pieces that it is read in, the last one of one byte.
    constexpr long long kMost = 2 * 0x10000 + 1;
    const TemporaryFolder folder;
    for (const long long size : {0LL, kMost - 1, kMost, kMost + 1, 2 * kMost}) {
        const std::string bytes(static_cast<std::size_t>(size), 'x');
        folder.Write(L"file", bytes);
        const std::optional<std::string> read = ReadFileBytes(folder.File(L"file"), kMost);
        EXPECT_EQ(read.has_value(), size <= kMost) << size;
        EXPECT_TRUE(!read || *read == bytes) << size;
    }
}

TEST(ReadFileBytes, GivesNothingForWhatCannotBeRead) {
    const TemporaryFolder folder;
    EXPECT_FALSE(ReadFileBytes(folder.File(L"missing"), 10));
    EXPECT_FALSE(ReadFileBytes(folder.Path(), 10));
}

TEST(ReadDocumentText, RefusesWhatTheAgentWouldNotReadToItsEnd) {
    const TemporaryFolder folder;
    folder.Write(L"text", "\xEF\xBB\xBF<a>\xC3\xA9</a>");
    EXPECT_EQ(ReadDocumentText(folder.File(L"text")), L"<a>\u00E9</a>");
    for (const std::string& bytes :
         {std::string("a\0b", 3), std::string("a\xE9"), std::string("\xFF\xFE<")}) {
        folder.Write(L"text", bytes);
        try {
            ReadDocumentText(folder.File(L"text"));
            ADD_FAILURE() << bytes;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.Code(), ExitCode::kDocumentRefused);
        }
    }
}

}  // namespace
