#include "desktop/convert_command.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "desktop/conversion.h"
#include "desktop/failure.h"
#include "desktop/input_file.h"
#include "desktop/output_file.h"
#include "desktop/output_stream.h"
#include "support/utf8.h"

namespace fs = std::filesystem;

namespace {

/// The file that the document of an input goes to.
fs::path TargetOf(const CString& name, const CString& folder) {
    return fs::path(folder.c_str()) / fs::path(name.c_str()).filename();
}

/// Where the documents go: a folder, or standard output if that is empty.
void PutDocument(const CString& text, const CString& name, const CString& folder) {
    if (folder.empty()) {
        PrintOutput(CString(text + L"\n").View());
        return;
    }
    WriteFileWhole(TargetOf(name, folder), Utf8FromWide(text.View()), false);
}

/// Requires that each document gets a file of its own, which is none of those that are read.
void RequireOwnFiles(const std::vector<CString>& names, const CString& folder) {
    std::set<fs::path> targets;
    for (const CString& name : names) {
        const fs::path target = TargetOf(name, folder);
        std::error_code error;
        if (fs::equivalent(target, name.c_str(), error)) {
            throw Failure(ExitCode::kUsage, L"--out would replace " + name);
        }
        if (!targets.insert(target).second) {
            throw Failure(ExitCode::kUsage,
                          L"--out has one file for two documents: " + CString(target.c_str()));
        }
    }
}

void PrintError(const CString& name, const CString& message) {
    OutputStream(STD_ERROR_HANDLE).Write(CString(name + L": " + message + L"\n").View());
}

void ConvertFile(const CString& name, const Arguments& arguments) {
    const CString text = ReadDocumentText(name);
    const Conversion conversion = ConvertDocument(text.View(), arguments.Has(kOptionNew));
    PutDocument(conversion.document, name, arguments.out);
    for (const CString& loss : conversion.losses) {
        PrintError(name, L"warning: " + loss);
    }
}

}  // namespace

void ConvertDocuments(const Arguments& arguments) {
    const std::vector<CString> names(arguments.words.begin() + 1, arguments.words.end());
    if (arguments.Has(kOptionOut)) {
        if (std::ranges::find(names, L"-") != names.end()) {
            throw Failure(ExitCode::kUsage, L"standard input has no name for a file of --out");
        }
        RequireOwnFiles(names, arguments.out);
        RequireFolder(arguments.out.c_str());
    }
    std::size_t refused = 0;
    for (const CString& name : names) {
        try {
            ConvertFile(name, arguments);
        } catch (const Failure& failure) {
            if (failure.Code() != ExitCode::kDocumentRefused) {
                throw;
            }
            ++refused;
            PrintError(name, failure.Message());
        }
    }
    if (refused != 0) {
        throw Failure(ExitCode::kDocumentRefused,
                      CString::Format(L"%Iu of %Iu documents were not converted", refused, names.size()));
    }
}
