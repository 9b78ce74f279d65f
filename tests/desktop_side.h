#pragma once

// The desktop program's side of the two interfaces, for programs of the tests that stand in for it. Whoever
// uses it defines the callback procedures. Failures are thrown as std::runtime_error.

/// Serves the callback interface on its pipe until the process ends.
void ServeCallbacks();

/// Makes the binding to the agent's pipe, g_hAgentBinding. It does not tell whether there is an agent.
void BindToAgent();
