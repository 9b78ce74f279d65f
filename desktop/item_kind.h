#pragma once

#include <span>
#include <vector>

#include "desktop/item_document.h"
#include "desktop/text_table.h"
#include "desktop/written_document.h"

/// A kind of item that the agent counts, reads and writes.
struct ItemKind {
    /// The word of the command line, in the plural.
    const wchar_t* word;
    /// The word that the names of its files begin with.
    const wchar_t* fileWord;
    /// The root element of its documents.
    const wchar_t* root;
    /// What stands around the identifier of a folder in a selection of one.
    const wchar_t* selectionHead;
    const wchar_t* selectionTail;
    /// The line that stands in front of its items in a map.
    const char* mapSection;
    /// The remote procedures.
    void (*count)(long* count, long* status);
    void (*choose)(wchar_t* selection, long* status);
    void (*read)(wchar_t* ignored, wchar_t* mapFile, long* status);
    void (*write)(wchar_t* document, wchar_t* id, wchar_t* time, long* status);
    /// The headings of its table, and a document's row in it.
    TextTable::Row (*headings)();
    TextTable::Row (*row)(ItemDocument& document);
    /// Why the agent would neither add nor change an item by a document, for the user; null if it would.
    const wchar_t* (*objection)(ItemDocument& document);
    /// True for a document of a read that has all of its item. What a conversion makes is none.
    bool (*isWhole)(ItemDocument& document);
    /// Takes what a document of a read says of its item over into one to be written. Returns what a write of
    /// it loses, in lines for the user.
    std::vector<CString> (*convert)(ItemDocument& read, WrittenDocument& written);
};

/// All kinds.
std::span<const ItemKind> ItemKinds();

/// The kind that the word stands for, or null.
const ItemKind* FindItemKind(WideView word);
