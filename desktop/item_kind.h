#pragma once

#include "desktop/item_document.h"
#include "desktop/text_table.h"

/// A kind of item that the agent counts and reads.
struct ItemKind {
    /// The word of the command line, in the plural.
    const wchar_t* word;
    /// The word that the names of its files begin with.
    const wchar_t* fileWord;
    /// The root element of its documents.
    const wchar_t* root;
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
};

/// The kind that the word stands for, or null.
const ItemKind* FindItemKind(WideView word);
