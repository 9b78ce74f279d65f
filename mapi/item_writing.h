#pragma once

// What the writes of contacts and appointments have in common: the way to the message and back, without the
// properties that are written to it.

#include <cstdint>

#include "mapi/change_flags.h"
#include "mapi/operation_log.h"
#include "mapi/store_entries.h"
#include "support/log.h"
#include "support/owners.h"
#include "support/text.h"
#include "timezone/ole_date_time.h"

/// Runs one operation, which returns whether it succeeded, between its two lines in the log. An exception in
/// it is its failure. Returns 1 or 0.
template<class Work>
int RunLogged(const wchar_t* operation, const Work& work) {
    LogLine(kLogTrace, operation, L"Begin");
    bool succeeded = false;
    try {
        succeeded = work();
    } catch (...) {
        succeeded = false;
    }
    LogFinish(operation, succeeded);
    return succeeded ? 1 : 0;
}

/// Runs the operation that a flag asks for; each returns 1 or 0. The first bit that is set decides alone, and
/// stays set unless its operation succeeds.
template<class Add, class Update, class Delete>
void RunByFlag(std::int32_t& flag, const Add& add, const Update& update, const Delete& remove) {
    if ((flag & kChangeAdd) != 0) {
        flag &= add() != 0 ? ~kChangeAdd : -1;
    } else if ((flag & kChangeUpdate) != 0) {
        flag &= update() != 0 ? ~kChangeUpdate : -1;
    } else if ((flag & kChangeDelete) != 0) {
        flag &= remove() != 0 ? ~kChangeDelete : -1;
    }
}

/// A new message of a folder, not saved yet. Null for a null folder and if it cannot be made.
ComPtr<IMessage> CreateItem(IMAPIFolder* folder);

/// Hands back the identifier by which a message can be found again, as hexadecimal text. One that came with
/// the record is that of another message and does not stay: without an identifier the text is empty.
void ReadIdentifier(IMessage* message, CString& hexId);

/// Hands back the local time by which a change by others can be told from this one; no date if the message
/// has none.
void ReadTimeOfChange(IMessage* message, COleDateTime& date);

/// Makes a message and lets it be written by a function that returns 1 or 0. The text receives its
/// identifier, whatever that function returns. Returns whether the message was written.
template<class Write>
bool AddItem(IMAPIFolder* folder, CString& hexId, const Write& write) {
    const ComPtr<IMessage> message = CreateItem(folder);
    if (!message) {
        return false;
    }
    const bool written = write(message.Get()) != 0;
    ReadIdentifier(message.Get(), hexId);
    return written;
}

/// Opens the message of an identifier and lets it be written likewise. Returns whether it was; false for a
/// null folder, and if there is no such message.
template<class Write>
bool UpdateItem(IMAPIFolder* folder, const CString& hexId, const Write& write) {
    const ComPtr<IMessage> message = OpenMessageByHexId(folder, hexId);
    return message && write(message.Get()) != 0;
}

/// Deletes a message through the folder that it lives in, which may be below the given one. Returns whether
/// that succeeded; false for a null folder.
bool DeleteItem(IMAPIFolder* folder, const CString& hexId);
