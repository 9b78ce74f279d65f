#pragma once

// The agent as client of the desktop program's callback interface. mapi/send_back.h has the way of the items.

#include <windows.h>

#include <rpc.h>

// Declares g_hOutlookBinding, which the client stubs of the callback interface define and use: the binding to
// the desktop program, 0 while there is none. Process-wide; a logon replaces it.
#include "callback.h"

/// Makes a binding to "\pipe\OutlookServer32" without contacting it, and keeps it in place of an earlier one,
/// which stays open: so there is one for each logon of the process. Returns 1, or 0 on failure. A binding
/// text that cannot be composed ends the process with the status.
int BindOutlookServer();

/// Tells the desktop program that the agent is going away. A failed call raises the RPC runtime's structured
/// exception.
void SendServerShutdown();
