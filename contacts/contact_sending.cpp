#include "contacts/contact_sending.h"

#include "mapi/send_back.h"

const ItemKind kContactItems{L"IPM.Contact", L"IPF.Contact", L"m_lpContactFolder"};

void BeginContactDocument(CXMLParser& document) {
    BeginItemDocument(document, L"Contact");
}

void SendContact(const CString& xml) {
    SendItem(xml, &SendBackOneContact, L"MAPISendBackOneContact Excetipion");
}
