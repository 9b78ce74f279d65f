#include "desktop/write_command.h"

#include <windows.h>

#include <algorithm>
#include <optional>
#include <set>

#include "desktop/agent_process.h"
#include "desktop/callback_service.h"
#include "desktop/input_file.h"
#include "desktop/interrupt.h"
#include "desktop/output_stream.h"
#include "desktop/read_command.h"
#include "desktop/single_instance.h"
#include "desktop/state_reader.h"
#include "desktop/write_judgement.h"
#include "support/number_text.h"
#include "support/owners.h"

namespace {

/// The sizes of a write's two outputs, in characters.
constexpr std::size_t kIdUnits = 400;
constexpr std::size_t kTimeUnits = 40;

/// One document on its way.
struct Order {
    CString name;        ///< its file, for the user
    CString document;    ///< its text; empty if it was refused before it went out
    FileHandle picture;  ///< keeps the file that it names as it is until it is written
    CString reason;      ///< why it was
    WriteFacts facts;
    bool wasSent = false;
    WriteOutcome outcome = WriteOutcome::kUnproven;
};

/// Holds the picture that a document names: a list of the folder makes the agent write pictures, and an agent
/// that was started since the document was read begins again with the name of this one.
FileHandle HoldPicture(ItemDocument& document) {
    const CString path = document.Field(L"PICPath");
    if (path.empty()) {
        return {};
    }
    return FileHandle(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
}

/// Looks at what a document asks for. One that asks for nothing would come back as if it had been done.
void Examine(Order& order, const ItemKind& kind, std::set<std::string>& named) {
    ItemDocument document(kind.root, order.document.View());
    order.facts.kind = WriteKindOf(ReadNumber(document.Field(L"lFlag")));
    const CString id = document.Field(L"PIMID");
    order.picture = HoldPicture(document);
    if (!document.IsValid()) {
        order.reason = L"it is no document of this kind of item";
    } else if (order.facts.kind == WriteKind::kNothing) {
        order.reason = L"its lFlag asks for nothing: 8 adds, 4 changes, 32 deletes";
    } else if (order.facts.kind != WriteKind::kAdd && id.empty()) {
        order.reason = L"it has no PIMID";
    } else if (const wchar_t* objection = kind.objection(document);
               order.facts.kind != WriteKind::kDelete && objection != nullptr) {
        order.reason = objection;
    } else if (order.facts.kind != WriteKind::kAdd && !named.insert(StateKey(id.View())).second) {
        order.reason = L"another one is for the same item";
    }
}

Order ReadOrder(const CString& name, const ItemKind& kind, std::set<std::string>& named) {
    Order order;
    order.name = name;
    try {
        order.document = ReadDocumentText(name);
        Examine(order, kind, named);
    } catch (const Failure& failure) {
        order.reason = failure.Message();
    }
    return order;
}

Order DeletionOf(const CString& id, const ItemKind& kind) {
    Order order;
    order.name = L"--delete";
    order.facts.kind = WriteKind::kDelete;
    order.document =
        CString::Format(L"<%s><lFlag>32</lFlag><PIMID>%s</PIMID></%s>", kind.root, id.c_str(), kind.root);
    return order;
}

std::vector<Order> TakeOrders(const ItemKind& kind, const Arguments& arguments) {
    std::vector<Order> orders;
    if (arguments.Has(kOptionDelete)) {
        orders.push_back(DeletionOf(arguments.doomed, kind));
        return orders;
    }
    const ComApartmentHold apartment;
    std::set<std::string> named;
    for (std::size_t i = 2; i < arguments.words.size(); ++i) {
        orders.push_back(ReadOrder(arguments.words[i], kind, named));
    }
    return orders;
}

void Send(Order& order, const AgentConnection& agent, const ItemKind& kind) {
    wchar_t id[kIdUnits] = L"";
    wchar_t time[kTimeUnits] = L"";
    long status = 1;
    order.wasSent = true;
    wchar_t* const outputs[] = {id, time};
    agent.Call([&] { kind.write(order.document.data(), outputs[0], outputs[1], &status); });
    id[kIdUnits - 1] = L'\0';
    time[kTimeUnits - 1] = L'\0';
    order.facts.id = id;
    order.facts.time = time;
}

/// Sends all documents, each of which is then judged. Returns what ended it too early, if anything did.
std::optional<Failure> SendAll(std::vector<Order>& orders, const AgentConnection& agent,
                               const ItemKind& kind) {
    try {
        for (Order& order : orders) {
            if (Interrupted()) {
                return Failure(ExitCode::kInterrupted, L"interrupted");
            }
            if (order.reason.empty()) {
                Send(order, agent, kind);
            }
        }
    } catch (const Failure& failure) {
        return failure;
    }
    return std::nullopt;
}

/// A map counts seconds, so a change shows only from the next one on.
void WaitForNextSecond() {
    constexpr DWORD kSecond = 1000;
    SYSTEMTIME now{};
    GetLocalTime(&now);
    Sleep(kSecond - std::min<DWORD>(now.wMilliseconds, kSecond - 1));
    SYSTEMTIME then = now;
    while (then.wSecond == now.wSecond) {
        Sleep(1);
        GetLocalTime(&then);
    }
}

void JudgeAll(std::vector<Order>& orders, const FolderState* before, const FolderState* after) {
    std::vector<Order*> sent;
    std::vector<WriteFacts> facts;
    for (Order& order : orders) {
        if (order.wasSent) {
            sent.push_back(&order);
            facts.push_back(order.facts);
        }
    }
    const std::vector<WriteOutcome> outcomes = JudgeWrites(facts, before, after);
    for (std::size_t i = 0; i < sent.size(); ++i) {
        sent[i]->outcome = outcomes[i];
    }
}

/// Writes through one session and judges by what the folder held before and holds now.
std::optional<Failure> WriteThrough(const ItemKind& kind, const Arguments& arguments,
                                    std::vector<Order>& orders) {
    const CallbackService callbacks;
    const AgentConnection agent;
    EnsureAgent(agent, arguments.agent);
    const AgentSession session(agent, arguments.profile);
    ChooseFolder(agent, kind, arguments);
    const std::optional<FolderState> before = ReadFolderState(agent, kind);
    WaitForNextSecond();
    std::optional<Failure> failure = SendAll(orders, agent, kind);
    std::optional<FolderState> after;
    try {
        after = ReadFolderState(agent, kind);
    } catch (const Failure& lost) {
        failure = failure ? failure : lost;
    }
    JudgeAll(orders, before ? &*before : nullptr, after ? &*after : nullptr);
    return failure;
}

const wchar_t* WordFor(const Order& order) {
    if (!order.reason.empty()) {
        return L"refused";
    }
    if (!order.wasSent) {
        return L"not tried";
    }
    switch (order.outcome) {
        case WriteOutcome::kDone:
            return order.facts.kind == WriteKind::kDelete ? L"deleted" : L"written";
        case WriteOutcome::kRefused:
            return L"refused";
        case WriteOutcome::kUnproven:
            break;
    }
    return L"unproven";
}

bool IsDone(const Order& order) {
    return order.wasSent && order.outcome == WriteOutcome::kDone;
}

/// Prints what became of each document, and what came back whatever became of it: it tells the user what the
/// agent told.
void PrintResults(const std::vector<Order>& orders, const Arguments& arguments) {
    TextTable table({L"RESULT", L"TIME", L"FILE", L"IDENTIFIER"});
    for (const Order& order : orders) {
        table.Add({WordFor(order), order.facts.time, order.name, order.facts.id});
        if (!order.reason.empty()) {
            OutputStream(STD_ERROR_HANDLE).Write(CString(order.name + L": " + order.reason + L"\n").View());
        }
    }
    const std::size_t columns = OutputStream(STD_OUTPUT_HANDLE).Columns();
    PrintOutput((arguments.Has(kOptionTabs) ? table.TabSeparated() : table.Aligned(columns)).View());
}

}  // namespace

void WriteItems(const ItemKind& kind, const Arguments& arguments) {
    const SingleInstance instance;
    std::vector<Order> orders = TakeOrders(kind, arguments);
    std::optional<Failure> failure;
    if (std::ranges::any_of(orders, [](const Order& order) { return order.reason.empty(); })) {
        failure = WriteThrough(kind, arguments, orders);
    }
    PrintResults(orders, arguments);
    if (failure) {
        throw Failure(*failure);
    }
    const auto done = static_cast<std::size_t>(std::ranges::count_if(orders, IsDone));
    if (done < orders.size()) {
        throw Failure(
            ExitCode::kDocumentRefused,
            CString::Format(L"only %Iu of %Iu documents are proved to be written", done, orders.size()));
    }
}
