#include "desktop/arguments.h"

#include <gtest/gtest.h>

#include "desktop/commands.h"
#include "desktop/failure.h"

namespace {

/// The message of the usage failure that the arguments lead to, or an empty text.
CString UsageFailure(const std::vector<CString>& arguments) {
    try {
        ParseArguments(arguments);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Code(), ExitCode::kUsage);
        return failure.Message();
    }
    return {};
}

TEST(Arguments, TakesOptionsAnywhere) {
    const Arguments arguments =
        ParseArguments({L"--out", L"a folder", L"read", L"--profile=Second=home", L"contacts", L"-q"});
    EXPECT_EQ(arguments.words, (std::vector<CString>{L"read", L"contacts"}));
    EXPECT_EQ(arguments.out, L"a folder");
    EXPECT_EQ(arguments.profile, L"Second=home");
    EXPECT_TRUE(arguments.Has(kOptionQuiet));
    EXPECT_FALSE(arguments.Has(kOptionXml));
}

TEST(Arguments, AreAllWordsBehindTwoHyphens) {
    const Arguments arguments = ParseArguments({L"count", L"--", L"--xml", L"-"});
    EXPECT_EQ(arguments.words, (std::vector<CString>{L"count", L"--xml", L"-"}));
    EXPECT_EQ(arguments.options, 0U);
}

TEST(Arguments, TakesAValueThatLooksLikeAnOption) {
    EXPECT_EQ(ParseArguments({L"--profile", L"--xml"}).profile, L"--xml");
}

TEST(Arguments, MayNameTheDefaultProfileByAnEmptyText) {
    const Arguments arguments = ParseArguments({L"count", L"--profile", L""});
    EXPECT_TRUE(arguments.Has(kOptionProfile));
    EXPECT_EQ(arguments.profile, L"");
}

TEST(Arguments, AreRefusedIfTheyMakeNoSense) {
    EXPECT_EQ(UsageFailure({L"--nothing"}), L"there is no option --nothing");
    EXPECT_EQ(UsageFailure({L"--out"}), L"--out needs a value");
    EXPECT_EQ(UsageFailure({L"--out="}), L"--out needs the name of a folder");
    for (const wchar_t* id : {L"", L"A", L"00AG", L"<id>00AB</id>", L"00 AB"}) {
        EXPECT_EQ(UsageFailure({L"--folder", id}),
                  L"--folder needs an identifier as \"zebdesk folders\" shows it");
    }
    EXPECT_EQ(UsageFailure({L"--folder=00aBF9"}), L"");
    EXPECT_EQ(UsageFailure({L"--delete", L"<PIMID>"}),
              L"--delete needs an identifier as the PIMID of a document shows it");
    EXPECT_EQ(UsageFailure({L"--xml=yes"}), L"--xml takes no value");
    EXPECT_EQ(UsageFailure({L"read", L"contacts"}), L"");
}

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
