// The round trips of a read and nothing else: sends each text of a file to the desktop program, as the agent
// does, and waits for its return. bench_callbacks FILE contacts|calendars; each line of the input is one more
// time.

#include <windows.h>

#include <stdexcept>

#include "callbacks.h"
#include "command_loop.h"
#include "text_file.h"

namespace {

void Run(const std::wstring& path, const std::wstring& kind) {
    std::vector<std::wstring> texts = bench::ReadTexts(path);
    const bench::Callback callback = bench::BindCallback(kind);
    bench::AnswerWithSeconds([&] {
        for (std::wstring& text : texts) {
            bench::Send(callback, text.data());
        }
    });
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    return bench::Guarded("bench_callbacks", [&] {
        if (count != 3) {
            throw std::invalid_argument("bench_callbacks FILE contacts|calendars");
        }
        Run(arguments[1], arguments[2]);
    });
}
