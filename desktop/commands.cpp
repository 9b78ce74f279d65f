#include "desktop/commands.h"

#include <windows.h>

#include <algorithm>
#include <bit>
#include <iterator>

#include "desktop/agent_connection.h"
#include "desktop/agent_process.h"
#include "desktop/callback_service.h"
#include "desktop/change_command.h"
#include "desktop/convert_command.h"
#include "desktop/discovery_commands.h"
#include "desktop/help.h"
#include "desktop/interrupt.h"
#include "desktop/item_kind.h"
#include "desktop/output_stream.h"
#include "desktop/read_command.h"
#include "desktop/setup_command.h"
#include "desktop/single_instance.h"
#include "desktop/write_command.h"

extern "C" {
#include "command.h"
}

namespace {

constexpr unsigned kSessionOptions = kOptionHelp | kOptionProfile | kOptionAgent | kOptionQuiet;
constexpr unsigned kReadOptions = kSessionOptions | kOptionFolder | kOptionOut | kOptionXml | kOptionTabs |
                                  kOptionChanged | kOptionAcceptDeletions;
constexpr unsigned kWriteOptions = kSessionOptions | kOptionFolder | kOptionTabs | kOptionDelete;
constexpr std::size_t kAnyNumber = static_cast<std::size_t>(-1);

/// A word of the command line and what it does.
struct Command {
    WideView word;
    /// The options that it takes.
    unsigned options;
    /// The numbers of operands that it takes.
    std::size_t fewestOperands;
    std::size_t mostOperands;
    void (*run)(const Arguments& arguments);
};

void Print(const CString& text) {
    PrintOutput(text.View());
}

/// The kind of item that an operand names.
const ItemKind& RequireKind(const CString& word) {
    const ItemKind* kind = FindItemKind(word.View());
    if (kind == nullptr) {
        throw Failure(ExitCode::kUsage, L"there are no items called " + word);
    }
    return *kind;
}

void RunHelp(const Arguments& /*arguments*/) {
    Print(CString(kHelpText));
}

void RunCount(const Arguments& arguments) {
    const ItemKind& kind =
        RequireKind(arguments.words.size() > 1 ? arguments.words[1] : CString(L"contacts"));
    const SingleInstance instance;
    const CallbackService callbacks;
    const AgentConnection agent;
    EnsureAgent(agent, arguments.agent);
    const AgentSession session(agent, arguments.profile);
    ChooseFolder(agent, kind, arguments);
    Print(CString::Format(L"%s: %ld\n", kind.word, CountItems(agent, kind)));
}

void RunRead(const Arguments& arguments) {
    const unsigned outputs = arguments.options & (kOptionOut | kOptionXml | kOptionTabs);
    if (std::popcount(outputs) > 1) {
        throw Failure(ExitCode::kUsage, L"--out, --xml and --tabs exclude each other");
    }
    const bool changes = arguments.Has(kOptionChanged);
    if (changes && (outputs & (kOptionOut | kOptionXml)) == 0) {
        // What the map knows is not read again, so the documents must go somewhere.
        throw Failure(ExitCode::kUsage, L"--changed needs --out or --xml");
    }
    if (!changes && arguments.Has(kOptionAcceptDeletions)) {
        throw Failure(ExitCode::kUsage, L"--accept-deletions belongs to --changed");
    }
    const ItemKind& kind = RequireKind(arguments.words[1]);
    const SingleInstance instance;
    changes ? ReadChanges(kind, arguments) : ReadItems(kind, arguments);
}

void RunWrite(const Arguments& arguments) {
    constexpr std::size_t kWithoutFiles = 2;
    const bool hasFiles = arguments.words.size() > kWithoutFiles;
    if (hasFiles == arguments.Has(kOptionDelete)) {
        throw Failure(ExitCode::kUsage, hasFiles ? L"--delete takes no files beside it"
                                                 : L"write needs files, \"-\" or --delete");
    }
    WriteItems(RequireKind(arguments.words[1]), arguments);
}

void RunShutdown(const Arguments& /*arguments*/) {
    const SingleInstance instance;
    if (!AgentIsRunning()) {
        return;
    }
    // The agent tells the desktop program of the last logon that it goes away, and ends with an exception if
    // nobody listens; so this program does until then.
    const CallbackService callbacks;
    const AgentConnection agent;
    agent.Call([] { Shutdown(); });
    WaitForAgentEnd();
}

constexpr Command kCommands[] = {
    {L"help", kOptionHelp, 0, 0, RunHelp},
    {L"setup", kOptionHelp | kOptionAgent, 0, 0, SetUpAgent},
    {L"profiles", kOptionHelp | kOptionAgent | kOptionQuiet | kOptionXml, 0, 0, PrintProfiles},
    {L"folders", kSessionOptions | kOptionXml, 0, 0, PrintFolders},
    {L"count", kSessionOptions | kOptionFolder, 0, 1, RunCount},
    {L"read", kReadOptions, 1, 1, RunRead},
    {L"convert", kOptionHelp | kOptionOut | kOptionNew, 1, kAnyNumber, ConvertDocuments},
    {L"write", kWriteOptions, 1, kAnyNumber, RunWrite},
    {L"shutdown", kOptionHelp | kOptionQuiet, 0, 0, RunShutdown},
};

[[noreturn]] void ThrowUsage(const CString& message) {
    throw Failure(ExitCode::kUsage, message);
}

/// The command of the command line, which fits its operands and options.
const Command& RequireCommand(const Arguments& arguments) {
    if (arguments.words.empty()) {
        ThrowUsage(L"a command is missing");
    }
    const CString& word = arguments.words.front();
    const auto* command =
        std::find_if(std::begin(kCommands), std::end(kCommands),
                     [&](const Command& candidate) { return candidate.word == word.View(); });
    if (command == std::end(kCommands)) {
        ThrowUsage(L"there is no command " + word);
    }
    const unsigned unfit = arguments.options & ~command->options;
    if (unfit != 0) {
        ThrowUsage(word + L" takes no " + OptionName(static_cast<Option>(unfit & (~unfit + 1))));
    }
    const std::size_t operands = arguments.words.size() - 1;
    if (operands < command->fewestOperands || operands > command->mostOperands) {
        ThrowUsage(word +
                   (operands < command->fewestOperands ? L" needs an operand" : L" takes fewer operands"));
    }
    return *command;
}

void RunCommand(const std::vector<CString>& words) {
    const Arguments arguments = ParseArguments(words);
    if (arguments.Has(kOptionHelp)) {
        RunHelp(arguments);
        return;
    }
    RequireCommand(arguments).run(arguments);
}

/// What the user can do about a failure, behind its message.
WideView HintFor(ExitCode code) {
    switch (code) {
        case ExitCode::kUsage:
            return L"; \"zebdesk --help\" tells more";
        case ExitCode::kLogonRefused:
        case ExitCode::kReadFailed:
        case ExitCode::kDocumentRefused:
            return L"; the agent's log, in the folder Logs beside it, may tell why";
        case ExitCode::kFolderRefused:
            return L"; \"zebdesk folders\" shows the folders that are there";
        default:
            return {};
    }
}

}  // namespace

ExitCode RunDesktop(const std::vector<CString>& arguments) {
    WatchForInterrupt();
    try {
        RunCommand(arguments);
        return ExitCode::kOk;
    } catch (const Failure& failure) {
        const CString line = L"zebdesk: " + failure.Message() + CString(HintFor(failure.Code())) + L"\n";
        OutputStream(STD_ERROR_HANDLE).Write(line.View());
        return failure.Code();
    }
}
