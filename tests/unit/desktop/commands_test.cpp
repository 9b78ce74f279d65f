#include "desktop/commands.h"

#include <gtest/gtest.h>

#include "desktop/failure.h"

namespace {

TEST(Commands, AreRefusedBeforeAnythingHappens) {
    for (const std::vector<CString>& arguments : std::vector<std::vector<CString>>{
             {},
             {L"sing"},
             {L"read"},
             {L"read", L"letters"},
             {L"read", L"contacts", L"twice"},
             {L"read", L"contacts", L"--out=x", L"--xml"},
             {L"count", L"--out", L"x"},
             {L"shutdown", L"--profile", L"x"},
             {L"help", L"me"},
             {L"convert"},
             {L"convert", L"--out", L"x", L"-"},
             {L"write"},
             {L"write", L"contacts"},
             {L"write", L"letters", L"x.xml"},
             {L"write", L"calendars"},
             {L"write", L"contacts", L"x.xml", L"--delete", L"00AB"},
         }) {
        EXPECT_EQ(RunDesktop(arguments), ExitCode::kUsage);
    }
}

TEST(Commands, ExplainThemselves) {
    EXPECT_EQ(RunDesktop({L"help"}), ExitCode::kOk);
    EXPECT_EQ(RunDesktop({L"read", L"-h"}), ExitCode::kOk);
}

}  // namespace
