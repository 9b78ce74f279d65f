#include "desktop/conversion.h"

#include "desktop/failure.h"
#include "desktop/item_kind.h"
#include "desktop/write_judgement.h"
#include "support/number_text.h"

namespace {

[[noreturn]] void ThrowRefused(const wchar_t* message) {
    throw Failure(ExitCode::kDocumentRefused, message);
}

void AddKind(WrittenDocument& written, WriteKind kind) {
    written.Add(L"lFlag", CString::FromNumber(static_cast<std::int32_t>(kind)));
}

bool IsDeletion(ItemDocument& read) {
    return !read.Has(L"CsFolder") && WriteKindOf(ReadNumber(read.Field(L"lFlag"))) == WriteKind::kDelete;
}

Conversion ConvertDeletion(const ItemKind& kind, ItemDocument& read, bool asNew) {
    if (asNew) {
        ThrowRefused(L"it is a deletion, of which there is nothing to make an item of");
    }
    WrittenDocument written(kind.root);
    AddKind(written, WriteKind::kDelete);
    written.Add(L"PIMID", read.Field(L"PIMID"));
    return {written.Text(), {}};
}

Conversion ConvertItem(const ItemKind& kind, ItemDocument& read, bool asNew) {
    if (!kind.isWhole(read)) {
        ThrowRefused(L"it is no document of a read, or one that ends too early");
    }
    WrittenDocument written(kind.root);
    AddKind(written, asNew ? WriteKind::kAdd : WriteKind::kChange);
    if (!asNew) {
        written.Add(L"PIMID", read.Field(L"PIMID"));
    }
    written.Add(L"CsFolder", read.Field(L"CsFolder"));
    Conversion conversion;
    conversion.losses = kind.convert(read, written);
    conversion.document = written.Text();
    return conversion;
}

}  // namespace

Conversion ConvertDocument(WideView text, bool asNew) {
    for (const ItemKind& kind : ItemKinds()) {
        ItemDocument read(kind.root, text);
        if (read.IsValid()) {
            return IsDeletion(read) ? ConvertDeletion(kind, read, asNew) : ConvertItem(kind, read, asNew);
        }
    }
    ThrowRefused(L"it is no document of a contact or of an appointment");
}
