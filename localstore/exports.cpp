#include "localstore/exports.h"

#include <atomic>

#include "localstore/buffers.h"
#include "localstore/session.h"
#include "localstore/text_convert.h"

namespace localstore {

namespace {

std::atomic<long> g_initialized = 0;  ///< successful MAPIInitialize calls without their MAPIUninitialize

/// One call of an exported function, in the shape of GuardCall. `about` is the object that it works on, or
/// null.
template<class Describe, class Body>
HRESULT CallExport(const char* function, IUnknown* about, const Describe& describe,
                   const Body& body) noexcept {
    const auto subject = [about] {
        CallSubject who = SubjectOf(about);
        who.interfaceName = nullptr;
        return who;
    };
    return GuardCall(function, subject, describe, body);
}

Text ProfileName(LPTSTR name, ULONG flags) {
    if (name == nullptr) {
        return {};
    }
    if ((flags & MAPI_UNICODE) != 0) {
        return name;
    }
    const auto* narrow = reinterpret_cast<const std::uint8_t*>(name);
    return DecodeText(Bytes(narrow, narrow + strlen(reinterpret_cast<const char*>(name))), CP_ACP);
}

/// All rows from the first on. More than `most` of them, if it is not 0, are too many.
LPSRowSet AllRows(LPMAPITABLE table, LONG most) {
    ULONG count = 0;
    RequireSuccess(table->GetRowCount(0, &count));
    Require(most == 0 || count <= static_cast<ULONG>(most), MAPI_E_TABLE_TOO_BIG);
    RequireSuccess(table->SeekRow(BOOKMARK_BEGINNING, 0, nullptr));
    LPSRowSet rows = nullptr;
    RequireSuccess(table->QueryRows(count == 0 ? 1 : static_cast<LONG>(count), 0, &rows));
    return rows;
}

}  // namespace

}  // namespace localstore

using localstore::CallExport;
using localstore::CallText;
using localstore::Require;
using localstore::RequireSuccess;

extern "C" {

HRESULT WINAPI MAPIInitialize(LPVOID parameters) {
    const auto describe = [&](CallText& text) {
        if (parameters != nullptr) {
            const auto* init = static_cast<const MAPIINIT_0*>(parameters);
            text.Number("version", init->ulVersion).Flags("flags", init->ulFlags);
        }
    };
    return CallExport("MAPIInitialize", nullptr, describe, [] {
        ++localstore::g_initialized;
        return S_OK;
    });
}

void WINAPI MAPIUninitialize() {
    CallExport(
        "MAPIUninitialize", nullptr, [](CallText&) {},
        [] {
            Require(localstore::g_initialized > 0, MAPI_E_NOT_INITIALIZED);
            --localstore::g_initialized;
            return S_OK;
        });
}

HRESULT WINAPI MAPILogonEx(ULONG_PTR, LPTSTR profile, LPTSTR, FLAGS flags, LPMAPISESSION* session) {
    const auto describe = [&](CallText& text) {
        text.String("profile", localstore::ProfileName(profile, flags).c_str()).Flags("flags", flags);
    };
    return CallExport("MAPILogonEx", nullptr, describe, [&] {
        Require(session != nullptr, MAPI_E_INVALID_PARAMETER);
        *session = nullptr;
        Require(localstore::g_initialized > 0, MAPI_E_NOT_INITIALIZED);
        *session = localstore::LogOn(localstore::ProfileName(profile, flags), (flags & MAPI_USE_DEFAULT) != 0)
                       .Detach();
        return S_OK;
    });
}

HRESULT WINAPI MAPIAdminProfiles(ULONG flags, LPPROFADMIN* admin) {
    const auto describe = [&](CallText& text) { text.Flags("flags", flags); };
    return CallExport("MAPIAdminProfiles", nullptr, describe, [&] {
        Require(admin != nullptr, MAPI_E_INVALID_PARAMETER);
        *admin = nullptr;
        Require(localstore::g_initialized > 0, MAPI_E_NOT_INITIALIZED);
        *admin = localstore::MakeObject<localstore::ProfileAdmin>().Detach();
        return S_OK;
    });
}

SCODE WINAPI MAPIAllocateBuffer(ULONG size, LPVOID* buffer) {
    const auto describe = [&](CallText& text) { text.Number("size", size); };
    return CallExport("MAPIAllocateBuffer", nullptr, describe, [&] {
        Require(buffer != nullptr, MAPI_E_INVALID_PARAMETER);
        *buffer = nullptr;
        *buffer = localstore::NewBuffer(size);
        return S_OK;
    });
}

SCODE WINAPI MAPIAllocateMore(ULONG size, LPVOID object, LPVOID* buffer) {
    const auto describe = [&](CallText& text) { text.Number("size", size); };
    return CallExport("MAPIAllocateMore", nullptr, describe, [&] {
        Require(buffer != nullptr, MAPI_E_INVALID_PARAMETER);
        *buffer = nullptr;
        *buffer = localstore::NewBufferUnder(object, size);
        return S_OK;
    });
}

ULONG WINAPI MAPIFreeBuffer(LPVOID buffer) {
    // Freeing is never failed on request: no client could do anything about it.
    return localstore::FreeBuffer(buffer) ? SUCCESS_SUCCESS : static_cast<ULONG>(MAPI_E_INVALID_PARAMETER);
}

HRESULT WINAPI HrGetOneProp(LPMAPIPROP object, ULONG tag, LPSPropValue* value) {
    const auto describe = [&](CallText& text) { text.Tag(tag); };
    return CallExport("HrGetOneProp", object, describe, [&] {
        Require(object != nullptr && value != nullptr, MAPI_E_INVALID_PARAMETER);
        *value = nullptr;
        SizedSPropTagArray(1, tags) = {1, {tag}};
        ULONG count = 0;
        LPSPropValue found = nullptr;
        RequireSuccess(object->GetProps(reinterpret_cast<LPSPropTagArray>(&tags), 0, &count, &found));
        Require(found != nullptr && count == 1, MAPI_E_NOT_FOUND);
        if (PROP_TYPE(found->ulPropTag) == PT_ERROR) {
            // Published: an absent property is a failure here and no warning.
            const SCODE code = found->Value.err;
            localstore::FreeBuffer(found);
            return static_cast<HRESULT>(code);
        }
        *value = found;
        return S_OK;
    });
}

void WINAPI FreeProws(LPSRowSet rows) {
    if (rows == nullptr) {
        return;
    }
    for (ULONG i = 0; i < rows->cRows; ++i) {
        localstore::FreeBuffer(rows->aRow[i].lpProps);
    }
    localstore::FreeBuffer(rows);
}

HRESULT WINAPI HrQueryAllRows(LPMAPITABLE table, LPSPropTagArray columns, LPSRestriction restriction,
                              LPSSortOrderSet order, LONG most, LPSRowSet* rows) {
    const auto describe = [&](CallText& text) {
        text.Tags(columns).Condition(restriction).Sort(order).Number("most", most);
    };
    return CallExport("HrQueryAllRows", table, describe, [&] {
        Require(table != nullptr && rows != nullptr && most >= 0, MAPI_E_INVALID_PARAMETER);
        *rows = nullptr;
        if (columns != nullptr) {
            RequireSuccess(table->SetColumns(columns, TBL_BATCH));
        }
        if (restriction != nullptr) {
            RequireSuccess(table->Restrict(restriction, TBL_BATCH));
        }
        if (order != nullptr) {
            RequireSuccess(table->SortTable(order, TBL_BATCH));
        }
        *rows = localstore::AllRows(table, most);
        return S_OK;
    });
}

}  // extern "C"
