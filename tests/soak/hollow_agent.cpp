// What the agent stands on, without the agent: hollow_agent ITEMS KEPT serves the same calls by the RPC
// runtime, sends as many documents made by the XML service to the desktop program, and reads those that come
// in. There is no mail system and nothing of the agent's own but the stubs and the guard of remote calls, so
// what such a process grows by is what the platform keeps; and KEPT bytes for each document that it makes, to
// see that these are counted.

#include <windows.h>

#include <rpc.h>

#include <cstdio>
#include <cwchar>
#include <stdexcept>
#include <string>

#include "callback.h"
#include "command.h"
#include "support/owners.h"
#include "support/rpc_endpoints.h"
#include "support/rpc_guard.h"
#include "tests/rpc_binding.h"
#include "tests/xml_document.h"

namespace {

constexpr unsigned kMaxCalls = 1234;

/// The items of a kind: as many as there were at the start, and what changed since they were asked for.
struct Kind {
    unsigned long items = 0;
    unsigned long changed = 0;
};

// One call at a time uses them.
Kind g_contacts;
Kind g_calendars;
/// What each document leaves behind on purpose, in bytes, and the last such block. Each begins with the
/// address of the one before.
std::size_t g_kept = 0;
void* g_lastKept = nullptr;

void Require(bool done, const char* what) {
    if (!done) {
        throw std::runtime_error(std::string(what) + " failed");
    }
}

Bstr MakeBstr(const wchar_t* text) {
    return Bstr(SysAllocString(text));
}

/// COM on the calling thread for one call.
class Com {
  public:
    Com() { Require(SUCCEEDED(CoInitialize(nullptr)), "CoInitialize"); }
    Com(const Com&) = delete;
    Com& operator=(const Com&) = delete;
    ~Com() { CoUninitialize(); }
};

ComPtr<IXMLDOMDocument> MakeDocument() {
    ComPtr<IXMLDOMDocument> document;
    Require(MakeXmlDocument(document) == S_OK, "CoCreateInstance");
    document->put_async(VARIANT_FALSE);
    return document;
}

/// Leaves a block behind, if there is room in it.
void Keep() {
    if (g_kept >= sizeof(void*)) {
        auto* const block = static_cast<void**>(HeapAlloc(GetProcessHeap(), 0, g_kept));
        Require(block != nullptr, "HeapAlloc");
        *block = g_lastKept;
        g_lastKept = block;
    }
}

/// A document with a declaration, some elements and an attribute, as a text.
Bstr MakeText() {
    Keep();
    const ComPtr<IXMLDOMDocument> document = MakeDocument();
    Require(AppendDeclaration(document.Get()) == S_OK, "the declaration");
    ComPtr<IXMLDOMElement> root;
    Require(document->createElement(MakeBstr(L"Item").Get(), &root) == S_OK &&
                document->appendChild(root.Get(), nullptr) == S_OK,
            "the root");
    for (const wchar_t* const name : {L"FirstName", L"LastName", L"Email1"}) {
        ComPtr<IXMLDOMText> indent;
        ComPtr<IXMLDOMElement> element;
        Require(document->createTextNode(MakeBstr(L"\n\t").Get(), &indent) == S_OK &&
                    root->appendChild(indent.Get(), nullptr) == S_OK &&
                    document->createElement(MakeBstr(name).Get(), &element) == S_OK &&
                    element->put_text(MakeBstr(L"text").Get()) == S_OK &&
                    root->appendChild(element.Get(), nullptr) == S_OK,
                "an element");
    }
    const Bstr id = MakeBstr(L"id");
    VARIANT value{};
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = id.Get();
    Require(root->setAttribute(MakeBstr(L"id").Get(), value) == S_OK, "an attribute");
    Bstr text;
    Require(document->get_xml(text.Put()) == S_OK, "the text");
    return text;
}

/// The flag of a document that came in.
int FlagOf(const wchar_t* xml) {
    const ComPtr<IXMLDOMDocument> document = MakeDocument();
    VARIANT_BOOL loaded = VARIANT_FALSE;
    Require(document->loadXML(MakeBstr(xml).Get(), &loaded) == S_OK && loaded == VARIANT_TRUE, "loadXML");
    ComPtr<IXMLDOMNode> node;
    Bstr text;
    Require(document->selectSingleNode(MakeBstr(L"/*/lFlag").Get(), &node) == S_OK &&
                node->get_text(text.Put()) == S_OK,
            "the flag");
    return static_cast<int>(std::wcstol(text.Get(), nullptr, 10));
}

using SendBack = void (*)(wchar_t* xml);

void Send(SendBack procedure, wchar_t* text) {
    GuardedRpc([procedure, text] { procedure(text); });
}

/// The status of a call: 0, or 1 where anything failed.
template<class Call>
long StatusOf(Call call) {
    try {
        const Com com;
        call();
        return 0;
    } catch (const std::exception&) {
        return 1;
    }
}

/// Without a map all items are sent, and with one those that changed.
long Read(Kind& kind, SendBack procedure, const wchar_t* map) {
    return StatusOf([&] {
        unsigned long count = kind.items;
        if (*map != L'\0') {
            count = kind.changed;
            kind.changed = 0;
        }
        for (; count > 0; --count) {
            Send(procedure, MakeText().Get());
        }
    });
}

struct Outputs {
    wchar_t* id;
    wchar_t* time;
};

/// An item that is added or deleted has changed; one that is changed was added before.
long Write(Kind& kind, const wchar_t* xml, const Outputs& outputs) {
    constexpr int kChange = 4;
    std::wcscpy(outputs.id, L"id");
    std::wcscpy(outputs.time, L"time");
    return StatusOf([&] { kind.changed += FlagOf(xml) == kChange ? 0U : 1U; });
}

}  // namespace

