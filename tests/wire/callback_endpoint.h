#pragma once

// The desktop program's side of the callback interface in raw bytes: a pipe server that accepts every call,
// answers it with an empty response and keeps what came.

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "tests/wire/pipe_stream.h"

class CallbackEndpoint {
  public:
    /// `onCall` runs before a call is answered, on a thread of the endpoint.
    explicit CallbackEndpoint(std::function<void(const CallPdu&)> onCall = nullptr);
    CallbackEndpoint(const CallbackEndpoint&) = delete;
    CallbackEndpoint& operator=(const CallbackEndpoint&) = delete;
    ~CallbackEndpoint();

    /// What has come so far.
    [[nodiscard]] std::vector<CallPdu> Calls() const;
    /// The interfaces that were asked for, in the form of CallbackSyntax.
    [[nodiscard]] std::vector<Bytes> ProposedInterfaces() const;
    /// Waits until as many calls have come.
    [[nodiscard]] bool WaitForCalls(std::size_t count) const;

  private:
    void Listen(FileHandle pipe);
    void Serve(FileHandle pipe) noexcept;
    void ServeConnection(PipeStream& stream);
    void Keep(const CallPdu& call);

    std::function<void(const CallPdu&)> m_onCall;
    Handle m_stop;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::vector<CallPdu> m_calls;
    std::vector<Bytes> m_interfaces;
    std::vector<std::thread> m_connections;
    std::thread m_listener;
};
