#include <gtest/gtest.h>

#include "support/xml_parser.h"
#include "tests/unit/temporary_folder.h"
#include "tests/unit/text_printer.h"

namespace {

class HostileText : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(m_document.InitDocument()); }

    /// True if the text was loaded: only then is there a root, which takes a child.
    bool Loads(const CString& text) {
        m_document.LoadText(text);
        return m_document.CreateChildElement(L"child", nullptr, nullptr, true, -1) != nullptr;
    }

    CXMLParser m_document;
};

TEST_F(HostileText, WhatIsNotWellFormedLeavesNoRootAndNothingToSelect) {
    for (const wchar_t* text : {L"", L" ", L"no markup", L"<", L"<a>", L"<a></b>", L"<a/><b/>", L"<a b=c/>",
                                L"</a>", L"<a>&none;</a>", L"<a>&#0;</a>", L"<a>&#x1F;</a>", L"<a>\x0001</a>",
                                L"<1/>", L"<?xml version='1.0'?>",

                                L"<a b='1' b='2'/>", L"<!-- -- --><a/>", L"<a>]]></a>", L"<a"}) {
        CXMLParser document;
        ASSERT_TRUE(document.InitDocument());
        document.LoadText(text);
        EXPECT_FALSE(document.CreateChildElement(L"child", nullptr, nullptr, true, -1))
            << testing::PrintToString(CString(text));
        EXPECT_FALSE(document.SelectSingleNode(L"/a")) << testing::PrintToString(CString(text));
        EXPECT_FALSE(document.SelectSingleNode(L"//*")) << testing::PrintToString(CString(text));
    }
}

TEST_F(HostileText, DocumentTypeDeclarationIsRefused) {
    EXPECT_FALSE(Loads(L"<!DOCTYPE a [<!ENTITY e 'text'>]><a>&e;</a>"));
    EXPECT_FALSE(Loads(L"<?xml version='1.0'?><!-- c --><!DOCTYPE a><a/>"));
    EXPECT_FALSE(m_document.SelectSingleNode(L"/a"));
}

TEST_F(HostileText, EntitiesThatGrowWithoutBoundAreNotExpanded) {
    CString text(L"<!DOCTYPE a [<!ENTITY e0 'xxxxxxxxxx'>");
    for (int level = 1; level < 12; ++level) {
        text += CString::Format(L"<!ENTITY e%d '", level);
        for (int count = 0; count < 10; ++count) {
            text += CString::Format(L"&e%d;", level - 1);
        }
        text += L"'>";
    }
    text += L"]><a>&e11;</a>";
    EXPECT_FALSE(Loads(text));
}

TEST_F(HostileText, ExternalEntityIsNotFetched) {
    const TemporaryFolder folder;
    folder.Write(L"secret.txt", "secret");
    const CString path = folder.File(L"secret.txt");
    EXPECT_FALSE(Loads(CString::Format(L"<!DOCTYPE a [<!ENTITY e SYSTEM '%s'>]><a>&e;</a>", path.c_str())));
    EXPECT_EQ(m_document.GetDocumentText().find(L"secret"), CString::npos);
}

TEST_F(HostileText, TextOfAMegabyteIsRead) {
    const CString content(WideString(1 << 20, L'x'));
    ASSERT_TRUE(Loads(L"<a><b>" + content + L"</b></a>"));
    EXPECT_TRUE(m_document.GetNodeText(m_document.SelectSingleNode(L"/a/b").Get()) == content);
}

TEST_F(HostileText, TextOfNineMillionCharactersIsRead) {
    CString content;
    content.assign(9'000'000, L'x');
    ASSERT_TRUE(Loads(L"<a>" + content + L"</a>"));
    EXPECT_EQ(m_document.GetNodeText(m_document.SelectSingleNode(L"/a").Get()).size(), content.size());
}

TEST_F(HostileText, MegabyteThatIsNoXmlIsNot) {
    EXPECT_FALSE(Loads(CString(WideString(1 << 20, L'<'))));
}

