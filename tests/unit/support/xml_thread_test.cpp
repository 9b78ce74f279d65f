// What a document does to COM on its thread and to the server's library.

#include <gtest/gtest.h>

#include <thread>

#include "support/xml_parser.h"
#include "tests/unit/support/com_balance.h"

namespace {

TEST(ComBalance, WithoutADocumentNothingChanges) {
    EXPECT_EQ(InitialisationsLeftBy([] {}), 3);
}

TEST(ComBalance, InitDocumentAndTheDestructorAreEven) {
    EXPECT_EQ(InitialisationsLeftBy([] {
                  CXMLParser document;
                  EXPECT_TRUE(document.InitDocument());
              }),
              3);
}

TEST(ComBalance, ReleaseDocumentAndTheDestructorUninitialiseOnceEach) {
    EXPECT_EQ(InitialisationsLeftBy([] {
                  CXMLParser document;
                  EXPECT_TRUE(document.InitDocument());
                  document.ReleaseDocument();
              }),
              2);
}

TEST(ComBalance, ADocumentThatWasNeverInitialisedUninitialisesToo) {
    EXPECT_EQ(InitialisationsLeftBy([] { const CXMLParser document; }), 2);
}

TEST(ComBalance, AHoldPutsOffWhatIsOwedToItsEnd) {
    EXPECT_EQ(InitialisationsLeftBy([] {
                  const ComApartmentHold hold;
                  for (int i = 0; i < 2; ++i) {
                      CXMLParser document;
                      EXPECT_TRUE(document.InitDocument());
                      document.ReleaseDocument();
                  }
              }),
              1);
}

TEST(ComBalance, WithinAHoldTheThreadKeepsItsApartment) {
    std::thread([] {
        const ComApartmentHold hold;
        for (int i = 0; i < 2; ++i) {
            CXMLParser document;
            EXPECT_TRUE(document.InitDocument());
            document.ReleaseDocument();
        }
        APTTYPE type = {};
        APTTYPEQUALIFIER qualifier = {};
        EXPECT_EQ(CoGetApartmentType(&type, &qualifier), S_OK);
    }).join();
}

TEST(ComBalance, AnInnerHoldLeavesTheDebtToTheOuterOne) {
    EXPECT_EQ(InitialisationsLeftBy([] {
                  const ComApartmentHold outer;
                  {
                      const ComApartmentHold inner;
                      const CXMLParser document;
                  }
                  APTTYPE type = {};
                  APTTYPEQUALIFIER qualifier = {};
                  EXPECT_EQ(CoGetApartmentType(&type, &qualifier), S_OK);
              }),
              2);
}

TEST(ComBalance, TheHoldOfOneThreadIsNoneOfAnother) {
    const ComApartmentHold hold;
    EXPECT_EQ(InitialisationsLeftBy([] { const CXMLParser document; }), 2);
}

TEST(ServerLibrary, StaysLoadedWhenNoThreadHasComLeft) {
    std::thread([] {
        {
            CXMLParser document;
            ASSERT_TRUE(document.InitDocument());
        }
        while (TakeInitialisations() > 0) {
        }
    }).join();
    EXPECT_NE(GetModuleHandleW(L"msxml3.dll"), nullptr);
}

}  // namespace
