#include "desktop/commands.h"

/// The platform calls this one with the arguments in wide characters.
int wmain(int count, wchar_t** arguments) {
    return static_cast<int>(RunDesktop({arguments + 1, arguments + count}));
}
