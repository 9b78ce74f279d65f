#include "desktop/item_output.h"

#include <system_error>
#include <vector>

#include "desktop/failure.h"
#include "desktop/item_file_name.h"
#include "desktop/output_file.h"
#include "desktop/output_stream.h"
#include "desktop/picture_file.h"
#include "support/utf8.h"

namespace {

namespace fs = std::filesystem;

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

/// Writes each document to a file of its own, and its picture beside it.
class FileOutput : public ItemOutput {
  public:
    /// With `durable` a document is on the disk itself when it is taken: what comes only once must not be
    /// lost with the power.
    FileOutput(const ItemKind& kind, const CString& folder, bool durable)
        : m_names(kind.fileWord), m_folder(Absolute(folder)), m_durable(durable) {
        RequireFolder(m_folder);
    }

    /// No agent gives two of its pictures the same name, so they can wait for their turn here.
    void Take(ItemDocument& document) override {
        const fs::path file = m_folder / m_names.Next(document.Field(L"PIMID")).c_str();
        PictureFile picture(document, fs::path(file).replace_extension(L".jpg"));
        if (!picture.Copy(m_durable)) {
            m_lostPictures.push_back(picture.Source());
        }
        WriteFileWhole(file, Utf8FromWide(picture.Text().View()), m_durable);
        picture.RemoveOthers();
    }

    /// A picture that cannot be had is no reason to go without the other items.
    void Finish() override {
        if (!m_lostPictures.empty()) {
            throw Failure(
                ExitCode::kOutputFailed,
                CString::Format(L"%Iu of the pictures could not be copied to %s; their documents name the "
                                L"agent's files, of which the first is %s",
                                m_lostPictures.size(), m_folder.c_str(), m_lostPictures.front().c_str()));
        }
    }

  private:
    static fs::path Absolute(const CString& folder) {
        std::error_code error;
        fs::path absolute = fs::absolute(folder.c_str(), error);
        return error ? fs::path(folder.c_str()) : absolute;
    }

    ItemFileNames m_names;
    fs::path m_folder;
    bool m_durable;
    std::vector<CString> m_lostPictures;
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
