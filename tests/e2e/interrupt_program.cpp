// Runs a program on a console and presses Ctrl+C once the program has begun to write to its standard output:
// interrupt_program PROGRAM [ARGUMENT...]. Its output and its exit status become this program's own.

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>

#include "support/owners.h"

namespace {

/// Set when the console has told its processes of the key.
Handle g_pressed;

BOOL WINAPI OnConsoleEvent(DWORD event) {
    if (event != CTRL_C_EVENT) {
        return FALSE;
    }
    SetEvent(g_pressed.Get());
    return TRUE;
}

void Require(bool done, const char* what) {
    if (!done) {
        throw std::runtime_error(std::string(what) + " fails with error " + std::to_string(GetLastError()));
    }
}

/// Gives this program a console of its own and lets it survive the key. Its standard streams stay as they
/// are.
void SetUpConsole() {
    constexpr std::array kStreams = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
    std::array<HANDLE, kStreams.size()> streams{};
    std::ranges::transform(kStreams, streams.begin(), GetStdHandle);
    FreeConsole();
    Require(AllocConsole() != 0, "AllocConsole");
    for (std::size_t i = 0; i < streams.size(); ++i) {
        SetStdHandle(kStreams[i], streams[i]);
    }
    g_pressed.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    Require(g_pressed && SetConsoleCtrlHandler(OnConsoleEvent, TRUE) != 0, "SetConsoleCtrlHandler");
}

/// Starts the program with the pipe as its standard output, on this program's console.
Handle Start(std::wstring commandLine, HANDLE output) {
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = output;
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION process{};
    Require(CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                           &process) != 0,
            "CreateProcess");
    const Handle thread(process.hThread);
    return Handle(process.hProcess);
}

void PressInterrupt() {
    Require(GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0) != 0, "GenerateConsoleCtrlEvent");
    Require(WaitForSingleObject(g_pressed.Get(), INFINITE) == WAIT_OBJECT_0, "WaitForSingleObject");
}

/// Hands on what the program writes, and presses the key behind the first piece of it. Nothing is taken from
/// the pipe meanwhile, so that a program that writes much cannot come to its end before it notices.
void HandOn(HANDLE pipe) {
    std::array<char, 256> piece{};
    bool pressed = false;
    for (DWORD size = 0;
         ReadFile(pipe, piece.data(), static_cast<DWORD>(piece.size()), &size, nullptr) != 0;) {
        Require(std::fwrite(piece.data(), 1, size, stdout) == size, "fwrite");
        if (!std::exchange(pressed, true)) {
            PressInterrupt();
        }
    }
    Require(pressed, "waiting for output");
}

DWORD Run(const std::wstring& commandLine) {
    SetUpConsole();
    SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
    Handle reading;
    Handle writing;
    Require(CreatePipe(reading.Put(), writing.Put(), &inherited, 0) != 0, "CreatePipe");
    Require(SetHandleInformation(reading.Get(), HANDLE_FLAG_INHERIT, 0) != 0, "SetHandleInformation");
    const Handle program = Start(commandLine, writing.Get());
    writing.Reset();
    HandOn(reading.Get());
    DWORD status = 0;
    Require(WaitForSingleObject(program.Get(), INFINITE) == WAIT_OBJECT_0 &&
                GetExitCodeProcess(program.Get(), &status) != 0,
            "GetExitCodeProcess");
    return status;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    try {
        std::wstring commandLine;
        for (int i = 1; i < count; ++i) {
            commandLine += std::wstring(i == 1 ? L"\"" : L" \"") + arguments[i] + L"\"";
        }
        return static_cast<int>(Run(commandLine));
    } catch (const std::exception& failure) {
        std::cerr << "interrupt_program: " << failure.what() << '\n';
        return 1;
    }
}
