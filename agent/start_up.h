#pragma once

#include <windows.h>

/// The loaded "MAPI32.dll"; null when it could not be loaded. Process-wide, loaded once and never freed: MAPI
/// objects live in it until the process ends.
extern HMODULE g_hMAPI32;

/// The whole life of the agent: registers the command interface, prepares what needs no session and serves
/// calls until it is told to stop. Returns the exit status, 0 or 1; a failure of the RPC runtime ends the
/// process with its status.
int RunAgent(HINSTANCE instance);

/// Prepares what needs no session: MAPI, settings, data folder. Returns 1, or 0 without MAPI.
int InitAgent();

/// Fills the entry point table from g_hMAPI32. Returns 1, or 0 if a function is missing.
int LoadMAPIEntryPoints();
