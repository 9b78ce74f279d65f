// A document whose reading an exception ends: each allocation fails in turn.

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "contacts/contact_xml_input.h"
#include "tests/unit/localstore/scarce_memory.h"
#include "tests/unit/recorded_log.h"
#include "tests/unit/support/com_balance.h"
#include "tests/unit/text_printer.h"

namespace {

using Entries = std::vector<std::pair<std::int32_t, CString>>;

constexpr const wchar_t* kDocument =
    L"<Contact><lFlag>8</lFlag><FullName>a full name of some length</FullName><FirstName>a first "
    L"name</FirstName><Mobile>0123456789</Mobile><Body>some notes of a length</Body></Contact>";

Entries EntriesOf(const CContactEx& contact) {
    Entries entries;
    for (const auto& entry : contact.m_arrFields) {
        entries.emplace_back(entry->m_nFieldId, entry->m_strValue);
    }
    return entries;
}

TEST(InterruptedContactXml, WhatHasBeenFoundStandsAndNoLineTellsOfTheEnd) {
    const Entries all{{5, L"a full name of some length"},
                      {1, L"a first name"},
                      {104, L"0123456789"},
                      {3002, L"some notes of a length"}};
    const LogLines line{{1, L"---------------140123456789"}};
    const CString xml(kDocument);
    std::vector<bool> seen(all.size() + 1, false);
    bool hasFailed = true;
    TakeLog();
    for (std::size_t n = 1; hasFailed; ++n) {
        SCOPED_TRACE(testing::Message() << "allocation " << n << " and all behind it");
        CContactEx contact;
        int result = -1;
        {
            const localstore_test::ScarceMemory scarce(n, true);
            result = ParseContactXml(xml, contact);
            hasFailed = scarce.HasFailed();
        }
        EXPECT_EQ(result, 1);
        const Entries found = EntriesOf(contact);
        ASSERT_LE(found.size(), all.size());
        EXPECT_EQ(found, Entries(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(found.size())));
        EXPECT_TRUE(contact.m_lFlag == 8 || found.empty());
        seen[found.size()] = true;
        // The number's own line, unless there was no memory for that either.
        const LogLines log = TakeLog();
        EXPECT_TRUE(log.empty() || log == line) << testing::PrintToString(log);
        if (!hasFailed) {
            EXPECT_EQ(found, all);
        }
    }
    EXPECT_EQ(seen, std::vector<bool>(all.size() + 1, true));
}

TEST(InterruptedContactXml, LeavesComAsItWasWhereAParseToTheEndUninitialisesItOnceMore) {
    for (const wchar_t* const xml : {kDocument, L"no document"}) {
        EXPECT_EQ(InitialisationsLeftBy([xml] {
                      CContactEx contact;
                      EXPECT_EQ(ParseContactXml(xml, contact), 1);
                  }),
                  2);
    }
    int result = -1;
    EXPECT_EQ(InitialisationsLeftBy([&result] {
                  const CString xml(kDocument);
                  CContactEx contact;
                  const localstore_test::ScarceMemory scarce(1, true);
                  result = ParseContactXml(xml, contact);
              }),
              3);
    EXPECT_EQ(result, 1);
    TakeLog();
}

}  // namespace
