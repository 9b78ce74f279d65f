#pragma once

#include <optional>

#include "desktop/agent_connection.h"
#include "desktop/folder_state.h"
#include "desktop/item_kind.h"

/// What the chosen folder holds now, as far as a read goes: by a read of changes with a map of its own, which
/// lists all items and, of contacts, is stopped at the first document. Nothing if the agent cannot list them.
/// Needs a CallbackService. Throws a Failure if the agent goes away.
std::optional<FolderState> ReadFolderState(const AgentConnection& agent, const ItemKind& kind);
