#include "contacts/contact_photo.h"

#include <mapitags.h>

#include <array>

#include "mapi/exact_restriction.h"
#include "mapi/property_tags.h"
#include "support/errors.h"
#include "support/user_folders.h"

namespace {

constexpr ULONG kPieceBytes = 1024;

/// The number of the next photo file.
int g_nNextPhoto = 0;

void WriteBytes(HANDLE file, const void* bytes, ULONG count) {
    DWORD written = 0;
    if (WriteFile(file, bytes, count, &written, nullptr) == FALSE) {
        RaiseLastError();
    }
}

void CopyStream(IStream* stream, HANDLE file) {
    std::array<BYTE, kPieceBytes> piece{};
    for (;;) {
        ULONG read = 0;
        if (FAILED(stream->Read(piece.data(), kPieceBytes, &read)) || read == 0 || read > kPieceBytes) {
            return;
        }
        WriteBytes(file, piece.data(), read);
    }
}

/// A photo that is too big for a row comes as a stream of its attachment.
void CopyAttachment(IMessage* message, ULONG number, HANDLE file) {
    ComPtr<IAttach> attachment;
    if (message->OpenAttach(number, nullptr, MAPI_BEST_ACCESS, attachment.GetAddressOf()) != S_OK ||
        !attachment) {
        return;
    }
    ComPtr<IStream> stream;
    if (attachment->OpenProperty(PR_ATTACH_DATA_BIN, &IID_IStream, 0, 0,
                                 reinterpret_cast<LPUNKNOWN*>(stream.GetAddressOf())) == S_OK &&
        stream) {
        CopyStream(stream.Get(), file);
    }
}

void WritePhoto(IMessage* message, const SRow& row, HANDLE file) {
    constexpr ULONG dataError = PROP_TAG(PT_ERROR, PROP_ID(PR_ATTACH_DATA_BIN));
    const SPropValue* const error = ValueOfColumn(row, kPhotoData, dataError);
    const SPropValue* const number = ValueOfColumn(row, kPhotoNumber, PR_ATTACH_NUM);
    const SPropValue* const data = ValueOfColumn(row, kPhotoData, PR_ATTACH_DATA_BIN);
    if (error != nullptr && error->Value.err == MAPI_E_NOT_ENOUGH_MEMORY && number != nullptr) {
        CopyAttachment(message, static_cast<ULONG>(number->Value.l), file);
    } else if (data != nullptr) {
        WriteBytes(file, data->Value.bin.lpb, data->Value.bin.cb);
    }
}

CString SavePhotos(IMessage* message) {
    CString path;
    const TableRows photos = QueryContactPhotos(message);
    for (ULONG i = 0; i < photos.Count(); ++i) {
        path = CString::Format(L"%s\\PIC%d.jpg", g_strDataFolder.c_str(), g_nNextPhoto++);
        const FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                          FILE_ATTRIBUTE_NORMAL, nullptr));
        if (file) {
            WritePhoto(message, photos.Row(i), file.Get());
        }
    }
    return path;
}

}  // namespace

TableRows QueryContactPhotos(IMessage* message) {
    TableRows photos;
    if (message->GetAttachmentTable(0, photos.table.GetAddressOf()) != S_OK || !photos.table) {
        photos.table.Reset();
        return photos;
    }
    SizedSPropTagArray(3, columns) = {3, {PR_ATTACH_NUM, PR_ATTACH_DATA_BIN, PR_ATTACH_SIZE}};
    ExactRestriction isPhoto(PR_ATTACHMENT_CONTACTPHOTO, true);
    QueryAllRows(photos.table.Get(), reinterpret_cast<const SPropTagArray*>(&columns), isPhoto.Get(),
                 photos.rows);
    return photos;
}

CString SaveContactPhoto(IMessage* message) {
    if (message == nullptr) {
        return {};
    }
    try {
        return SavePhotos(message);
    } catch (...) {
        return {};
    }
}

bool IsExistingFile(const CString& path) {
    WIN32_FIND_DATAW found{};
    const FindHandle search(FindFirstFileW(path.c_str(), &found));
    if (!search) {
        return false;
    }
    do {
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            return true;
        }
    } while (FindNextFileW(search.Get(), &found) != FALSE);
    return false;
}
