#pragma once

// Recurrence properties to damage: those of the sample store, such as have every kind of exception, and one
// whose exceptions share a text until there is no room for one more.

#include <vector>

#include "localstore/sample/sample_appointments.h"
#include "tests/unit/calendar/handmade_exceptions.h"

/// All of them.
inline std::vector<std::vector<std::uint8_t>> SampleBlobs() {
    std::vector<std::vector<std::uint8_t>> blobs;
    for (const std::uint32_t writerVersion : {0x3008U, 0x3009U}) {
        NAMESPACE_MAPI::tagRecurrencePattern pattern = sample_series::WithExceptions();
        pattern.WriterVersion2 = writerVersion;
        blobs.push_back(RecurrenceBytes(pattern).Bytes());
    }
    blobs.push_back(WithSharedSubject(8, 30).Bytes());
    for (const sample::SampleAppointment& item : sample::SampleAppointments()) {
        if (item.series) {
            blobs.push_back(sample::SeriesBytes(*item.series, item.start, item.minutes));
        }
    }
    return blobs;
}
