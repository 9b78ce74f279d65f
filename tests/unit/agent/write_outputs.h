#pragma once

// The procedures that write an item, as the RPC runtime calls them, and what they give back.

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <iterator>

#include "command.h"
#include "support/rpc_guard.h"
#include "support/text.h"

/// The outputs of a write, filled with what must not be there afterwards.
struct WriteOutputs {
    wchar_t id[401] = {};
    wchar_t time[41] = {};
    long status = 77;
    /// What the procedure raised in place of its outputs; 0 if it returned.
    unsigned long fault = 0;

    WriteOutputs() {
        std::fill(std::begin(id), std::end(id), L'#');
        std::fill(std::begin(time), std::end(time), L'#');
    }
};

inline WriteOutputs WriteContact(const CString& xml) {
    CString text = xml;
    WriteOutputs out;
    WriteContacts(text.data(), out.id, out.time, &out.status);
    return out;
}

inline WriteOutputs WriteCalendar(const CString& xml) {
    struct Arguments {
        CString text;
        WriteOutputs out;
    } arguments{xml, {}};
    const RpcCall call = [](void* context) noexcept {
        auto& [text, out] = *static_cast<Arguments*>(context);
        WriteCalendars(text.data(), out.id, out.time, &out.status);
    };
    arguments.out.fault = GuardRpcCall(call, &arguments);
    return arguments.out;
}

/// The present in the local time of the C library, as sortable text. A test takes one in front of a write.
inline CString Present() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    EXPECT_EQ(localtime_s(&local, &now), 0);
    return CString::Format(L"%04d-%02d-%02d %02d:%02d:%02d", local.tm_year + 1900, local.tm_mon + 1,
                           local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}

/// True if a time, as a write shows it, lies between the present that was taken and that of this call.
inline bool IsThePresent(const CString& time, const CString& before) {
    if (time.size() != WideView(L"MM/DD/YYYY hh:mm:ss").size()) {
        return false;
    }
    const CString sortable(time.substr(6, 4) + L"-" + time.substr(0, 2) + L"-" + time.substr(3, 2) +
                           time.substr(10));
    return before <= sortable && sortable <= Present();
}
