#include "desktop/read_command.h"

#include <algorithm>

#include "desktop/agent_process.h"
#include "desktop/callback_service.h"
#include "desktop/interrupt.h"
#include "desktop/item_reader.h"
#include "desktop/output_stream.h"

namespace {

/// Makes the remote call, during which the items arrive. Returns what ended it too early, if anything did.
std::optional<Failure> CallRead(const AgentConnection& agent, const ItemKind& kind, CString& mapFile,
                                ItemReader& reader) {
    long status = 1;
    const Reception reception(reader);
    try {
        if (!Interrupted()) {
            wchar_t nothing[] = L"";
            agent.Call([&] { kind.read(nothing, mapFile.data(), &status); });
        }
    } catch (const Failure& failure) {
        return failure;
    }
    // The user's wish explains an incomplete read better than its status does.
    if (status != 0 && Interrupted()) {
        return Failure(ExitCode::kInterrupted, L"interrupted");
    }
    return status != 0 ? std::optional(Failure(ExitCode::kReadFailed, L"the agent could not finish the read"))
                       : std::nullopt;
}

void PrintSummary(std::size_t taken, const ItemKind& kind, const Arguments& arguments) {
    if (!arguments.Has(kOptionQuiet)) {
        const CString where = arguments.Has(kOptionOut) ? L" written to " + arguments.out : CString(L" read");
        const CString line = CString::Format(L"%Iu %s%s\n", taken, kind.word, where.c_str());
        OutputStream(STD_ERROR_HANDLE).Write(line.View());
    }
}

}  // namespace

void ChooseFolder(const AgentConnection& agent, const ItemKind& kind, const Arguments& arguments) {
    if (!arguments.Has(kOptionFolder)) {
        return;
    }
    CString selection = kind.selectionHead + arguments.folder + kind.selectionTail;
    long status = 1;
    agent.Call([&] { kind.choose(selection.data(), &status); });
    if (status != 0) {
        throw Failure(ExitCode::kFolderRefused,
                      L"no store that the profile can open has the folder " + arguments.folder);
    }
}

long CountItems(const AgentConnection& agent, const ItemKind& kind) {
    long count = 0;
    long status = 1;
    agent.Call([&] { kind.count(&count, &status); });
    if (status != 0) {
        throw Failure(ExitCode::kReadFailed, CString(L"the agent cannot count the ") + kind.word);
    }
    return count;
}

ReadResult ReadThrough(const ItemKind& kind, const Arguments& arguments, CString mapFile,
                       ItemOutput& output) {
    const CallbackService callbacks;
    const AgentConnection agent;
    EnsureAgent(agent, arguments.agent);
    const AgentSession session(agent, arguments.profile);
    ChooseFolder(agent, kind, arguments);
    ReadResult result;
    // How much has changed is known at the end only.
    if (mapFile.empty()) {
        result.counted = static_cast<std::size_t>(std::max(CountItems(agent, kind), 0L));
    }
    const bool drawBar = !arguments.Has(kOptionQuiet) &&
                         !(output.WritesAtOnce() && OutputStream(STD_OUTPUT_HANDLE).IsConsole());
    ProgressBar progress(result.counted, drawBar);
    ItemReader reader(kind, output, progress);
    result.readFailure = CallRead(agent, kind, mapFile, reader);
    reader.Finish();
    result.taken = reader.Taken();
    result.invalid = reader.Invalid();
    result.outputFailure = reader.OutputFailure();
    return result;
}

std::optional<Failure> FailureOf(const ReadResult& result, const ItemKind& kind) {
    if (result.outputFailure) {
        return result.outputFailure;
    }
    if (result.readFailure) {
        const CString goal = result.counted != 0 ? CString::Format(L" of %Iu", result.counted) : CString();
        return Failure(result.readFailure->Code(),
                       result.readFailure->Message() +
                           CString::Format(L" after %Iu%s %s", result.taken, goal.c_str(), kind.word));
    }
    if (result.invalid != 0) {
        return Failure(ExitCode::kReadFailed, CString::Format(L"%Iu documents are damaged", result.invalid));
    }
    return std::nullopt;
}

void ReadItems(const ItemKind& kind, const Arguments& arguments) {
    const std::unique_ptr<ItemOutput> output = MakeItemOutput(kind, arguments);
    const ReadResult result = ReadThrough(kind, arguments, {}, *output);
    if (!result.outputFailure) {
        output->Finish();
    }
    if (const std::optional<Failure> failure = FailureOf(result, kind)) {
        throw Failure(*failure);
    }
    if (result.taken < result.counted) {
        throw Failure(ExitCode::kReadFailed, CString::Format(L"the agent sent only %Iu of %Iu %s",
                                                             result.taken, result.counted, kind.word));
    }
    PrintSummary(result.taken, kind, arguments);
}
