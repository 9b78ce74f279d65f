#include "localstore/property_stream.h"

#include <algorithm>
#include <cstring>

#include "localstore/msg_properties.h"
#include "localstore/text_convert.h"

namespace localstore {

namespace {

/// Longest value of one property.
constexpr std::size_t kLongestStream = std::size_t{256} * 1024 * 1024;

/// The bytes of a property as a stream of the type asked for shows them.
Bytes StreamBytes(const Property& property, PropertyType asked, UINT codePage) {
    if (property.Type() == asked && asked != kTypeString8) {
        return property.Data();
    }
    const Text text = TextOf(property, codePage);
    return asked == kTypeUnicode ? BytesOfText(text) : EncodeText(text, CP_ACP);
}

bool CanStream(PropertyType type) {
    return IsString(type) || type == kTypeBinary;
}

}  // namespace

PropertyStream::PropertyStream(IUnknown* owner, PropertyTarget* target, CallSubject subject, PropertyTag tag,
                               Bytes bytes)
    : m_owner(owner),
      m_target(target),
      m_subject(std::move(subject)),
      m_tag(tag),
      m_bytes(std::move(bytes)) {}

bool PropertyStream::Supports(REFIID iid) const {
    return IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_ISequentialStream) ||
           IsEqualGUID(iid, IID_IStream);
}

CallSubject PropertyStream::Subject() const {
    return {"IStream", m_subject.object, m_subject.names};
}

STDMETHODIMP PropertyStream::Read(void* buffer, ULONG size, ULONG* read) {
    const auto describe = [&](CallText& text) { text.Number("size", size); };
    return Call("Read", describe, [&] {
        Require(buffer != nullptr, STG_E_INVALIDPOINTER);
        const std::size_t left = m_bytes.size() - std::min(m_position, m_bytes.size());
        const std::size_t count = std::min<std::size_t>(size, left);
        if (count != 0) {
            std::memcpy(buffer, m_bytes.data() + m_position, count);
        }
        m_position += count;
        if (read != nullptr) {
            *read = static_cast<ULONG>(count);
        }
        return S_OK;
    });
}

STDMETHODIMP PropertyStream::Write(const void* buffer, ULONG size, ULONG* written) {
    const auto describe = [&](CallText& text) {
        text.Number("size", size)
            .Identifier("bytes", static_cast<const BYTE*>(buffer), buffer == nullptr ? 0 : size);
    };
    return Call("Write", describe, [&] {
        Require(buffer != nullptr, STG_E_INVALIDPOINTER);
        Require(m_target != nullptr, STG_E_ACCESSDENIED);
        Require(m_position <= kLongestStream && size <= kLongestStream - m_position, STG_E_MEDIUMFULL);
        if (m_bytes.size() < m_position + size) {
            m_bytes.resize(m_position + size);
        }
        std::memcpy(m_bytes.data() + m_position, buffer, size);
        m_position += size;
        m_changed = true;
        if (written != nullptr) {
            *written = size;
        }
        return S_OK;
    });
}

STDMETHODIMP PropertyStream::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) {
    const auto describe = [&](CallText& text) {
        text.Number("move", move.QuadPart).Number("origin", origin);
    };
    return Call("Seek", describe, [&] {
        Require(origin <= STREAM_SEEK_END, STG_E_INVALIDFUNCTION);
        LONGLONG base = 0;
        if (origin == STREAM_SEEK_CUR) {
            base = static_cast<LONGLONG>(m_position);
        } else if (origin == STREAM_SEEK_END) {
            base = static_cast<LONGLONG>(m_bytes.size());
        }
        constexpr auto most = static_cast<LONGLONG>(kLongestStream);
        Require(move.QuadPart >= -base && move.QuadPart <= most - base, STG_E_INVALIDFUNCTION);
        m_position = static_cast<std::size_t>(base + move.QuadPart);
        if (position != nullptr) {
            position->QuadPart = m_position;
        }
        return S_OK;
    });
}

