#include <mapicode.h>
#include <mapitags.h>

#include "store_calls.h"

namespace bench {

namespace {

constexpr ULONG kBodyPieceBytes = 1024;
constexpr ULONG kLargePieceBytes = 64 * 1024;
constexpr ULONG kLongTermId = 0x66700102;

constexpr SizedSPropTagArray(6, kColumns) = {
    6, {PR_ENTRYID, kLongTermId, PR_CREATION_TIME, PR_LAST_MODIFICATION_TIME, PR_SUBJECT_W, PR_PRIORITY}};

/// A property of bytes, which comes as a stream if it is too large for the others.
void ReadBytes(IMessage* message, LONG number) {
    const ULONG tag = TagOf(message, kAppointmentSet, number);
    SizedSPropTagArray(1, tags) = {1, {tag}};
    ULONG count = 0;
    MapiBuffer<SPropValue> value;
    message->GetProps(reinterpret_cast<LPSPropTagArray>(&tags), MAPI_UNICODE, &count, value.Put());
    if (value && PROP_TYPE(value->ulPropTag) == PT_ERROR && value->Value.err == MAPI_E_NOT_ENOUGH_MEMORY) {
        ReadStream(message, CHANGE_PROP_TYPE(tag, PT_BINARY), kLargePieceBytes);
    }
}

void ReadReminder(IMessage* message) {
    if (!NamedFlagOf(message, kCommonSet, 0x8503)) {
        return;
    }
    if (NamedFlagOf(message, kCommonSet, 0x851C)) {
        NamedFlagOf(message, kCommonSet, 0x851E);
    }
    NamedNumberOf(message, kCommonSet, 0x8501);
}

void ReadRecurrence(IMessage* message) {
    if (NamedFlagOf(message, kAppointmentSet, 0x8223) &&
        NamedNumberOf(message, kAppointmentSet, 0x8231) != 0) {
        ReadBytes(message, 0x8216);
    }
}

void ReadAppointment(IMessage* message) {
    ReadStream(message, PR_BODY_W, kBodyPieceBytes);
    for (const LONG number : {0x8208, 0x8215, 0x820D, 0x820E}) {
        NamedValueOf(message, kAppointmentSet, number);
    }
    ReadReminder(message);
    ReadRecurrence(message);
    ReadBytes(message, 0x8233);
}

}  // namespace

const StoreLoop kCalendarLoop{reinterpret_cast<const SPropTagArray*>(&kColumns), L"IPM.Appointment",
                              &ReadAppointment};

}  // namespace bench
