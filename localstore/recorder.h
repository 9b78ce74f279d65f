#pragma once

// What a test that links the recording build of the store can see and do. None of it exists in the library.
//
// A call is one that a client makes, on an object of the store or of an exported function. Calls that the
// store makes on itself meanwhile, such as the table calls of HrQueryAllRows, are part of it and neither
// recorded nor counted. AddRef, Release and QueryInterface are no calls here.

#include <windows.h>

#include <mapicode.h>

#include <string>
#include <vector>

namespace localstore::recorder {

/// One call as it was made. Texts are UTF-8.
struct Call {
    /// Interface and method as in "IMAPIFolder::GetContentsTable", or the name of an exported function.
    /// Methods that an object inherits carry its own interface, as in "IMessage::SetProps".
    std::string method;
    /// The object: "Contacts" for a folder, "Contacts\John Doe.msg" for a message, the same and "#0" for an
    /// attachment, the store's name for a store, "Contacts contents" for a table. Empty for functions of no
    /// object.
    std::string object;
    std::string arguments;
    HRESULT result = S_OK;

    /// The call on one line: method [object] arguments.
    [[nodiscard]] std::string Text() const;
};

/// Objects and buffers that were handed out and not yet released or freed.
long LiveObjects();
long LiveBuffers();

/// The calls since the last ClearCalls, in order.
std::vector<Call> Calls();
/// The same as lines of text, without the results.
std::vector<std::string> CallLines();
void ClearCalls();
/// Calls since the last ClearCalls; counts on while Record(false) keeps none.
std::size_t CallCount();
/// Keeps the text of calls or only counts them. Recording is on at the start.
void Record(bool on);

/// Fails the n-th call from now on (1 is the next one), and with `forever` every one behind it. With S_OK the
/// call does nothing and says that it succeeded, so that what it should hand out is not there. With a warning
/// it does all that it should, and gives the warning.
void FailCall(std::size_t n, bool forever, HRESULT result = MAPI_E_CALL_FAILED);
/// Fails every call of a method, on one object or, with an empty one, on all.
void FailMethod(const std::string& method, const std::string& object, HRESULT result);
/// Holds the n-th call from now on (1 is the next one) before it begins, as a provider does that hangs, until
/// ReleaseCall. Others get through meanwhile. Returns at once.
void HoldCall(std::size_t n);
/// True while a call is held.
bool IsHolding();
void ReleaseCall();

/// Ends every failure that was asked for.
void ClearFailures();
/// True once a failure of FailCall has happened.
bool HasFailed();

/// The root folder, in place of the environment's; an empty path goes back to that. Forgets the messages that
/// are kept.
void SetRoot(const std::wstring& path);
/// Message files that were read, as against taken from those that are kept.
std::size_t FilesRead();

/// What the store reported about files that it left out.
std::vector<std::string> Diagnostics();
void ClearDiagnostics();

}  // namespace localstore::recorder
