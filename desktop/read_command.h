#pragma once

#include "desktop/agent_connection.h"
#include "desktop/arguments.h"
#include "desktop/item_kind.h"

/// Has the session work on the folder that the arguments name, if they name one. Throws a Failure if the
/// agent refuses it.
void ChooseFolder(const AgentConnection& agent, const ItemKind& kind, const Arguments& arguments);

/// The number of items that a read would deliver. Throws a Failure.
long CountItems(const AgentConnection& agent, const ItemKind& kind);

/// Starts the agent if need be, logs on, reads all items of a kind to the output that the arguments ask for
/// and logs off. Throws a Failure unless all arrived.
void ReadItems(const ItemKind& kind, const Arguments& arguments);
