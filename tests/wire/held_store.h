#pragma once

// The names by which a test and held_store.dll in the agent's process agree on the call that hangs. The test
// makes the objects before the agent starts.

/// A shared long: the number of calls until one hangs. Each call counts it down, and the one that
/// comes to 0 hangs; at 0 and below none does.
constexpr const wchar_t* kCallsToPass = L"ZebHeldStoreCallsToPass";
/// An event that is set while a call hangs.
constexpr const wchar_t* kCallHangs = L"ZebHeldStoreCallHangs";
/// An event that lets it go on.
constexpr const wchar_t* kCallGoesOn = L"ZebHeldStoreCallGoesOn";