STDMETHODIMP PropertyStream::SetSize(ULARGE_INTEGER size) {
    const auto describe = [&](CallText& text) { text.Number("size", static_cast<long long>(size.QuadPart)); };
    return Call("SetSize", describe, [&] {
        Require(m_target != nullptr, STG_E_ACCESSDENIED);
        Require(size.QuadPart <= kLongestStream, STG_E_MEDIUMFULL);
        m_bytes.resize(static_cast<std::size_t>(size.QuadPart));
        m_changed = true;
        return S_OK;
    });
}

STDMETHODIMP PropertyStream::Commit(DWORD flags) {
    return Call(
        "Commit", [&](CallText& text) { text.Flags("flags", flags); }, [&] { return WriteToTarget(); });
}

STDMETHODIMP PropertyStream::Revert() {
    // The stream is in direct mode, which has nothing to go back to.
    return Call(
        "Revert", [](CallText&) {}, [] { return S_OK; });
}

STDMETHODIMP PropertyStream::Stat(STATSTG* stat, DWORD flags) {
    const auto describe = [&](CallText& text) { text.Flags("flags", flags); };
    return Call("Stat", describe, [&] {
        Require(stat != nullptr, STG_E_INVALIDPOINTER);
        *stat = {};
        stat->type = STGTY_STREAM;
        stat->cbSize.QuadPart = m_bytes.size();
        stat->grfMode = m_target != nullptr ? STGM_READWRITE : STGM_READ;
        return S_OK;
    });
}

HRESULT PropertyStream::WriteToTarget() {
    if (m_target == nullptr || !m_changed) {
        return S_OK;
    }
    Property property = Property::OfBytes(m_tag, m_bytes);
    if (property.Type() == kTypeString8) {
        property = Property::OfText(m_tag, DecodeText(m_bytes, CP_ACP));
    }
    const HRESULT result = m_target->SetOne(std::move(property));
    m_changed = m_changed && FAILED(result);
    return result;
}

void PropertyStream::BeforeDestruction() noexcept {
    try {
        WriteToTarget();
    } catch (const std::exception&) {
        // Release has no result to tell it with; a client that wants to know calls Commit.
        return;
    }
}

ComPtr<IStream> OpenStreamOf(const PropertySource& source, IUnknown* owner, PropertyTarget* target,
                             const CallSubject& subject, PropertyTag tag, ULONG flags) {
    const bool create = (flags & MAPI_CREATE) != 0;
    const bool modify = create || (flags & MAPI_MODIFY) != 0;
    if (modify) {
        Require(target != nullptr, MAPI_E_NO_ACCESS);
        target->RequireWritable();
    }
    const std::optional<Property> property = source.Find(IdOf(tag));
    const PropertyType asked = TypeOf(tag) == PT_UNSPECIFIED && property ? property->Type() : TypeOf(tag);
    Require(CanStream(asked), asked == PT_UNSPECIFIED ? MAPI_E_NOT_FOUND : MAPI_E_NO_SUPPORT);
    Bytes bytes;
    if (!create) {
        const bool fits =
            property && (property->Type() == asked || (IsString(property->Type()) && IsString(asked)));
        Require(fits, MAPI_E_NOT_FOUND);
        bytes = StreamBytes(*property, asked, source.CodePage());
    }
    const PropertyTag typed = MakeTag(IdOf(tag), asked);
    CallSubject named = subject;
    named.object += L" " + HexDigits(typed);
    auto stream =
        MakeObject<PropertyStream>(owner, modify ? target : nullptr, named, typed, std::move(bytes));
    if (create) {
        // Published: a value that was there is gone once the stream is open.
        RequireSuccess(
            target->SetOne(IsString(asked) ? Property::OfText(typed, {}) : Property::OfBytes(typed, {})));
    }
    return Adopt<IStream>(stream.Detach());
}

}  // namespace localstore
