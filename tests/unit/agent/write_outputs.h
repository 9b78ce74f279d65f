#pragma once

// The procedures that write an item, as the RPC runtime calls them, and what they give back.

#include <algorithm>
#include <iterator>

#include "command.h"
#include "support/rpc_guard.h"
#include "support/text.h"
#include "timezone/ole_date_time.h"

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

/// The present as the time of a write is shown, which can be a second later by the next look.
inline bool IsThePresent(const wchar_t* time, const COleDateTime& before) {
    COleDateTime now = before;
    for (int second = 0; second < 60; ++second) {
        if (now.Format(L"%m/%d/%Y %H:%M:%S") == time) {
            return true;
        }
        now.m_dt = AddSpan(before.m_dt, DaysOf(0, 0, 0, second + 1));
    }
    return false;
}
