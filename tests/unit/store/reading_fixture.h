#pragma once

// What the tests of reading contacts and of reading appointments share.

#include <algorithm>

#include <mapitags.h>

#include "localstore/recorder.h"
#include "tests/unit/store/store_fixture.h"

class ReadingTest : public StoreTest {
  protected:
    static bool Contains(const CString& text, const wchar_t* part) {
        return text.find(part) != CString::npos;
    }
    /// The number of the last call of a method since logon, from 1 on; 0 if there was none.
    static std::size_t LastCallOf(const std::string& method) {
        const std::vector<localstore::recorder::Call> calls = localstore::recorder::Calls();
        const auto last =
            std::find_if(calls.rbegin(), calls.rend(),
                         [&](const localstore::recorder::Call& call) { return call.method == method; });
        return static_cast<std::size_t>(calls.rend() - last);
    }
    /// The number of the nth call of a method since logon, from 1 on.
    static std::size_t NthCallOf(const std::string& method, std::size_t n) {
        const std::vector<localstore::recorder::Call> calls = localstore::recorder::Calls();
        for (std::size_t i = 0; i < calls.size(); ++i) {
            if (calls[i].method == method && --n == 0) {
                return i + 1;
            }
        }
        return 0;
    }
    /// What the calls of a method since logon were made with.
    static std::vector<std::string> ArgumentsOf(const std::string& method) {
        std::vector<std::string> arguments;
        for (const localstore::recorder::Call& call : localstore::recorder::Calls()) {
            if (call.method == method) {
                arguments.push_back(call.arguments);
            }
        }
        return arguments;
    }
    /// Expects that the chosen folder was asked for its own properties twice, for the count and for the read,
    /// that the folder was opened for each of them, and then one message.
    static void ExpectFolderAndMessageWereAskedForAsTheyAre() {
        const std::string own = "0x3001001F,0x0FFF0102 flags=0x80000000";
        EXPECT_EQ(ArgumentsOf("IMAPIFolder::GetProps"), (std::vector<std::string>{own, own}));
        std::vector<std::string> flags;
        for (const std::string& opened : ArgumentsOf("IMAPIFolder::OpenEntry")) {
            flags.push_back(opened.substr(opened.rfind("flags=")));
        }
        EXPECT_EQ(flags,
                  (std::vector<std::string>{"flags=0x00000010", "flags=0x00000010", "flags=0x00000011"}));
    }
    static void Append(LogLines& lines, const LogLines& more) {
        lines.insert(lines.end(), more.begin(), more.end());
    }
};
