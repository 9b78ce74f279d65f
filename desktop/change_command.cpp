#include "desktop/change_command.h"

#include "desktop/change_output.h"
#include "desktop/output_stream.h"
#include "desktop/read_command.h"
#include "desktop/working_map.h"

namespace {

void PrintNote(const CString& text) {
    OutputStream(STD_ERROR_HANDLE).Write(text.View());
}

/// The doubt about a read that reports too many deletions, if there is one.
std::optional<Failure> Doubt(const ChangeCounts& changes, std::size_t known, const ItemKind& kind) {
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

void TellOfDamage(const MapOutcome& outcome) {
    if (outcome.damaged) {
        PrintNote(L"zebdesk: the map is damaged or of a later version, so all items came as new\n");
    }
}

/// What is wrong with the map that the agent made, if anything is.
std::optional<Failure> MapFailure(const MapOutcome& outcome, const ChangeCounts& changes) {
    if (!outcome.written && changes.Total() != 0) {
        return Failure(
            ExitCode::kOutputFailed,
            L"the agent could not bring the map up to date; the next read brings the same changes again");
    }
    return std::nullopt;
}

/// Puts the new map into the place of the old one.
void Keep(const WorkingMap& map, const std::vector<std::string>& missing) {
    const CString aside = map.Keep(missing);
    if (!aside.empty()) {
        PrintNote(L"zebdesk: the damaged map is kept as " + aside + L"\n");
    }
}

}  // namespace

void ReadChanges(const ItemKind& kind, const Arguments& arguments) {
    const WorkingMap map(arguments.changed, kind.mapSection);
    ChangeOutput output(kind, MakeItemOutput(kind, arguments), arguments.Has(kOptionOut));
    const ReadResult result = ReadThrough(kind, arguments, map.Path(), output);
    const MapOutcome outcome = map.Examine();
    TellOfDamage(outcome);

    std::optional<Failure> failure = FailureOf(result, kind);
    if (!failure) {
        failure = MapFailure(outcome, output.Counts());
    }
    if (!failure && !arguments.Has(kOptionAcceptDeletions)) {
        failure = Doubt(output.Counts(), outcome.known, kind);
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
    const std::vector<std::string> missing = output.MissingOf(outcome.changes);
    if (outcome.written) {
        Keep(map, missing);
    }
    PrintSummary(output.Counts(), kind, arguments);
    if (!missing.empty()) {
        throw Failure(ExitCode::kReadFailed,
                      CString::Format(L"%Iu of %Iu changes did not arrive; the next read brings them again",
                                      missing.size(), outcome.changes.size()));
    }
}
