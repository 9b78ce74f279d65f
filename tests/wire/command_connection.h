#pragma once

// A client of the agent's pipe that knows the protocol data units and nothing of the generated stubs.

#include "tests/wire/pipe_stream.h"

class CommandConnection {
  public:
    /// Connects to the agent, for whose pipe it waits, and proposes an interface: the command interface
    /// unless told otherwise.
    explicit CommandConnection(const Bytes& interfaceSyntax = CommandSyntax());

    [[nodiscard]] const BindResult& Bound() const { return m_bound; }

    /// Sends a request and waits for what comes back: a response or a fault.
    [[nodiscard]] CallPdu Call(std::uint16_t procedure, const Bytes& stub = {});

  private:
    PipeStream m_stream;
    BindResult m_bound;
};
