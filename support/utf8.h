#pragma once

#include <string>

#include "support/wide.h"

/// The text in UTF-8 (RFC 3629). A lone surrogate becomes U+FFFD.
std::string Utf8FromWide(WideView text);
