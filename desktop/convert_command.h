#pragma once

#include "desktop/arguments.h"

/// Makes of documents that were read ones that can be written, on standard output or as files of the same
/// names in the folder of the arguments. What a write of one loses is told on standard error. Throws a
/// Failure at the end if one of them was refused.
void ConvertDocuments(const Arguments& arguments);
