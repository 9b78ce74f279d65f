#include "support/xml_parser.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/unit/temporary_folder.h"
#include "tests/unit/text_printer.h"

namespace {

constexpr WideView kDeclaration = L"<?xml version='1.0' encoding='utf-8'?>\r\n";

/// The text of a document behind its declaration. How get_xml writes the declaration itself differs between
/// platforms.
CString BehindDeclaration(CXMLParser& document) {
    const CString text = document.GetDocumentText();
    const std::size_t end = text.find(L"?>\r\n");
    EXPECT_TRUE(text.starts_with(L"<?xml version=")) << testing::PrintToString(text);
    return end == CString::npos ? text : CString(text.substr(end + 4));
}

/// The names of a node's children in order. A document that is all elements is indented by some platforms on
/// their own, so what stands in it shows in the nodes and not in the text.
std::vector<CString> ChildNames(IXMLDOMNode* node) {
    std::vector<CString> names;
    ComPtr<IXMLDOMNode> child;
    node->get_firstChild(&child);
    while (child) {
        Bstr name;
        child->get_nodeName(name.Put());
        names.emplace_back(name.Get());
        ComPtr<IXMLDOMNode> next;
        child->get_nextSibling(&next);
        child = next;
    }
    return names;
}

class BuiltDocument : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(m_document.InitDocument());
        ASSERT_TRUE(m_document.CreateHeader());
        m_root = m_document.CreateRootElement(L"root");
        ASSERT_TRUE(m_root);
    }

    CXMLParser m_document;
    ComPtr<IXMLDOMElement> m_root;
};

TEST_F(BuiltDocument, IsTheSameCharacterByCharacter) {
    EXPECT_TRUE(m_document.SetAttribute(L"name", L"outlook", m_root.Get()));
    const ComPtr<IXMLDOMElement> node = m_document.CreateChildElement(L"node", L"", nullptr, true, 1);
    ASSERT_TRUE(node);
    EXPECT_TRUE(m_document.SetAttribute(L"class", L"IPF.Post", node.Get()));
    EXPECT_TRUE(m_document.SetAttribute(L"type", L"6", node.Get()));
    EXPECT_TRUE(m_document.CreateChildElement(L"fname", L"Mail", node.Get(), true, 2));
    EXPECT_TRUE(m_document.CreateChildElement(L"id", L"00FF", node.Get(), true, 2));
    EXPECT_FALSE(m_document.CreateChildElement(L"", nullptr, node.Get(), true, 1));
    EXPECT_FALSE(m_document.CreateChildElement(L"", nullptr, m_root.Get(), true, 0));

    EXPECT_EQ(BehindDeclaration(m_document),
              L"<root name=\"outlook\">\r\n"
              L"\t<node class=\"IPF.Post\" type=\"6\">\r\n"
              L"\t\t<fname>Mail</fname>\r\n"
              L"\t\t<id>00FF</id>\r\n"
              L"\t</node>\r\n"
              L"</root>\r\n");
}

TEST_F(BuiltDocument, BeginsWithTheDeclarationOnALineOfItsOwn) {
    const CString text = m_document.GetDocumentText();
    EXPECT_TRUE(text == CString(kDeclaration) + L"<root/>\r\n" ||
                text == L"<?xml version=\"1.0\"?>\r\n<root/>\r\n")
        << testing::PrintToString(text);
}

TEST_F(BuiltDocument, ElementWithEmptyTextIsThereAllTheSame) {
    m_document.CreateChildElement(L"empty", L"", nullptr, true, 1);
    m_document.CreateChildElement(L"bare", nullptr, nullptr, true, 1);
    EXPECT_EQ(m_document.GetDocumentText().find(L"\r\n\t<empty"),
              m_document.GetDocumentText().find(L"<root>") + 6);
    EXPECT_TRUE(m_document.SelectSingleNode(L"/root/empty"));
    EXPECT_TRUE(m_document.SelectSingleNode(L"/root/bare"));
}

TEST_F(BuiltDocument, DepthMinusOneWritesNoIndentation) {
    m_document.CreateChildElement(L"a", L"1", nullptr, true, -1);
    m_document.CreateChildElement(L"b", L"2", nullptr, true, -1);
    EXPECT_EQ(ChildNames(m_root.Get()), (std::vector<CString>{L"a", L"b"}));
}

TEST_F(BuiltDocument, DepthZeroWritesTheLineFeedAlone) {
    m_document.CreateChildElement(L"a", L"1", nullptr, true, 0);
    EXPECT_EQ(BehindDeclaration(m_document), L"<root>\r\n<a>1</a></root>\r\n");
}

