#include "desktop/convert_command.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>

#include "desktop/contact_conversion.h"
#include "desktop/failure.h"
#include "desktop/input_file.h"
#include "desktop/output_file.h"
#include "desktop/output_stream.h"
#include "support/utf8.h"

namespace {

/// Where the documents go: a folder, or standard output if that is empty.
void PutDocument(const CString& text, const CString& name, const CString& folder) {
    if (folder.empty()) {
        PrintOutput(CString(text + L"\n").View());
        return;
    }
    const std::filesystem::path file = std::filesystem::path(name.c_str()).filename();
    WriteFileWhole(std::filesystem::path(folder.c_str()) / file, Utf8FromWide(text.View()), false);
}

CString ConvertFile(const CString& name, const Arguments& arguments) {
    const CString text = ReadDocumentText(name);
    ItemDocument read(L"Contact", text.View());
    return ConvertContact(read, arguments.Has(kOptionNew));
}

}  // namespace

void ConvertDocuments(const Arguments& arguments) {
    const std::vector<CString> names(arguments.words.begin() + 1, arguments.words.end());
    if (arguments.Has(kOptionOut)) {
        if (std::ranges::find(names, L"-") != names.end()) {
            throw Failure(ExitCode::kUsage, L"standard input has no name for a file of --out");
        }
        RequireFolder(arguments.out.c_str());
    }
    std::size_t refused = 0;
    for (const CString& name : names) {
        try {
            PutDocument(ConvertFile(name, arguments), name, arguments.out);
        } catch (const Failure& failure) {
            if (failure.Code() != ExitCode::kDocumentRefused) {
                throw;
            }
            ++refused;
            OutputStream(STD_ERROR_HANDLE).Write(CString(name + L": " + failure.Message() + L"\n").View());
        }
    }
    if (refused != 0) {
        throw Failure(ExitCode::kDocumentRefused,
                      CString::Format(L"%Iu of %Iu documents were not converted", refused, names.size()));
    }
}
