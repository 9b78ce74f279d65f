#include "store_fixture.h"

#include <mapiguid.h>

using namespace localstore_test;

class Refusals : public StoreTest {};

TEST_F(Refusals, WhatIsNotSupportedSaysSo) {
    const ComPtr<IMAPISession> session = LogOn();
    const ComPtr<IMsgStore> store = OpenStore(session.Get());
    const ComPtr<IMAPIFolder> folder = OpenFolder(store.Get(), L"Contacts");
    const ComPtr<IMessage> message = OpenMessage(folder.Get(), AddContact(folder.Get(), L"a"));
    EXPECT_EQ(session->SetDefaultStore(0, 0, nullptr), MAPI_E_NO_SUPPORT);
    EXPECT_EQ(session->QueryIdentity(nullptr, nullptr), MAPI_E_NO_SUPPORT);
    EXPECT_EQ(store->AbortSubmit(0, nullptr, 0), MAPI_E_NO_SUPPORT);
    EXPECT_EQ(store->SetReceiveFolder(nullptr, 0, 0, nullptr), MAPI_E_NO_SUPPORT);
    EXPECT_EQ(folder->EmptyFolder(0, nullptr, 0), MAPI_E_NO_SUPPORT);
    EXPECT_EQ(folder->CreateFolder(FOLDER_GENERIC, nullptr, nullptr, nullptr, 0, nullptr), MAPI_E_NO_SUPPORT);
    EXPECT_EQ(message->SubmitMessage(0), MAPI_E_NO_SUPPORT);
    EXPECT_EQ(message->CopyTo(0, nullptr, nullptr, 0, nullptr, nullptr, nullptr, 0, nullptr),
              MAPI_E_NO_SUPPORT);
    EXPECT_EQ(localstore::recorder::CallLines().back(), "IMessage::CopyTo [Contacts\\a.msg]");
}

TEST_F(Refusals, ObjectsKnowTheirInterfaces) {
    const ComPtr<IMAPIFolder> folder = OpenContacts();
    ComPtr<IUnknown> unknown;
    EXPECT_EQ(folder->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(unknown.GetAddressOf())), S_OK);
    ComPtr<IMAPIProp> prop;
    EXPECT_EQ(folder->QueryInterface(IID_IMAPIProp, reinterpret_cast<void**>(prop.GetAddressOf())), S_OK);
    ComPtr<IMAPIContainer> container;
    EXPECT_EQ(folder->QueryInterface(IID_IMAPIContainer, reinterpret_cast<void**>(container.GetAddressOf())),
              S_OK);
    void* other = &other;
    EXPECT_EQ(folder->QueryInterface(IID_IMessage, &other), E_NOINTERFACE);
    EXPECT_EQ(other, nullptr);
    EXPECT_EQ(folder->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(Refusals, OpenEntryRefusesAnInterfaceThatTheObjectDoesNotHave) {
    const ComPtr<IMAPIFolder> folder = OpenContacts();
    std::vector<BYTE> id = IdOf(folder.Get());
    ULONG type = 0;
    ComPtr<IUnknown> object;
    EXPECT_EQ(folder->OpenEntry(static_cast<ULONG>(id.size()), reinterpret_cast<LPENTRYID>(id.data()),
                                &IID_IMessage, 0, &type, &object),
              MAPI_E_INTERFACE_NOT_SUPPORTED);
    EXPECT_EQ(folder->OpenEntry(static_cast<ULONG>(id.size()), reinterpret_cast<LPENTRYID>(id.data()),
                                &IID_IMAPIFolder, 0, &type, &object),
              S_OK);
}

TEST_F(Refusals, GetLastErrorHasNothingToAdd) {
    const ComPtr<IMAPIFolder> folder = OpenContacts();
    MapiBuffer<MAPIERROR> error;
    EXPECT_EQ(folder->GetLastError(MAPI_E_NOT_FOUND, 0, error.Put()), S_OK);
    EXPECT_FALSE(error);
}