TEST_F(BuiltDocument, EmptyNameAddsOnlyTheTextNode) {
    EXPECT_FALSE(m_document.CreateChildElement(L"", nullptr, nullptr, true, 2));
    EXPECT_EQ(BehindDeclaration(m_document), L"<root>\r\n\t\t</root>\r\n");
}

TEST_F(BuiltDocument, NullNameAddsNothing) {
    EXPECT_FALSE(m_document.CreateChildElement(nullptr, L"x", nullptr, true, 1));
    EXPECT_EQ(BehindDeclaration(m_document), L"<root/>\r\n");
}

TEST_F(BuiltDocument, WithoutTheAppendFlagTheElementIsUnattached) {
    const ComPtr<IXMLDOMElement> element = m_document.CreateChildElement(L"a", L"1", nullptr, false, -1);
    ASSERT_TRUE(element);
    EXPECT_EQ(m_document.GetNodeText(element.Get()), L"1");
    ComPtr<IXMLDOMNode> parent;
    EXPECT_EQ(element->get_parentNode(&parent), S_FALSE);
    EXPECT_EQ(BehindDeclaration(m_document), L"<root/>\r\n");
}

TEST_F(BuiltDocument, AppendIndentNeedsADepthAndAParent) {
    m_document.AppendIndent(-1, m_root.Get());
    m_document.AppendIndent(3, nullptr);
    EXPECT_EQ(BehindDeclaration(m_document), L"<root/>\r\n");
    m_document.AppendIndent(3, m_root.Get());
    EXPECT_EQ(BehindDeclaration(m_document), L"<root>\r\n\t\t\t</root>\r\n");
}

TEST_F(BuiltDocument, MarkupInTextsIsEscaped) {
    m_document.SetAttribute(L"a", L"<\"&", m_root.Get());
    m_document.CreateChildElement(L"t", L"a<b>&c", nullptr, true, 0);
    EXPECT_EQ(BehindDeclaration(m_document),
              L"<root a=\"&lt;&quot;&amp;\">\r\n<t>a&lt;b&gt;&amp;c</t></root>\r\n");
}

TEST_F(BuiltDocument, WhatXmlCannotCarryIsLeftOut) {
    m_document.SetAttribute(L"a",
                            L"1\x0001\xFFFE"
                            L"2",
                            m_root.Get());
    m_document.CreateChildElement(L"t",
                                  L"3\x000B\xD800"
                                  L"4",
                                  nullptr, true, 0);
    EXPECT_EQ(BehindDeclaration(m_document), L"<root a=\"12\">\r\n<t>34</t></root>\r\n");
}

TEST_F(BuiltDocument, SetAttributeNeedsAValueAndAnElement) {
    EXPECT_FALSE(m_document.SetAttribute(L"a", nullptr, m_root.Get()));
    EXPECT_FALSE(m_document.SetAttribute(L"a", L"x", nullptr));
    m_document.AppendIndent(1, m_root.Get());
    ComPtr<IXMLDOMNode> text;
    ASSERT_EQ(m_root->get_firstChild(&text), S_OK);
    EXPECT_FALSE(m_document.SetAttribute(L"a", L"x", text.Get()));
}

TEST_F(BuiltDocument, AttributesKeepTheOrderAndAnEmptyValueIsOne) {
    EXPECT_TRUE(m_document.SetAttribute(L"z", L"1", m_root.Get()));
    EXPECT_TRUE(m_document.SetAttribute(L"a", L"", m_root.Get()));
    EXPECT_EQ(BehindDeclaration(m_document), L"<root z=\"1\" a=\"\"/>\r\n");
}

TEST_F(BuiltDocument, NullRootNameLetsGoOfTheRootAndAddsNothing) {
    EXPECT_FALSE(m_document.CreateRootElement(nullptr));
    EXPECT_FALSE(m_document.CreateChildElement(L"a", L"1", nullptr, true, 1));
    EXPECT_EQ(BehindDeclaration(m_document), L"<root/>\r\n");
}

TEST_F(BuiltDocument, IsSavedInUtf8) {
    m_document.CreateChildElement(L"t", L"\x00E9\xD83D\xDE00", nullptr, true, 1);
    const TemporaryFolder folder;
    ASSERT_TRUE(m_document.SaveToFile(folder.File(L"out.xml").c_str()));
    const std::string bytes = folder.Read(L"out.xml");
    EXPECT_NE(bytes.find("encoding='utf-8'?>"), std::string::npos) << bytes;
    EXPECT_NE(bytes.find("\n\t<t>\xC3\xA9\xF0\x9F\x98\x80</t>"), std::string::npos) << bytes;
}

