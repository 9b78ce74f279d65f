#pragma once

#include <string>

#include "support/wide.h"

/// The text in UTF-8. A lone surrogate becomes U+FFFD.
std::string Utf8FromWide(WideView text);
