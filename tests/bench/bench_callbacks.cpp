// The round trips of a read and nothing else: sends each text of a file to the desktop program, as the agent
// does, and waits for its return. bench_callbacks FILE contacts|calendars; each line of the input is one more
// time.

#include <windows.h>

#include <rpc.h>

#include <stdexcept>

#include "callback.h"
#include "command_loop.h"
#include "support/rpc_endpoints.h"
#include "support/rpc_guard.h"
#include "tests/rpc_binding.h"
#include "text_file.h"

namespace {

void Run(const std::wstring& path, const std::wstring& kind) {
    std::vector<std::wstring> texts = bench::ReadTexts(path);
    auto* const procedure = kind == L"contacts" ? MAPISendBackOneContact : MAPISendBackOneCalenda;
    if (const RPC_STATUS status = MakeBinding(kCallbackEndpoint, &g_hOutlookBinding); status != RPC_S_OK) {
        throw std::runtime_error("the binding gives " + std::to_string(status));
    }
    bench::AnswerWithSeconds([&] {
        for (std::wstring& text : texts) {
            wchar_t* const units = text.data();
            GuardedRpc([procedure, units] { procedure(units); });
        }
    });
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    return bench::Guarded("bench_callbacks", [&] {
        if (count != 3) {
            throw std::invalid_argument("bench_callbacks FILE contacts|calendars");
        }
        Run(arguments[1], arguments[2]);
    });
}
