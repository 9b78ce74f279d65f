#include "contacts/contact_photo_writing.h"

#include <mapitags.h>

#include <array>

#include "contacts/contact_photo.h"
#include "mapi/named_properties.h"
#include "mapi/property_tags.h"
#include "mapi/property_writing.h"
#include "support/errors.h"

namespace {

constexpr DWORD kPieceBytes = 1024;
constexpr const wchar_t* kPhotoName = L"ContactPicture.jpg";
/// The named property that says whether a contact has a photo (PidLidHasPicture).
constexpr LONG kHasPictureId = 0x8015;

/// The local time as a file time, which would be UTC anywhere else: so these attachments have it.
FILETIME LocalTimeAsFileTime() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    FILETIME time{};
    SystemTimeToFileTime(&now, &time);
    return time;
}

SPropValue Value(ULONG tag) {
    SPropValue value{};
    value.ulPropTag = tag;
    return value;
}
SPropValue TextValue(ULONG tag, const wchar_t* text) {
    SPropValue value = Value(tag);
    value.Value.lpszW = const_cast<LPWSTR>(text);
    return value;
}
SPropValue NumberValue(ULONG tag, LONG number) {
    SPropValue value = Value(tag);
    value.Value.l = number;
    return value;
}
SPropValue FlagValue(ULONG tag, bool flag) {
    SPropValue value = Value(tag);
    value.Value.b = static_cast<unsigned short>(flag ? TRUE : FALSE);
    return value;
}
SPropValue TimeValue(ULONG tag, const FILETIME& time) {
    SPropValue value = Value(tag);
    value.Value.ft = time;
    return value;
}

/// What makes an attachment the photo of a contact.
bool DescribePhoto(IAttach* attachment) {
    const FILETIME now = LocalTimeAsFileTime();
    std::array<SPropValue, 14> values{
        TextValue(PR_DISPLAY_NAME_W, kPhotoName),       Value(PR_ATTACH_ENCODING),
        TextValue(PR_ATTACH_EXTENSION_W, L".jpg"),      TextValue(PR_ATTACH_FILENAME_W, L""),
        NumberValue(PR_ATTACH_METHOD, ATTACH_BY_VALUE), TextValue(PR_ATTACH_LONG_FILENAME_W, kPhotoName),
        NumberValue(PR_RENDERING_POSITION, -1),         NumberValue(PR_ATTACH_FLAGS, 0),
        NumberValue(PR_ATTACHMENT_LINKID, 0),           NumberValue(PR_ATTACHMENT_FLAGS, 0),
        FlagValue(PR_ATTACHMENT_HIDDEN, false),         FlagValue(PR_ATTACHMENT_CONTACTPHOTO, true),
        TimeValue(PR_EXCEPTION_STARTTIME, now),         TimeValue(PR_EXCEPTION_ENDTIME, now),
    };
    return attachment->SetProps(static_cast<ULONG>(values.size()), values.data(), nullptr) == S_OK;
}

/// Copies a file to a stream and returns what the stream took. Only the low 32 bits count: the size of an
/// attachment has no more.
ULONG CopyFileTo(IStream* stream, HANDLE file) {
    std::array<BYTE, kPieceBytes> piece{};
    ULONG total = 0;
    for (;;) {
        DWORD read = 0;
        if (ReadFile(file, piece.data(), kPieceBytes, &read, nullptr) == FALSE) {
            RaiseLastError();
        }
        if (read == 0) {
            return total;
        }
        ULONG written = 0;
        stream->Write(piece.data(), read, &written);
        total += written;
    }
}

/// A picture file, which others may read and write meanwhile. Empty if it cannot be opened, or if it is no
/// file: a read of anything else need not come to an end.
FileHandle OpenPhotoFile(const CString& path) {
    FileHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file && GetFileType(file.Get()) != FILE_TYPE_DISK) {
        file.Reset();
    }
    return file;
}

bool FillPhoto(IAttach* attachment, HANDLE file) {
    if (!DescribePhoto(attachment)) {
        return false;
    }
    ComPtr<IStream> stream;
    if (attachment->OpenProperty(PR_ATTACH_DATA_BIN, &IID_IStream, 0,
                                 MAPI_MODIFY | MAPI_CREATE | MAPI_BEST_ACCESS,
                                 reinterpret_cast<LPUNKNOWN*>(stream.GetAddressOf())) != S_OK ||
        !stream) {
        return false;
    }
    const ULONG size = CopyFileTo(stream.Get(), file);
    stream->Commit(0);
    stream.Reset();
    SetNumberProperty(attachment, PR_ATTACH_SIZE, static_cast<LONG>(size));
    attachment->SaveChanges(FORCE_SAVE);
    return true;
}

}  // namespace

void SetContactPhoto(IMessage* message, const CString& path) {
    const bool attached = AttachContactPhoto(message, path) != 0;
    SetNamedFlagProperty(message, PSETID_Address, kHasPictureId, attached);
    if (attached) {
        SetFlagProperty(message, PR_HASATTACH, true);
    }
}

int AttachContactPhoto(IMessage* message, const CString& path) {
    DeleteContactPhotoAttachments(message);
    if (path.empty()) {
        return 0;
    }
    const FileHandle file = OpenPhotoFile(path);
    if (!file) {
        return 0;
    }
    ULONG number = 0;
    ComPtr<IAttach> attachment;
    if (message->CreateAttach(nullptr, MAPI_DEFERRED_ERRORS, &number, attachment.GetAddressOf()) != S_OK ||
        !attachment) {
        return 0;
    }
    return FillPhoto(attachment.Get(), file.Get()) ? 1 : 0;
}

int DeleteContactPhotoAttachments(IMessage* message) {
    if (message == nullptr) {
        return 1;
    }
    const TableRows photos = QueryContactPhotos(message);
    for (ULONG i = 0; i < photos.Count(); ++i) {
        if (const SPropValue* const number = ValueOfColumn(photos.Row(i), kPhotoNumber, PR_ATTACH_NUM)) {
            message->DeleteAttach(static_cast<ULONG>(number->Value.l), 0, nullptr, 0);
        }
    }
    if (photos.Count() != 0) {
        DeleteProperty(message, PR_HASATTACH);
    }
    return 1;
}
