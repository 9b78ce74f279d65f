#include "desktop/change_command.h"

#include <algorithm>

#include "desktop/change_output.h"
#include "desktop/output_stream.h"
#include "desktop/read_command.h"
#include "desktop/working_map.h"

namespace {

void PrintNote(const CString& text) {
    OutputStream(STD_ERROR_HANDLE).Write(text.View());
}

/// The doubt about a read that reports too many deletions, if there is one.
std::optional<Failure> Doubt(const ChangeCounts& changes, std::size_t now, const ItemKind& kind) {
    const std::size_t known = KnownBefore(changes, now);
    if (!LooksLikeAFailedRead(changes, known)) {
        return std::nullopt;
    }
    return Failure(
        ExitCode::kDeletionsDoubted,
        CString::Format(L"%Iu of the %Iu %s that were known are reported as deleted. Neither the "
                        L"deletions nor the new map were kept. If they are really gone, read again "
                        L"with --accept-deletions",
                        changes.deleted, known, kind.word));
}

void PrintSummary(const ChangeCounts& changes, const ItemKind& kind, const Arguments& arguments) {
    if (!arguments.Has(kOptionQuiet)) {
        PrintNote(CString::Format(L"%s: %Iu new, %Iu changed, %Iu deleted\n", kind.word, changes.added,
                                  changes.changed, changes.deleted));
    }
}

void TellOfMapSetAside(const MapOutcome& outcome) {
    if (!outcome.setAside.empty()) {
        PrintNote(
            L"zebdesk: the map is damaged or of a later version, so all items came as new; it is kept as " +
            outcome.setAside + L"\n");
    }
}

/// The agent knows nothing of a document that did not arrive, and passes over an item that it cannot open,
/// but in the map both count as told.
std::optional<Failure> Gap(const ChangeOutput& output, const MapOutcome& outcome) {
    const auto missing = std::count_if(outcome.changes.begin(), outcome.changes.end(),
                                       [&](const std::string& id) { return !output.HasArrived(id); });
    if (missing != 0) {
        return Failure(
            ExitCode::kReadFailed,
            CString::Format(L"%Iu of %Iu changes did not arrive; the next read brings all of them again",
                            static_cast<std::size_t>(missing), outcome.changes.size()));
    }
    if (!outcome.written && output.Counts().Total() != 0) {
        return Failure(
            ExitCode::kOutputFailed,
            L"the agent could not bring the map up to date; the next read brings the same changes again");
    }
    return std::nullopt;
}

}  // namespace

void ReadChanges(const ItemKind& kind, const Arguments& arguments) {
    const WorkingMap map(arguments.changed);
    ChangeOutput output(kind, MakeItemOutput(kind, arguments), arguments.Has(kOptionOut));
    const ReadResult result = ReadThrough(kind, arguments, map.Path(), output);
    const MapOutcome outcome = map.Examine();
    TellOfMapSetAside(outcome);

    std::optional<Failure> failure = FailureOf(result, kind);
    if (!failure) {
        failure = Gap(output, outcome);
    }
    if (!failure && !arguments.Has(kOptionAcceptDeletions)) {
        failure = Doubt(output.Counts(), result.counted, kind);
    }
    if (!failure) {
        output.BelieveDeletions();
    }
    if (!result.outputFailure) {
        output.Finish();
    }
    if (failure) {
        throw Failure(*failure);
    }
    if (outcome.written) {
        map.Keep();
    }
    PrintSummary(output.Counts(), kind, arguments);
}
