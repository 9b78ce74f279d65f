#include "tests/wire/callback_endpoint.h"

#include <chrono>

namespace {

constexpr const wchar_t* kName = L"\\\\.\\pipe\\OutlookServer32";
constexpr DWORD kBufferSize = 65536;

/// One more end of the pipe for one more client. It carries messages, because the platform's
/// clients ask for them, and is read as bytes.
FileHandle CreatePipeEnd() {
    return FileHandle(CreateNamedPipeW(kName, PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED, PIPE_TYPE_MESSAGE,
                                       PIPE_UNLIMITED_INSTANCES, kBufferSize, kBufferSize, 0, nullptr));
}

/// Waits for a client. False if `stop` was set first.
bool WaitForClient(HANDLE pipe, HANDLE stop) {
    const Handle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    OVERLAPPED operation{};
    operation.hEvent = event.Get();
    if (ConnectNamedPipe(pipe, &operation) != 0 || GetLastError() == ERROR_PIPE_CONNECTED) {
        return true;
    }
    const HANDLE either[] = {event.Get(), stop};
    if (WaitForMultipleObjects(2, either, FALSE, INFINITE) == WAIT_OBJECT_0) {
        return true;
    }
    DWORD ignored = 0;
    CancelIoEx(pipe, &operation);
    GetOverlappedResult(pipe, &operation, &ignored, TRUE);
    return false;
}

}  // namespace

CallbackEndpoint::CallbackEndpoint(std::function<void(const CallPdu&)> onCall)
    : m_onCall(std::move(onCall)), m_stop(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
    // The first end stands before a client can look for it.
    m_listener = std::thread([this](FileHandle pipe) { Listen(std::move(pipe)); }, CreatePipeEnd());
}

CallbackEndpoint::~CallbackEndpoint() {
    SetEvent(m_stop.Get());
    m_listener.join();
    for (std::thread& connection : m_connections) {
        connection.join();
    }
}

void CallbackEndpoint::Listen(FileHandle pipe) {
    while (WaitForClient(pipe.Get(), m_stop.Get())) {
        m_connections.emplace_back([this](FileHandle end) { Serve(std::move(end)); }, std::move(pipe));
        pipe = CreatePipeEnd();
    }
}

void CallbackEndpoint::Serve(FileHandle pipe) noexcept {
    try {
        PipeStream stream(std::move(pipe), m_stop.Get());
        for (;;) {
            ServeConnection(stream);
        }
    } catch (const std::runtime_error&) {
        // The client went away, or the endpoint goes.
    }
}

void CallbackEndpoint::ServeConnection(PipeStream& stream) {
    Pdu pdu = stream.Receive();
    if (pdu.type != PduType::kRequest) {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_interfaces.push_back(ProposedInterface(pdu));
        }
        stream.Send(BindAckPdu(pdu, "\\PIPE\\OutlookServer32"));
        return;
    }
    CallPdu call;
    while (!Join(call, pdu)) {
        pdu = stream.Receive();
    }
    Keep(call);
    if (m_onCall) {
        m_onCall(call);
    }
    stream.Send(EmptyResponsePdu(call));
}

void CallbackEndpoint::Keep(const CallPdu& call) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_calls.push_back(call);
    m_changed.notify_all();
}

std::vector<CallPdu> CallbackEndpoint::Calls() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_calls;
}

std::vector<Bytes> CallbackEndpoint::ProposedInterfaces() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_interfaces;
}

bool CallbackEndpoint::WaitForCalls(std::size_t count) const {
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_changed.wait_for(lock, std::chrono::milliseconds(kPatienceMilliseconds),
                              [this, count] { return m_calls.size() >= count; });
}
