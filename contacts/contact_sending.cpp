#include "contacts/contact_sending.h"

#include "mapi/send_back.h"
#include "support/log.h"

const ItemKind kContactItems{L"IPM.Contact", L"IPF.Contact", L"m_lpContactFolder"};

void BeginContactDocument(CXMLParser& document) {
    if (!document.InitDocument()) {
        Log(kLogFailure, L"Xml to calnedaex - failed\r\n");
        document.ReleaseDocument();
        throw NoDocument();
    }
    document.CreateHeader();
    document.CreateRootElement(L"Contact");
}

void SendContact(const CString& xml) {
    try {
        SendBackOneContact(xml);
    } catch (...) {
        Log(kLogFailure, L"MAPISendBackOneContact Excetipion");
    }
}
