#include "support/output_string.h"

#include "libraries/fennic/log_writer.h"

namespace {

/// The writer of this process. It is never destroyed: threads may still log while the process ends.
LogWriter& Writer() {
    static LogWriter& writer = *new LogWriter(ReadLogSettings());
    return writer;
}

}  // namespace

void OutputString(const wchar_t* module, int level, const wchar_t* text) {
    try {
        Writer().Write(module, level, text);
    } catch (...) {
        // A line that cannot be written is lost. The program that wrote it goes on as if it had been.
        return;
    }
}
