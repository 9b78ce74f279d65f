#include "desktop/item_output.h"

#include <windows.h>

#include <filesystem>
#include <string>

#include "desktop/failure.h"
#include "desktop/item_file_name.h"
#include "desktop/output_stream.h"
#include "support/owners.h"
#include "support/utf8.h"

namespace {

class TableOutput : public ItemOutput {
  public:
    TableOutput(const ItemKind& kind, bool tabs) : m_kind(kind), m_tabs(tabs), m_table(kind.headings()) {}

    void Take(ItemDocument& document) override { m_table.Add(m_kind.row(document)); }
    void Finish() override {
        const std::size_t columns = OutputStream(STD_OUTPUT_HANDLE).Columns();
        PrintOutput((m_tabs ? m_table.TabSeparated() : m_table.Aligned(columns)).View());
    }

  private:
    const ItemKind& m_kind;
    bool m_tabs;
    TextTable m_table;
};

class DocumentOutput : public ItemOutput {
  public:
    void Take(ItemDocument& document) override { PrintOutput(CString(document.Text()) + L"\n"); }
    [[nodiscard]] bool WritesAtOnce() const override { return true; }
};

/// Writes each document to a file of its own, first under another name, so that a file is whole if it is
/// there.
class FileOutput : public ItemOutput {
  public:
    /// With `durable` a document is on the disk itself when it is taken: what comes only once must not be
    /// lost with the power.
    FileOutput(const ItemKind& kind, const CString& folder, bool durable)
        : m_names(kind.fileWord), m_folder(folder.c_str()), m_durable(durable) {
        std::error_code error;
        std::filesystem::create_directories(m_folder, error);
        if (!std::filesystem::is_directory(m_folder, error)) {
            ThrowUnwritable(m_folder);
        }
    }

    void Take(ItemDocument& document) override {
        const std::filesystem::path path = m_folder / m_names.Next(document.Field(L"PIMID")).c_str();
        std::filesystem::path part = path;
        part += L".part";
        if (!WriteWhole(part, Utf8FromWide(document.Text())) ||
            MoveFileExW(part.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING) == 0) {
            DeleteFileW(part.c_str());
            ThrowUnwritable(path);
        }
    }

  private:
    [[noreturn]] static void ThrowUnwritable(const std::filesystem::path& path) {
        throw Failure(ExitCode::kOutputFailed, CString::Format(L"%s cannot be written", path.c_str()));
    }

    [[nodiscard]] bool WriteWhole(const std::filesystem::path& path, const std::string& bytes) const {
        const FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                          FILE_ATTRIBUTE_NORMAL, nullptr));
        DWORD written = 0;
        return file &&
               WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) !=
                   0 &&
               written == bytes.size() && (!m_durable || FlushFileBuffers(file.Get()) != 0);
    }

    ItemFileNames m_names;
    std::filesystem::path m_folder;
    bool m_durable;
};

}  // namespace

std::unique_ptr<ItemOutput> MakeItemOutput(const ItemKind& kind, const Arguments& arguments) {
    if (arguments.Has(kOptionOut)) {
        return std::make_unique<FileOutput>(kind, arguments.out, arguments.Has(kOptionChanged));
    }
    if (arguments.Has(kOptionXml)) {
        return std::make_unique<DocumentOutput>();
    }
    return std::make_unique<TableOutput>(kind, arguments.Has(kOptionTabs));
}
