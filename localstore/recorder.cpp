#include "localstore/recorder.h"

#include <mutex>

#include "localstore/buffers.h"
#include "localstore/call_guard.h"
#include "localstore/com_object.h"
#include "localstore/diagnostics.h"
#include "localstore/message_cache.h"
#include "localstore/profile_tree.h"

namespace localstore {

namespace {

struct MethodFailure {
    std::string method;
    std::string object;
    HRESULT result = S_OK;
};

/// What was recorded and what is to fail. Guarded by the store's lock.
struct RecorderState {
    std::vector<recorder::Call> calls;
    std::size_t count = 0;
    bool recording = true;
    int depth = 0;
    std::size_t failIn = 0;
    bool failForever = false;
    bool hasFailed = false;
    HRESULT failure = S_OK;
    std::vector<MethodFailure> methods;
};

RecorderState& State() {
    static RecorderState state;
    return state;
}

bool IsWarning(HRESULT result) {
    return SUCCEEDED(result) && result != S_OK;
}

std::optional<HRESULT> CountedFailure(RecorderState& state) {
    if (state.failIn == 0) {
        return std::nullopt;
    }
    if (state.failIn > 1) {
        --state.failIn;
        return std::nullopt;
    }
    state.failIn = state.failForever ? 1 : 0;
    state.hasFailed = true;
    return state.failure;
}

}  // namespace

CallRecord::CallRecord() : m_outermost(State().depth++ == 0) {
    if (m_outermost) {
        ++State().count;
        const std::optional<HRESULT> counted = CountedFailure(State());
        (counted && IsWarning(*counted) ? m_warning : m_failure) = counted;
    }
}

CallRecord::~CallRecord() {
    --State().depth;
}

bool CallRecord::IsWanted() const {
    return m_outermost && (State().recording || !State().methods.empty());
}

void CallRecord::Describe(const char* interfaceName, const char* method, std::string object,
                          std::string arguments) {
    RecorderState& state = State();
    std::string name = interfaceName == nullptr ? "" : std::string(interfaceName) + "::";
    name += method;
    for (const MethodFailure& failure : state.methods) {
        if (!m_failure && failure.method == name && (failure.object.empty() || failure.object == object)) {
            m_failure = failure.result;
        }
    }
    if (state.recording) {
        state.calls.push_back({std::move(name), std::move(object), std::move(arguments), S_OK});
        m_index = state.calls.size();
    }
}

HRESULT CallRecord::Finish(HRESULT result) const {
    if (m_warning && SUCCEEDED(result)) {
        result = *m_warning;
    }
    if (m_outermost && m_index != 0 && m_index <= State().calls.size()) {
        State().calls[m_index - 1].result = result;
    }
    return result;
}

namespace recorder {

std::string Call::Text() const {
    std::string text = method;
    if (!object.empty()) {
        text += " [" + object + "]";
    }
    return arguments.empty() ? text : text + " " + arguments;
}

long LiveObjects() {
    return LiveObjectCount();
}

long LiveBuffers() {
    return LiveBufferCount();
}

std::vector<Call> Calls() {
    const std::lock_guard lock(StoreMutex());
    return State().calls;
}

std::vector<std::string> CallLines() {
    std::vector<std::string> lines;
    for (const Call& call : Calls()) {
        lines.push_back(call.Text());
    }
    return lines;
}

void ClearCalls() {
    const std::lock_guard lock(StoreMutex());
    State().calls.clear();
    State().count = 0;
}

std::size_t CallCount() {
    const std::lock_guard lock(StoreMutex());
    return State().count;
}

void Record(bool on) {
    const std::lock_guard lock(StoreMutex());
    State().recording = on;
}

void FailCall(std::size_t n, bool forever, HRESULT result) {
    const std::lock_guard lock(StoreMutex());
    State().failIn = n;
    State().failForever = forever;
    State().failure = result;
    State().hasFailed = false;
}

void FailMethod(const std::string& method, const std::string& object, HRESULT result) {
    const std::lock_guard lock(StoreMutex());
    State().methods.push_back({method, object, result});
}

void ClearFailures() {
    const std::lock_guard lock(StoreMutex());
    State().failIn = 0;
    State().hasFailed = false;
    State().methods.clear();
}

bool HasFailed() {
    const std::lock_guard lock(StoreMutex());
    return State().hasFailed;
}

void SetRoot(const std::wstring& path) {
    const std::lock_guard lock(StoreMutex());
    SetRootPath(path);
    MessageCache::Instance().Clear();
}

std::size_t FilesRead() {
    const std::lock_guard lock(StoreMutex());
    return MessageCache::Instance().FilesRead();
}

std::vector<std::string> Diagnostics() {
    return DiagnosticLines();
}

void ClearDiagnostics() {
    ClearDiagnosticLines();
}

}  // namespace recorder

}  // namespace localstore
