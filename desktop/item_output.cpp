#include "desktop/item_output.h"

#include "desktop/item_file_name.h"
#include "desktop/output_file.h"
#include "desktop/output_stream.h"
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

/// Writes each document to a file of its own.
class FileOutput : public ItemOutput {
  public:
    /// With `durable` a document is on the disk itself when it is taken: what comes only once must not be
    /// lost with the power.
    FileOutput(const ItemKind& kind, const CString& folder, bool durable)
        : m_names(kind.fileWord), m_folder(folder.c_str()), m_durable(durable) {
        RequireFolder(m_folder);
    }

    void Take(ItemDocument& document) override {
        WriteFileWhole(m_folder / m_names.Next(document.Field(L"PIMID")).c_str(),
                       Utf8FromWide(document.Text()), m_durable);
    }

  private:
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
