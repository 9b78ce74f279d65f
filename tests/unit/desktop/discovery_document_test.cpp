#include "desktop/discovery_document.h"

#include <gtest/gtest.h>

#include "desktop/failure.h"

namespace {

TEST(ParseProfiles, TakesNamesAndTheMark) {
    const auto profiles = ParseProfiles(
        L"<?xml version='1.0' encoding='utf-8'?>\n<profiles name=\"outlook\">\n\t<node "
        L"default=\"false\">\n\t\t<pname>A &amp; B</pname>\n\t</node>\n\t<node "
        L"default=\"true\">\n\t\t<pname>Zo\u00EB</pname>\n\t</node>\n</profiles>");
    ASSERT_EQ(profiles.size(), 2U);
    EXPECT_EQ(profiles[0].name, L"A & B");
    EXPECT_FALSE(profiles[0].isDefault);
    EXPECT_EQ(profiles[1].name, L"Zo\u00EB");
    EXPECT_TRUE(profiles[1].isDefault);
}

TEST(ParseFolders, TakesTheTreeInItsOrder) {
    const auto folders = ParseFolders(
        L"<folders name=\"outlook\"><node class=\"IPF.Post\" type=\"6\" default=\"true\"><fname>S</fname>"
        L"<id>A0</id><node class=\"IPF.Contact\" type=\"2\" default=\"true\"><fname>C</fname><id>A1</id>"
        L"<node class=\"\" type=\"6\" default=\"false\"><fname/><id>A2</id></node></node>"
        L"<node class=\"IPF.Note\" type=\"0\" default=\"false\"><fname>I</fname><id>A3</id></node></node>"
        L"<node class=\"IPF.Post\" type=\"6\" "
        L"default=\"false\"><fname>T</fname><id>B0</id></node></folders>");
    ASSERT_EQ(folders.size(), 5U);
    const CString ids[] = {L"A0", L"A1", L"A2", L"A3", L"B0"};
    const CString names[] = {L"S", L"C", L"", L"I", L"T"};
    const CString classes[] = {L"IPF.Post", L"IPF.Contact", L"", L"IPF.Note", L"IPF.Post"};
    const std::size_t depths[] = {0, 1, 2, 1, 0};
    for (std::size_t i = 0; i < folders.size(); ++i) {
        EXPECT_EQ(folders[i].id, ids[i]);
        EXPECT_EQ(folders[i].name, names[i]);
        EXPECT_EQ(folders[i].containerClass, classes[i]);
        EXPECT_EQ(folders[i].depth, depths[i]);
        EXPECT_EQ(folders[i].isDefault, i < 2);
    }
}

TEST(ParseFolders, TakesADocumentWithoutStores) {
    EXPECT_TRUE(ParseFolders(L"<folders name=\"outlook\">\n</folders>").empty());
    EXPECT_TRUE(ParseProfiles(L"<profiles name=\"outlook\"/>").empty());
}

TEST(ParseFolders, RefusesOtherTexts) {
    for (const wchar_t* text : {L"", L"<folders", L"<profiles/>", L"<folders><node></folders>"}) {
        EXPECT_THROW(ParseFolders(text), Failure) << CString(text).size();
    }
    EXPECT_THROW(ParseProfiles(L"<folders/>"), Failure);
}

}  // namespace