TEST_F(HostileText, ElementsIn250LevelsAreRead) {
    CString head;
    CString tail;
    for (int depth = 0; depth < 250; ++depth) {
        head += L"<a>";
        tail += L"</a>";
    }
    ASSERT_TRUE(Loads(head + L"x" + tail));
    EXPECT_EQ(m_document.GetNodeText(m_document.SelectSingleNode(L"/a").Get()), L"x");
}

TEST_F(HostileText, ElementsNestedBeyondReasonDoNotEndTheProcess) {
    CString text;
    for (int depth = 0; depth < 100000; ++depth) {
        text += L"<a>";
    }
    EXPECT_FALSE(Loads(text));
}

/// Every 16-bit unit but 0, in order, behind a letter, for leading white space is trimmed from a text that is
/// read.
CString AllUnits() {
    CString text(L"a");
    for (unsigned unit = 1; unit <= 0xFFFF; ++unit) {
        text += static_cast<wchar_t>(unit);
    }
    return text;
}

/// What production 2 of XML 1.0 permits of that. The last high and the first low surrogate stand together and
/// are a pair.
CString AllPermittedUnits() {
    CString text(L"a\t\n\r");
    for (unsigned unit = 0x20; unit <= 0xFFFD; ++unit) {
        if (unit < 0xD800 || unit > 0xDFFF || unit == 0xDBFF || unit == 0xDC00) {
            text += static_cast<wchar_t>(unit);
        }
    }
    return text;
}

/// A line end can be written as LF, CR LF or CR; a reader sees one LF.
CString WithPlainLineEnds(const CString& text) {
    CString result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != L'\r') {
            result += text[i];
        } else if (i + 1 == text.size() || text[i + 1] != L'\n') {
            result += L'\n';
        }
    }
    return result;
}

class HostileContent : public HostileText {
  protected:
    void SetUp() override {
        HostileText::SetUp();
        ASSERT_TRUE(m_document.CreateHeader());
        m_root = m_document.CreateRootElement(L"root");
        ASSERT_TRUE(m_document.CreateChildElement(L"t", AllUnits().c_str(), nullptr, true, 1));
        ASSERT_TRUE(m_document.SetAttribute(L"all", AllUnits().c_str(), m_root.Get()));
    }

    ComPtr<IXMLDOMElement> m_root;
};

TEST_F(HostileContent, DocumentWithAllUnitsParsesAgainAndGivesThePermittedOnes) {
    CXMLParser again;
    ASSERT_TRUE(again.InitDocument());
    again.LoadText(m_document.GetDocumentText());
    const CString text = again.GetNodeText(again.SelectSingleNode(L"/root/t").Get());
    EXPECT_TRUE(WithPlainLineEnds(text) == WithPlainLineEnds(AllPermittedUnits())) << text.size();
    const CString attribute = again.GetNodeText(again.SelectSingleNode(L"/root/@all").Get());
    EXPECT_TRUE(attribute == AllPermittedUnits()) << attribute.size();
}

TEST_F(HostileContent, FileWithAllUnitsIsAsGoodAsTheText) {
    const TemporaryFolder folder;
    ASSERT_TRUE(m_document.SaveToFile(folder.File(L"all.xml").c_str()));
    const std::string bytes = folder.Read(L"all.xml");
    const int size = static_cast<int>(bytes.size());
    const int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), size, nullptr, 0);
    ASSERT_GT(length, 0);
    CString text(WideString(static_cast<std::size_t>(length), L' '));
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), size, text.data(), length);

    CXMLParser again;
    ASSERT_TRUE(again.InitDocument());
    again.LoadText(text.substr(text.find(L"?>") + 2));
    const CString read = again.GetNodeText(again.SelectSingleNode(L"/root/t").Get());
    EXPECT_TRUE(WithPlainLineEnds(read) == WithPlainLineEnds(AllPermittedUnits())) << read.size();
}

}  // namespace
