#include "tests/wire/command_connection.h"

namespace {

/// One call follows the other on a connection, so all have the same number. Wine's runtime gives this one in
/// every answer, whatever the question had.
constexpr std::uint32_t kCallId = 1;

}  // namespace

CommandConnection::CommandConnection(const Bytes& interfaceSyntax)
    : m_stream(OpenPipe(L"\\\\.\\pipe\\MapiServer64")) {
    m_stream.Send(BindPdu(kCallId, interfaceSyntax));
    m_bound = ReadBindResult(m_stream.Receive());
}

CallPdu CommandConnection::Call(std::uint16_t procedure, const Bytes& stub) {
    for (const Pdu& pdu : RequestPdus(kCallId, procedure, stub)) {
        m_stream.Send(pdu);
    }
    CallPdu answer = m_stream.ReceiveCall();
    if (answer.callId != kCallId) {
        throw std::runtime_error("the answer to another call");
    }
    return answer;
}
