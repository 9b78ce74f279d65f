#pragma once

// The callbacks of a read: the desktop program is bound as the agent binds it.

#include <string>

namespace bench {

/// A remote procedure that takes the text of an item.
using Callback = void (*)(wchar_t* xml);

/// Binds to the desktop program, for the rest of the process, and gives the procedure for contacts or
/// calendars. Raises std::runtime_error if there is no binding.
Callback BindCallback(const std::wstring& kind);

/// Sends a text and waits until the desktop program has taken it.
void Send(Callback callback, wchar_t* xml);

}  // namespace bench
