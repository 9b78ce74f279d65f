#pragma once

// A named pipe as a stream of protocol data units.

#include <windows.h>

#include "support/owners.h"
#include "tests/wire/pdu.h"

/// How long to wait for a thing that ought to happen at once. It only has to be so long that a busy machine
/// makes it.
constexpr DWORD kPatienceMilliseconds = 60000;

/// One end of a connected pipe, opened for overlapped operation. Every failure throws std::runtime_error.
class PipeStream {
  public:
    /// The client's end: whatever does not come within kPatienceMilliseconds is a failure.
    explicit PipeStream(FileHandle pipe) : PipeStream(std::move(pipe), nullptr) {}
    /// The server's end: it waits for ever, or until the event `stop` is set, which is not owned.
    PipeStream(FileHandle pipe, HANDLE stop);

    void Send(const Pdu& pdu);
    /// Waits for a whole unit.
    [[nodiscard]] Pdu Receive();
    /// Receives units until a call is whole.
    [[nodiscard]] CallPdu ReceiveCall();

  private:
    [[nodiscard]] Bytes ReadExactly(std::size_t count);
    DWORD Finish(BOOL done, OVERLAPPED& operation);
    [[nodiscard]] bool WaitForEvent() const;

    FileHandle m_pipe;
    Handle m_event;
    HANDLE m_stop;
};

/// Opens the client's end of a pipe, for which a server may still be missing or busy.
[[nodiscard]] FileHandle OpenPipe(const wchar_t* name);
