#include <mapitags.h>

#include <utility>

#include "mapi/exact_restriction.h"
#include "mapi/folder_types.h"
#include "mapi/mapi_object.h"
#include "mapi/store_entries.h"
#include "mapi/store_table.h"
#include "support/errors.h"
#include "support/log.h"

NAMESPACE_MAPI::CMAPIObject g_MAPIObject;

namespace NAMESPACE_MAPI {

namespace {

constexpr FLAGS kLogonFlags =
    MAPI_UNICODE | MAPI_TIMEOUT_SHORT | MAPI_EXTENDED | MAPI_EXPLICIT_PROFILE | MAPI_NEW_SESSION;

/// The store that is marked as the default, as the one row of a table.
TableRows QueryDefaultStore(IMAPISession* session) {
    ExactRestriction isDefault(PR_DEFAULT_STORE, true);
    return QueryStores(session, isDefault.Get(), L"MAPILogOn");
}

}  // namespace

CMAPIObject::CMAPIObject() {
    m_arrDefaultFolderIds.SetSize(kFolderTypeSlots);
}

CMAPIObject::~CMAPIObject() {
    // Left open on purpose: a process that ends without MAPILogOff leaves its session to the mail provider,
    // which may be gone from memory by now.
    (void)m_lpContactFolder.Detach();
    (void)m_lpEventFolder.Detach();
    (void)m_lpMsgStore.Detach();
    (void)m_lpMAPISession.Detach();
    (void)m_lpProfAdmin.Detach();
}

int CMAPIObject::MAPILogOn(ULONG /*reserved*/, const wchar_t* profile) {
    Log(kLogTrace, L"CMAPIObject::MAPILogOn - Begin ---------ProfileName(%s)\r\n", profile);
    bool loggedOn = false;
    try {
        loggedOn = InitializeMAPI() && OpenSession(profile) && OpenDefaultStore();
    } catch (...) {
        Log(kLogFailure, L"CMAPIObject::MAPILogOn - Failed\r\n");
        loggedOn = false;
    }
    if (!loggedOn) {
        MAPILogOff();
    }
    m_bLoggedOn = loggedOn ? 1 : 0;
    Log(kLogTrace, L"CMAPIObject::MAPILogOn - Finish(%s)\r\n", Outcome(loggedOn));
    return m_bLoggedOn;
}

bool CMAPIObject::InitializeMAPI() {
    if (!IsMAPILoaded()) {
        AfxThrowUserException();
    }
    if (m_bMAPIInitialized == 0) {
        MAPIINIT_0 init{MAPI_INIT_VERSION, 0};
        m_bMAPIInitialized = pfnMAPIInitialize(&init) == S_OK ? 1 : 0;
    }
    return m_bMAPIInitialized != 0;
}

bool CMAPIObject::OpenSession(const wchar_t* profile) {
    Log(kLogTrace, L"CMAPIObject::MAPILogOn - MAPIInitialize(Succeeded)\r\n");
    MAPIRelease();
    m_hNotifyWnd = nullptr;

    const bool named = profile != nullptr && *profile != L'\0';
    // Into a pointer of its own: a second logon that comes meanwhile must not lose its session to this one.
    ComPtr<IMAPISession> session;
    const HRESULT result =
        pfnMAPILogonEx(0, reinterpret_cast<LPTSTR>(const_cast<wchar_t*>(profile)), nullptr,
                       named ? kLogonFlags : kLogonFlags | MAPI_USE_DEFAULT, session.GetAddressOf());
    m_lpMAPISession = std::move(session);
    Log(kLogTrace, L"CMAPIObject::MAPILogOn - MAPILogonEx(0X%08X)\r\n", result);
    return result == S_OK;
}

bool CMAPIObject::OpenDefaultStore() {
    const ComPtr<IMAPISession> session = m_lpMAPISession;
    if (!session) {
        // None came, or another call has taken it away since.
        return false;
    }
    const TableRows stores = QueryDefaultStore(session.Get());
    if (stores.Count() == 0) {
        return false;
    }
    const ComPtr<IMsgStore> store = OpenStore(session.Get(), stores.Row(0), L"MAPILogOn");
    m_lpMsgStore = store;
    if (!store) {
        return false;
    }
    LoadDefaultFolderIds(store.Get(), m_arrDefaultFolderIds);
    m_lpContactFolder = GetDefaultFolder(store.Get(), kFolderTypes[kContactFolderType].defaultFolderTag);
    m_lpEventFolder = GetDefaultFolder(store.Get(), kFolderTypes[kCalendarFolderType].defaultFolderTag);
    m_CurrentTimeZone = ReadCurrentTimeZone();
    return true;
}

void CMAPIObject::MAPILogOff() {
    Log(kLogTrace, L"CMAPIObject::MAPILogOff : Begin\r\n");
    MAPIRelease();
    MAPIUninitialize();
    m_bLoggedOn = 0;
    Log(kLogTrace, L"CMAPIObject::MAPILogOff : Finish\r\n");
}

void CMAPIObject::MAPIRelease() {
    try {
        Log(kLogTrace, L"CMAPIObject::MAPIRelease : Begin\r\n");
        m_lpContactFolder.Reset();
        m_lpEventFolder.Reset();
        m_lpMsgStore.Reset();
        if (const ComPtr<IMAPISession> session = m_lpMAPISession) {
            const HRESULT result =
                session->Logoff(reinterpret_cast<ULONG_PTR>(m_hNotifyWnd), MAPI_LOGOFF_UI, 0);
            Log(kLogTrace, L"CMAPIObject::MAPIRelease - m_lpMAPISession->Logoff(0X%08X)\r\n", result);
            m_lpMAPISession.Reset();
        }
        m_lpProfAdmin.Reset();
        Log(kLogTrace, L"CMAPIObject::MAPIRelease : Finish\r\n");
    } catch (...) {
        Log(kLogFailure, L"CMAPIObject::MAPIRelease : failed\r\n");
    }
}

void CMAPIObject::MAPIUninitialize() {
    try {
        Log(kLogTrace, L"CMAPIObject::MAPIUninitialize : Begin\r\n");
        if (m_bMAPIInitialized != 0) {
            pfnMAPIUninitialize();
            Log(kLogTrace, L"CMAPIObject::MAPIUninitialize - pfnMAPIUninitialize(0X%08X)\r\n",
                GetLastError());
            m_bMAPIInitialized = 0;
        }
        Log(kLogTrace, L"CMAPIObject::MAPIUninitialize : Finish\r\n");
    } catch (...) {
        Log(kLogFailure, L"CMAPIObject::MAPIUninitialize : Failed\r\n");
    }
}

void CMAPIObject::Stop() {
    Log(kLogTrace, L"CMAPIObject::Stop - Begin\r\n");
    m_bStop = 1;
    Log(kLogTrace, L"CMAPIObject::Stop - Finish\r\n");
}

}  // namespace NAMESPACE_MAPI
