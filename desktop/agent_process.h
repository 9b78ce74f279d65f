#pragma once

#include "desktop/agent_connection.h"
#include "support/text.h"

/// True if an agent has its pipe open.
bool AgentIsRunning();

/// The full path of the agent at `path`; ZebAgentForOutlook64.exe in the folder of this program if that is
/// empty.
CString AgentProgram(const CString& path);

/// Comes back when an agent answers. If none is running, starts AgentProgram(path); the agent has no window
/// and does not end with this program. Throws a Failure if the agent cannot be started or does not answer in
/// time.
void EnsureAgent(const AgentConnection& connection, const CString& path);

/// Comes back when no agent has its pipe open any more. Throws a Failure if that takes too long.
void WaitForAgentEnd();
