#pragma once

#include "desktop/failure.h"
#include "support/rpc_guard.h"
#include "support/text.h"

/// The binding to the agent that the client stubs use. One at a time can exist.
class AgentConnection {
  public:
    /// Makes the binding without contacting the agent.
    AgentConnection();
    AgentConnection(const AgentConnection&) = delete;
    AgentConnection& operator=(const AgentConnection&) = delete;
    ~AgentConnection();

    /// Makes one remote call. Throws a Failure if the agent cannot be reached or goes away during it.
    template<class Procedure>
    void Call(Procedure procedure) const {
        try {
            GuardedRpc(procedure);
        } catch (const RpcFailure& failure) {
            ThrowUnreachable(failure.Status());
        }
    }

    /// True if the agent answers.
    [[nodiscard]] bool Answers() const;

  private:
    [[noreturn]] static void ThrowUnreachable(unsigned long status);
};

/// A session of the mail system that the agent has opened for this program.
class AgentSession {
  public:
    /// Logs on. An empty name stands for the default profile. Throws a Failure if the agent refuses.
    AgentSession(const AgentConnection& connection, const CString& profile);
    AgentSession(const AgentSession&) = delete;
    AgentSession& operator=(const AgentSession&) = delete;
    /// Logs off.
    ~AgentSession();
};
