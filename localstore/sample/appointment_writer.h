#pragma once

#include "localstore/sample/named_tags.h"
#include "localstore/sample/sample_appointments.h"
#include "support/owners.h"

namespace sample {

/// Writes an appointment of the sample as a new message of a folder, with the properties that a mail program
/// gives an appointment (MS-OXOCAL 2.2.1).
void WriteAppointment(IMAPIFolder* folder, const SampleAppointment& appointment, NamedTags& tags);

}  // namespace sample
