#include "desktop/agent_connection.h"

#include "support/rpc_endpoints.h"

extern "C" {
#include "command.h"
}

AgentConnection::AgentConnection() {
    RPC_WSTR text = nullptr;
    RPC_STATUS status = RpcStringBindingComposeW(nullptr, RpcText(kProtocolSequence), nullptr,
                                                 RpcText(kCommandEndpoint), nullptr, &text);
    if (status == RPC_S_OK) {
        status = RpcBindingFromStringBindingW(text, &g_hAgentBinding);
        RpcStringFreeW(&text);
    }
    if (status != RPC_S_OK) {
        ThrowUnreachable(static_cast<unsigned long>(status));
    }
}

AgentConnection::~AgentConnection() {
    RpcBindingFree(&g_hAgentBinding);
}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): the stub uses the binding of this object
bool AgentConnection::Answers() const {
    // The one procedure that does nothing at all; it leaves even its status as it is.
    const RpcCall call = [](void* /*unused*/) noexcept {
        wchar_t text = 0;
        long status = 0;
        Reserved10(&text, &status);
    };
    return GuardRpcCall(call, nullptr) == 0;
}

void AgentConnection::ThrowUnreachable(unsigned long status) {
    throw Failure(ExitCode::kAgentUnreachable,
                  CString::Format(L"the agent does not answer or went away (RPC status %lu)", status));
}

AgentSession::AgentSession(const AgentConnection& connection, const CString& profile) {
    long status = 1;
    auto* const name = const_cast<wchar_t*>(profile.c_str());
    connection.Call([&] { MAPILogOn(name, &status); });
    if (status != 0) {
        const CString which =
            profile.empty() ? CString(L"the default profile") : L"the profile \"" + profile + L"\"";
        throw Failure(ExitCode::kLogonRefused, L"the agent could not log on with " + which);
    }
}

AgentSession::~AgentSession() {
    // An agent that is gone has no session left to end.
    (void)GuardRpcCall([](void* /*unused*/) noexcept { MAPILogOff(); }, nullptr);
}
