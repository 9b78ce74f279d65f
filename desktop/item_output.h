#pragma once

#include <memory>

#include "desktop/arguments.h"
#include "desktop/item_kind.h"

/// Where the items of a read go. All functions throw a Failure if something cannot be written.
class ItemOutput {
  public:
    ItemOutput() = default;
    ItemOutput(const ItemOutput&) = delete;
    ItemOutput& operator=(const ItemOutput&) = delete;
    virtual ~ItemOutput() = default;

    virtual void Take(ItemDocument& document) = 0;
    /// Called when no more items come, whether the read was complete or not. Tells what Take passed over.
    virtual void Finish() {}
    /// True if items appear on standard output while the read is running.
    [[nodiscard]] virtual bool WritesAtOnce() const { return false; }
};

/// The output that the command line asks for: a file for each item with --out, the documents on standard
/// output with --xml, a table otherwise.
std::unique_ptr<ItemOutput> MakeItemOutput(const ItemKind& kind, const Arguments& arguments);
