#pragma once

#include "support/text.h"

/// The settings file that the agent at `agent`, a full path, reads when it starts.
CString SettingsPath(const CString& agent);

/// The folder that an agent with these settings writes its documents to; empty if the settings name none or
/// are not there, or if the user has no application data folder. The folder is not made: the agent does that.
CString DocumentFolder(const CString& settings);

/// Writes settings with which all commands work, unless the file is there: then it stays as it is, and the
/// result is false. Throws a Failure if the file cannot be written.
bool WriteDefaultSettings(const CString& settings);