void Shutdown() {}

void Stop() {}

void MAPILogOn(wchar_t* /*profile*/, long* status) {
    // Each logon makes a binding, and none is let go: that is how the agent's logons are to be.
    *status = MakeBinding(kCallbackEndpoint, &g_hOutlookBinding) == RPC_S_OK ? 0 : 1;
}

void MAPILogOff() {}

void GetAppProfile(wchar_t* /*profiles*/, long* status) {
    *status = 0;
}

void GetAppFolder(wchar_t* /*folders*/, long* status) {
    *status = StatusOf([] { MakeText(); });
}

void SetContactFolder(wchar_t* /*selection*/, long* status) {
    *status = 0;
}

void SetCalendarFolder(wchar_t* /*selection*/, long* status) {
    *status = 0;
}

void GetContactCount(long* count, long* status) {
    *count = static_cast<long>(g_contacts.items);
    *status = 0;
}

void GetCalendarCount(long* count, long* status) {
    *count = static_cast<long>(g_calendars.items);
    *status = 0;
}

void GetContactFolder(wchar_t* /*folder*/, long* status) {
    *status = 0;
}

void GetCalendarFolder(wchar_t* /*folder*/, long* status) {
    *status = 0;
}

void Reserved10(wchar_t* /*text*/, long* /*status*/) {}

void ReadContacts(wchar_t* /*ignored*/, wchar_t* lParam1, long* status) {
    *status = Read(g_contacts, MAPISendBackOneContact, lParam1);
}

void ReadCalendars(wchar_t* /*ignored*/, wchar_t* lParam1, long* status) {
    *status = Read(g_calendars, MAPISendBackOneCalenda, lParam1);
}

void WriteContacts(wchar_t* xml, wchar_t* id, wchar_t* time, long* status) {
    *status = Write(g_contacts, xml, {id, time});
}

void WriteCalendars(wchar_t* xml, wchar_t* id, wchar_t* time, long* status) {
    *status = Write(g_calendars, xml, {id, time});
    // The end of a write comes as an empty document.
    wchar_t nothing[] = L"";
    *status |= StatusOf([&] { Send(MAPISendBackOneCalenda, nothing); });
}

// What the stubs allocate by.

void* __RPC_USER MIDL_user_allocate(std::size_t bytes) {
    return HeapAlloc(GetProcessHeap(), 0, bytes);
}

void __RPC_USER MIDL_user_free(void* memory) {
    HeapFree(GetProcessHeap(), 0, memory);
}

int wmain(int count, wchar_t** words) {
    try {
        Require(count == 3, "hollow_agent ITEMS KEPT");
        g_contacts.items = std::wcstoul(words[1], nullptr, 10);
        g_contacts.changed = g_contacts.items;
        g_calendars = g_contacts;
        g_kept = std::wcstoul(words[2], nullptr, 10);
        const Com com;
        // Held so that the library stays, as it does in the agent.
        const ComPtr<IXMLDOMDocument> hold = MakeDocument();
        Require(RpcServerUseProtseqEpW(RpcText(kProtocolSequence), kMaxCalls, RpcText(kCommandEndpoint),
                                       nullptr) == RPC_S_OK &&
                    RpcServerRegisterIf(ZebAgentCommand_v1_0_s_ifspec, nullptr, nullptr) == RPC_S_OK &&
                    RpcServerListen(1, kMaxCalls, TRUE) == RPC_S_OK,
                "serving the calls");
        std::puts("listens");
        (void)std::fflush(stdout);
        return static_cast<int>(RpcMgmtWaitServerListen());
    } catch (const std::exception& failure) {
        (void)std::fprintf(stderr, "hollow_agent: %s\n", failure.what());
        return 1;
    }
}
