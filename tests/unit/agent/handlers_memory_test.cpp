// The writing procedure without memory: each of its allocations fails in turn.

#include <gtest/gtest.h>

#include "tests/unit/agent/write_outputs.h"
#include "tests/unit/localstore/scarce_memory.h"
#include "tests/unit/recorded_log.h"
#include "tests/unit/text_printer.h"

namespace {

TEST(HandlersWithoutMemory, WriteFailsWithoutATimeOrSucceedsWithOne) {
    const CString sent(WideString(60, L'A'));
    CString xml = L"<Contact><PIMID>" + sent + L"</PIMID><lFlag>4</lFlag><Mobile>5</Mobile></Contact>";
    for (const bool forever : {false, true}) {
        int failures = 0;
        bool hasFailed = true;
        for (std::size_t n = 1; hasFailed; ++n) {
            SCOPED_TRACE(testing::Message() << "allocation " << n << (forever ? " and all behind it" : ""));
            const CString before = Present();
            WriteOutputs out;
            {
                const localstore_test::ScarceMemory scarce(n, forever);
                WriteContacts(xml.data(), out.id, out.time, &out.status);
                hasFailed = scarce.HasFailed();
            }
            const CString id(out.id);
            EXPECT_TRUE(id.empty() || id == sent) << testing::PrintToString(id);
            if (out.status == 0) {
                EXPECT_TRUE(IsThePresent(out.time, before)) << testing::PrintToString(CString(out.time));
            } else {
                EXPECT_EQ(out.status, 1);
                EXPECT_EQ(CString(out.time), L"");
                ++failures;
            }
            if (!hasFailed) {
                EXPECT_EQ(out.status, 0);
                EXPECT_EQ(id, sent);
            }
            EXPECT_EQ(out.id[400], L'#');
            EXPECT_EQ(out.time[40], L'#');
        }
        EXPECT_GT(failures, 0);
    }
    TakeLog();
}

}  // namespace
