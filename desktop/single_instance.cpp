#include "desktop/single_instance.h"

#include "desktop/failure.h"

SingleInstance::SingleInstance() : m_mark(CreateMutexW(nullptr, FALSE, L"Global\\ZebDesktop")) {
    // The mutex is never held: that its name exists is the mark, and it goes away with the process that made
    // it.
    if (!m_mark || GetLastError() == ERROR_ALREADY_EXISTS) {
        throw Failure(ExitCode::kBusy, L"another desktop program is at work with the agent");
    }
}
