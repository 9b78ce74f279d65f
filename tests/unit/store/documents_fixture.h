#pragma once

// What the tests of the profile document and the folder document share.

#include <mapitags.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "mapi/hex_text.h"
#include "support/settings.h"
#include "tests/unit/store/store_fixture.h"

inline std::string Narrow(const CString& text) {
    std::string narrow;
    for (const wchar_t unit : text) {
        narrow += static_cast<char>(unit);
    }
    return narrow;
}

class Documents : public StoreTest {
  protected:
    static constexpr const char* kDeclaration = "<?xml version='1.0' encoding='utf-8'?>\n";

    void SetUp() override {
        StoreTest::SetUp();
        m_documents = m_root + L"-documents";
        std::filesystem::create_directories(m_documents);
        g_strOutlookXml = CString((m_documents + L"\\Outlook.xml").c_str());
        g_strProfileXml = CString((m_documents + L"\\Profile.xml").c_str());
    }
    void TearDown() override {
        g_strOutlookXml.clear();
        g_strProfileXml.clear();
        StoreTest::TearDown();
        std::error_code ignored;
        std::filesystem::remove_all(m_documents, ignored);
    }

    /// A saved document behind its declaration, with the line ends as they are in the file.
    static std::string Saved(const CString& path) {
        std::ifstream file(std::filesystem::path(path.c_str()), std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        EXPECT_TRUE(text.starts_with(kDeclaration)) << text;
        // Behind the root element the platform's service may write a line end of its own.
        return text.substr(std::min(text.size(), std::string(kDeclaration).size()),
                           text.find_last_of('>') - std::string(kDeclaration).size() + 1);
    }
    /// A folder of the document without sub-folders, at a depth.
    static std::string Node(const char* attributes, const std::string& name, const std::string& id,
                            int depth) {
        const std::string tabs(static_cast<std::size_t>(depth), '\t');
        return "\n" + tabs + "<node " + attributes + ">\n" + tabs + "\t<fname>" + name + "</fname>\n" + tabs +
               "\t<id>" + id + "</id>\n" + tabs + "</node>";
    }
    /// The folders that every store here has, none of them with sub-folders.
    static std::string DefaultFolders() {
        return Node(R"(class="IPF.Appointment" type="1" default="true")", "Calendar",
                    Narrow(FolderId(L"Calendar")), 2) +
               Node(R"(class="IPF.Contact" type="2" default="true")", "Contacts",
                    Narrow(FolderId(L"Contacts")), 2) +
               Node(R"(class="IPF.Note" type="0" default="false")", "Inbox", Narrow(FolderId(L"Inbox")), 2);
    }
    /// The identifier of the first store of a document.
    static std::string FirstIdOf(const std::string& document) {
        const std::size_t begin = document.find("<id>") + 4;
        return document.substr(begin, document.find("</id>") - begin);
    }
    static std::string StoreId() {
        MapiBuffer<SPropValue> id;
        EXPECT_EQ(pfnHrGetOneProp(g_MAPIObject.m_lpMsgStore.Get(), PR_ENTRYID, id.Put()), S_OK);
        return Narrow(BinaryToHexString(id->Value.bin.lpb, id->Value.bin.cb));
    }
    static std::ptrdiff_t LinesOf(const LogLines& log, const wchar_t* text) {
        return std::count(log.begin(), log.end(), LogLine{1, text});
    }

    std::wstring m_documents;
    wchar_t m_buffer[2] = L"x";
};
