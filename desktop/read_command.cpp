#include "desktop/read_command.h"

#include <algorithm>
#include <optional>

#include "desktop/agent_process.h"
#include "desktop/callback_service.h"
#include "desktop/interrupt.h"
#include "desktop/item_output.h"
#include "desktop/item_reader.h"
#include "desktop/output_stream.h"

namespace {

/// Makes the remote call, during which the items arrive. Returns what ended it too early, if anything did.
std::optional<Failure> CallRead(const AgentConnection& agent, const ItemKind& kind, ItemReader& reader) {
    wchar_t nothing[] = L"";
    long status = 1;
    const Reception reception(reader);
    try {
        if (!Interrupted()) {
            agent.Call([&] { kind.read(nothing, nothing, &status); });
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

/// Throws unless everything has arrived.
void Judge(const ItemReader& reader, const ItemKind& kind, std::size_t expected,
           const std::optional<Failure>& readFailure) {
    if (reader.OutputFailure()) {
        throw Failure(*reader.OutputFailure());
    }
    const CString share = CString::Format(L"%Iu of %Iu %s", reader.Taken(), expected, kind.word);
    if (readFailure) {
        throw Failure(readFailure->Code(), readFailure->Message() + L" after " + share);
    }
    if (reader.Taken() < expected) {
        throw Failure(ExitCode::kReadFailed, L"the agent sent only " + share);
    }
    if (reader.Invalid() != 0) {
        throw Failure(ExitCode::kReadFailed, CString::Format(L"%Iu documents are damaged", reader.Invalid()));
    }
}

void PrintSummary(const ItemReader& reader, const ItemKind& kind, const Arguments& arguments) {
    if (!arguments.Has(kOptionQuiet)) {
        const CString where = arguments.Has(kOptionOut) ? L" written to " + arguments.out : CString(L" read");
        const CString line = CString::Format(L"%Iu %s%s\n", reader.Taken(), kind.word, where.c_str());
        OutputStream(STD_ERROR_HANDLE).Write(line.View());
    }
}

}  // namespace

void ChooseFolder(const AgentConnection& agent, const ItemKind& kind, const Arguments& arguments) {
    if (!arguments.Has(kOptionFolder)) {
        return;
    }
    CString selection = L"<id>" + arguments.folder + L"</id>";
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

void ReadItems(const ItemKind& kind, const Arguments& arguments) {
    const std::unique_ptr<ItemOutput> output = MakeItemOutput(kind, arguments);
    const CallbackService callbacks;
    const AgentConnection agent;
    EnsureAgent(agent, arguments.agent);
    const AgentSession session(agent, arguments.profile);
    ChooseFolder(agent, kind, arguments);
    const auto expected = static_cast<std::size_t>(std::max(CountItems(agent, kind), 0L));
    const bool drawBar = !arguments.Has(kOptionQuiet) &&
                         !(output->WritesAtOnce() && OutputStream(STD_OUTPUT_HANDLE).IsConsole());
    ProgressBar progress(expected, drawBar);
    ItemReader reader(kind, *output, progress);
    const std::optional<Failure> readFailure = CallRead(agent, kind, reader);
    reader.Finish();
    progress.Clear();
    if (!reader.OutputFailure()) {
        output->Finish();
    }
    Judge(reader, kind, expected, readFailure);
    PrintSummary(reader, kind, arguments);
}
