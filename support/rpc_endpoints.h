#pragma once

// The names of the two endpoints, for the agent and for the desktop program, and the type that the RPC
// runtime wants.

#include <windows.h>

#include <rpc.h>

/// The runtime takes texts as non-const 16-bit numbers and does not write to them.
inline RPC_WSTR RpcText(const wchar_t* text) {
    return reinterpret_cast<RPC_WSTR>(const_cast<wchar_t*>(text));
}

constexpr const wchar_t* kProtocolSequence = L"ncacn_np";
constexpr const wchar_t* kCommandEndpoint = L"\\pipe\\MapiServer64";
constexpr const wchar_t* kCallbackEndpoint = L"\\pipe\\OutlookServer32";
/// The command endpoint as a file.
constexpr const wchar_t* kCommandPipe = L"\\\\.\\pipe\\MapiServer64";