TEST_F(BuiltDocument, IsNotSavedToAFolderThatIsNotThere) {
    const TemporaryFolder folder;
    EXPECT_FALSE(m_document.SaveToFile(folder.File(L"none\\out.xml").c_str()));
    EXPECT_FALSE(m_document.SaveToFile(L""));
    EXPECT_FALSE(m_document.SaveToFile(nullptr));
}

TEST_F(BuiltDocument, ReleaseDocumentLeavesNothingAndAnotherCanBeMade) {
    m_root.Reset();
    m_document.ReleaseDocument();
    EXPECT_EQ(m_document.GetDocumentText(), L"");
    EXPECT_FALSE(m_document.CreateChildElement(L"a", L"1", nullptr, true, 1));
    ASSERT_TRUE(m_document.InitDocument());
    m_document.CreateRootElement(L"again");
    EXPECT_EQ(m_document.GetDocumentText(), L"<again/>\r\n");
}

TEST(CXMLParser, WithoutInitDocumentEverythingFailsQuietly) {
    CXMLParser document;
    document.LoadText(L"<a/>");
    document.AppendIndent(1, nullptr);
    EXPECT_FALSE(document.CreateHeader());
    EXPECT_FALSE(document.CreateRootElement(L"a"));
    EXPECT_FALSE(document.CreateChildElement(L"a", L"1", nullptr, true, 1));
    EXPECT_FALSE(document.SelectSingleNode(L"/a"));
    EXPECT_EQ(document.GetDocumentText(), L"");
    EXPECT_FALSE(document.SaveToFile(L"out.xml"));
}

class ReadDocument : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(m_document.InitDocument()); }

    CString TextOf(const wchar_t* path) {
        return m_document.GetNodeText(m_document.SelectSingleNode(path).Get());
    }

    CXMLParser m_document;
};

TEST_F(ReadDocument, GivesTheTextsOfItsElements) {
    m_document.LoadText(
        L"<?xml version='1.0' encoding='utf-8'?>\r\n<Contact>\r\n\t<PIMID>0A</PIMID>\r\n"
        L"\t<Name>\x00E9 &lt;b&gt; &#x1F600;</Name>\r\n</Contact>");
    EXPECT_EQ(TextOf(L"/Contact/PIMID"), L"0A");
    EXPECT_EQ(TextOf(L"/Contact/Name"), L"\x00E9 <b> \xD83D\xDE00");
}

TEST_F(ReadDocument, SelectsTheFirstOfSeveralAndNullForNone) {
    m_document.LoadText(L"<a><b>1</b><b>2</b></a>");
    EXPECT_EQ(TextOf(L"/a/b"), L"1");
    EXPECT_FALSE(m_document.SelectSingleNode(L"/a/c"));
    EXPECT_FALSE(m_document.SelectSingleNode(L"/b"));
    EXPECT_FALSE(m_document.SelectSingleNode(L"/A/b"));
}

TEST_F(ReadDocument, EmptyAndNullPathGiveNull) {
    m_document.LoadText(L"<a/>");
    EXPECT_FALSE(m_document.SelectSingleNode(L""));
    EXPECT_FALSE(m_document.SelectSingleNode(nullptr));
}

TEST_F(ReadDocument, TextIncludesThatOfTheDescendants) {
    m_document.LoadText(L"<a><b>1<c>2</c>3</b></a>");
    EXPECT_EQ(TextOf(L"/a/b"), L"123");
}

TEST_F(ReadDocument, TextOfNullAndOfAnEmptyElementIsEmpty) {
    m_document.LoadText(L"<a><b></b></a>");
    EXPECT_EQ(m_document.GetNodeText(nullptr), L"");
    EXPECT_EQ(TextOf(L"/a/b"), L"");
    EXPECT_TRUE(m_document.SelectSingleNode(L"/a/b"));
}

TEST_F(ReadDocument, TheRootTakesNewChildren) {
    m_document.LoadText(L"<a><b>1</b></a>");
    EXPECT_TRUE(m_document.CreateChildElement(L"c", L"2", nullptr, true, 0));
    EXPECT_EQ(m_document.GetDocumentText(), L"<a><b>1</b>\r\n<c>2</c></a>\r\n");
}

}  // namespace
