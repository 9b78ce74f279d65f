#pragma once

#include <cstddef>
#include <optional>

#include "desktop/agent_connection.h"
#include "desktop/arguments.h"
#include "desktop/failure.h"
#include "desktop/item_kind.h"
#include "desktop/item_output.h"

/// Has the session work on the folder that the arguments name, if they name one. Throws a Failure if the
/// agent refuses it.
void ChooseFolder(const AgentConnection& agent, const ItemKind& kind, const Arguments& arguments);

/// The number of items that a read would deliver. Throws a Failure.
long CountItems(const AgentConnection& agent, const ItemKind& kind);

/// What became of a read.
struct ReadResult {
    std::size_t counted = 0;  ///< the items that were there just before; 0 for a read of changes
    std::size_t taken = 0;    ///< documents that arrived and went to the output
    std::size_t invalid = 0;  ///< how many of them were damaged
    std::optional<Failure> readFailure;
    std::optional<Failure> outputFailure;
};

/// Starts the agent if need be, logs on, reads the items of a kind to an output and logs off. With the path
/// of a map file only what changed is read. Throws a Failure if it does not come to the read.
[[nodiscard]] ReadResult ReadThrough(const ItemKind& kind, const Arguments& arguments, CString mapFile,
                                     ItemOutput& output);

/// What went wrong with a read, if anything did.
[[nodiscard]] std::optional<Failure> FailureOf(const ReadResult& result, const ItemKind& kind);

/// Reads all items of a kind to the output that the arguments ask for. Throws a Failure unless all arrived.
void ReadItems(const ItemKind& kind, const Arguments& arguments);
