#include "support/log.h"

#include "support/output_string.h"

void Log(int level, const wchar_t* text) {
    OutputString(L"ZebAgentOutlook64", level, text);
}
