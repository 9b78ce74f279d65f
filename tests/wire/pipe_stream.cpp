#include "tests/wire/pipe_stream.h"

#include <string>

namespace {

[[noreturn]] void Fail(const char* what, DWORD error) {
    throw std::runtime_error(std::string(what) + ", error " + std::to_string(error));
}

}  // namespace

PipeStream::PipeStream(FileHandle pipe, HANDLE stop)
    : m_pipe(std::move(pipe)), m_event(CreateEventW(nullptr, TRUE, FALSE, nullptr)), m_stop(stop) {}

void PipeStream::Send(const Pdu& pdu) {
    const Bytes bytes = Encode(pdu);
    OVERLAPPED operation{};
    operation.hEvent = m_event.Get();
    const BOOL done =
        WriteFile(m_pipe.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, &operation);
    if (Finish(done, operation) != bytes.size()) {
        Fail("a unit was sent in part", 0);
    }
}

Pdu PipeStream::Receive() {
    Bytes bytes = ReadExactly(kPduHeaderSize);
    const Bytes body = ReadExactly(AnnouncedSize(bytes) - kPduHeaderSize);
    bytes.insert(bytes.end(), body.begin(), body.end());
    return Decode(bytes);
}

CallPdu PipeStream::ReceiveCall() {
    CallPdu call;
    while (!Join(call, Receive())) {
    }
    return call;
}

Bytes PipeStream::ReadExactly(std::size_t count) {
    Bytes bytes(count);
    std::size_t received = 0;
    while (received < count) {
        OVERLAPPED operation{};
        operation.hEvent = m_event.Get();
        const BOOL done = ReadFile(m_pipe.Get(), bytes.data() + received,
                                   static_cast<DWORD>(count - received), nullptr, &operation);
        received += Finish(done, operation);
    }
    return bytes;
}

DWORD PipeStream::Finish(BOOL done, OVERLAPPED& operation) {
    if (done == 0 && GetLastError() == ERROR_IO_PENDING && !WaitForEvent()) {
        CancelIoEx(m_pipe.Get(), &operation);
        DWORD ignored = 0;
        GetOverlappedResult(m_pipe.Get(), &operation, &ignored, TRUE);
        throw std::runtime_error("nothing came through the pipe");
    }
    DWORD moved = 0;
    // The rest of a message that was longer than this read stays for the next one.
    if (GetOverlappedResult(m_pipe.Get(), &operation, &moved, TRUE) == 0 &&
        GetLastError() != ERROR_MORE_DATA) {
        Fail("the pipe is broken", GetLastError());
    }
    return moved;
}

bool PipeStream::WaitForEvent() const {
    if (m_stop == nullptr) {
        return WaitForSingleObject(m_event.Get(), kPatienceMilliseconds) == WAIT_OBJECT_0;
    }
    const HANDLE either[] = {m_event.Get(), m_stop};
    return WaitForMultipleObjects(2, either, FALSE, INFINITE) == WAIT_OBJECT_0;
}

FileHandle OpenPipe(const wchar_t* name) {
    for (DWORD waited = 0;; waited += 20) {
        FileHandle pipe(CreateFileW(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_OVERLAPPED, nullptr));
        if (pipe) {
            return pipe;
        }
        if (waited >= kPatienceMilliseconds) {
            Fail("no pipe to open", GetLastError());
        }
        Sleep(20);
    }
}
