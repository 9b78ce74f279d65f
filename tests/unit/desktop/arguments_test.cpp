#include "desktop/arguments.h"

#include <gtest/gtest.h>

#include "desktop/failure.h"
#include "tests/unit/text_printer.h"

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
    const Arguments arguments = ParseArguments({WIDE("--out"), WIDE("a folder"), WIDE("read"),
                                                WIDE("--profile=Second=home"), WIDE("contacts"), WIDE("-q")});
    EXPECT_EQ(arguments.words, (std::vector<CString>{WIDE("read"), WIDE("contacts")}));
    EXPECT_EQ(arguments.out, WIDE("a folder"));
    EXPECT_EQ(arguments.profile, WIDE("Second=home"));
    EXPECT_TRUE(arguments.Has(kOptionQuiet));
    EXPECT_FALSE(arguments.Has(kOptionXml));
}

TEST(Arguments, AreAllWordsBehindTwoHyphens) {
    const Arguments arguments = ParseArguments({WIDE("count"), WIDE("--"), WIDE("--xml"), WIDE("-")});
    EXPECT_EQ(arguments.words, (std::vector<CString>{WIDE("count"), WIDE("--xml"), WIDE("-")}));
    EXPECT_EQ(arguments.options, 0U);
}

TEST(Arguments, TakesAValueThatLooksLikeAnOption) {
    EXPECT_EQ(ParseArguments({WIDE("--profile"), WIDE("--xml")}).profile, WIDE("--xml"));
}

TEST(Arguments, MayNameTheDefaultProfileByAnEmptyText) {
    const Arguments arguments = ParseArguments({WIDE("count"), WIDE("--profile"), WIDE("")});
    EXPECT_TRUE(arguments.Has(kOptionProfile));
    EXPECT_EQ(arguments.profile, WIDE(""));
}

TEST(Arguments, AreRefusedIfTheyMakeNoSense) {
    EXPECT_EQ(UsageFailure({WIDE("--nothing")}), WIDE("there is no option --nothing"));
    EXPECT_EQ(UsageFailure({WIDE("--out")}), WIDE("--out needs a value"));
    EXPECT_EQ(UsageFailure({WIDE("--out=")}), WIDE("--out needs the name of a folder"));
    EXPECT_EQ(UsageFailure({WIDE("--changed=")}), WIDE("--changed needs the name of a map file"));
    for (const wide* id : {WIDE(""), WIDE("A"), WIDE("00AG"), WIDE("<id>00AB</id>"), WIDE("00 AB")}) {
        EXPECT_EQ(UsageFailure({WIDE("--folder"), id}),
                  WIDE("--folder needs an identifier as \"zebdesk folders\" shows it"));
    }
    EXPECT_EQ(UsageFailure({WIDE("--folder=00aBF9")}), WIDE(""));
    EXPECT_EQ(UsageFailure({WIDE("--delete"), WIDE("<PIMID>")}),
              WIDE("--delete needs an identifier as the PIMID of a document shows it"));
    EXPECT_EQ(UsageFailure({WIDE("--xml=yes")}), WIDE("--xml takes no value"));
    EXPECT_EQ(UsageFailure({WIDE("read"), WIDE("contacts")}), WIDE(""));
}

TEST(Arguments, AreNamedAsTheUserWritesThem) {
    EXPECT_EQ(OptionName(kOptionHelp), WIDE("--help"));
    EXPECT_EQ(OptionName(kOptionQuiet), WIDE("--quiet"));
    for (unsigned option = kOptionHelp; option <= kOptionNew; option *= 2) {
        const CString name = OptionName(static_cast<Option>(option));
        EXPECT_EQ(ParseArguments({name, WIDE("00AB")}).options, option) << option;
    }
}

TEST(Arguments, ThatAreRefusedEndInAFailureThatIsAnException) {
    try {
        ParseArguments({WIDE("--nothing")});
        FAIL() << "the option was taken";
    } catch (const std::exception& exception) {
        EXPECT_STREQ(exception.what(), "desktop program failure");
    }
}

}  // namespace
