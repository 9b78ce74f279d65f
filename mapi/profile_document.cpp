// The profile document: the mail profiles of the user. It is made without a logon too.

#include <mapitags.h>

#include "mapi/document_output.h"
#include "mapi/mapi_object.h"
#include "mapi/operation_log.h"
#include "mapi/table_rows.h"
#include "support/errors.h"
#include "support/log.h"
#include "support/settings.h"

namespace NAMESPACE_MAPI {

namespace {

constexpr int kProfileDepth = 1;

enum ProfileColumn : unsigned { kProfileName, kProfileIsDefault };

/// A text of the system's 8-bit code page as a text of 16-bit units; empty for null.
CString FromCodePage(const char* text) {
    const int units = text == nullptr ? 0 : MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    if (units <= 1) {
        return {};
    }
    CString wideText;
    wideText.resize(static_cast<std::size_t>(units) - 1);
    MultiByteToWideChar(CP_ACP, 0, text, -1, wideText.data(), units);
    return wideText;
}

/// Appends one profile. False if its node cannot be made.
bool AppendProfile(CXMLParser& document, const SRow& row) {
    const ComPtr<IXMLDOMElement> node =
        document.CreateChildElement(L"node", L"", nullptr, true, kProfileDepth);
    if (!node) {
        return false;
    }
    const bool isDefault = FlagOfColumn(row, kProfileIsDefault, PR_DEFAULT_PROFILE);
    document.SetAttribute(L"default", BooleanText(isDefault), node.Get());
    const SPropValue* const name = ValueOfColumn(row, kProfileName, PR_DISPLAY_NAME_A);
    const CString text = FromCodePage(name == nullptr ? nullptr : name->Value.lpszA);
    document.CreateChildElement(L"pname", text.c_str(), node.Get(), true, kProfileDepth + 1);
    EndElement(document, node.Get(), kProfileDepth);
    return true;
}

bool AppendProfiles(CXMLParser& document, IMAPITable* profiles) {
    SizedSPropTagArray(2, columns) = {2, {PR_DISPLAY_NAME_A, PR_DEFAULT_PROFILE}};
    profiles->SeekRow(BOOKMARK_BEGINNING, 0, nullptr);
    // Freed as one buffer and not as rows: what the rows hold stays allocated, on purpose.
    MapiBuffer<SRowSet> rows;
    const HRESULT result = pfnHrQueryAllRows(profiles, reinterpret_cast<LPSPropTagArray>(&columns), nullptr,
                                             nullptr, 0, rows.Put());
    LogResult(L"GetAppProfile", L"pfnHrQueryAllRows", result);
    if (result != S_OK || !rows) {
        return true;
    }
    for (ULONG i = 0; i < rows->cRows; ++i) {
        if (rows->aRow[i].lpProps != nullptr && !AppendProfile(document, rows->aRow[i])) {
            return false;
        }
    }
    return true;
}

}  // namespace

int CMAPIObject::GetAppProfile(wchar_t* lpszProfiles) {
    Log(kLogTrace, L"CMAPIObject::GetAppProfile : Begin\r\n");
    CXMLParser document;
    int result = 1;
    try {
        WriteProfileDocument(document, lpszProfiles);
        result = 0;
    } catch (...) {
        result = 1;
    }
    if (m_bLoggedOn == 0) {
        MAPIRelease();
        MAPIUninitialize();
    }
    document.ReleaseDocument();
    Log(kLogTrace, L"CMAPIObject::GetAppProfile : Finish(%d)\r\n", result);
    return result;
}

void CMAPIObject::WriteProfileDocument(CXMLParser& document, wchar_t* lpszProfiles) {
    if (lpszProfiles == nullptr) {
        Log(kLogFailure, L"CMAPIObject::GetAppProfile : NULL lpszProfiles\r\n");
        AfxThrowUserException();
    }
    BeginOutlookDocument(document, L"profiles", L"GetAppProfile");
    const ComPtr<IProfAdmin> administration = OpenProfileAdministration();
    ComPtr<IMAPITable> profiles;
    if (administration->GetProfileTable(0, profiles.GetAddressOf()) == S_OK && profiles &&
        !AppendProfiles(document, profiles.Get())) {
        AfxThrowUserException();
    }
    profiles.Reset();
    EndElement(document, nullptr, 0);
    SaveOutlookDocument(document, g_strProfileXml, lpszProfiles,
                        L"CMAPIObject::GetAppProfile : Failed to Save Profiles\r\n");
}

ComPtr<IProfAdmin> CMAPIObject::OpenProfileAdministration() {
    // Worked on through a reference of its own: without a logon the end of another list takes the kept one
    // away.
    ComPtr<IProfAdmin> administration = m_lpProfAdmin;
    if (!administration && IsMAPILoaded() && InitializeMAPI()) {
        pfnMAPIAdminProfiles(0, administration.GetAddressOf());
        m_lpProfAdmin = administration;
    }
    if (!administration) {
        Log(kLogFailure, L"CMAPIObject::GetAppProfile : NULL lpProfAdmin\r\n");
        AfxThrowUserException();
    }
    return administration;
}

}  // namespace NAMESPACE_MAPI
