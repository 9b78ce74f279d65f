#include "tests/soak/remote_calls.h"

#include <stdexcept>
#include <utility>

#include "support/rpc_guard.h"

namespace {

constexpr std::size_t kIdUnits = 400;
constexpr std::size_t kTimeUnits = 40;

void RequireDone(long status, const char* what) {
    if (status != 0) {
        throw std::runtime_error(std::string(what) + " gives " + std::to_string(status));
    }
}

/// Writes a document; returns the identifier that came back.
std::wstring Write(WriteCall procedure, std::wstring document) {
    wchar_t id[kIdUnits] = L"";
    wchar_t time[kTimeUnits] = L"";
    long status = -1;
    wchar_t* const texts[] = {document.data(), id, time};
    GuardedRpc([procedure, &texts, &status] { procedure(texts[0], texts[1], texts[2], &status); });
    RequireDone(status, "a write");
    return id;
}

std::wstring DocumentOf(const Kind& kind, int flag, const std::wstring& id) {
    const std::wstring root = kind.root;
    return L"<" + root + L"><lFlag>" + std::to_wstring(flag) + L"</lFlag><PIMID>" + id + L"</PIMID>" +
           kind.texts + L"</" + root + L">";
}

}  // namespace

long CallWithText(TextCall procedure, std::wstring text) {
    long status = -1;
    wchar_t* const units = text.data();
    GuardedRpc([procedure, units, &status] { procedure(units, &status); });
    return status;
}

long Read(const Kind& kind, std::wstring map) {
    long status = -1;
    wchar_t nothing[] = L"";
    wchar_t* const texts[] = {nothing, map.data()};
    GuardedRpc([&kind, &texts, &status] { kind.read(texts[0], texts[1], &status); });
    return status;
}

void RequireRead(const Kind& kind, const std::wstring& map) {
    RequireDone(Read(kind, map), "a read");
}

long Count(const Kind& kind) {
    long count = -1;
    long status = -1;
    GuardedRpc([&kind, &count, &status] { kind.count(&count, &status); });
    RequireDone(status, "a count");
    return count;
}

void LogOn() {
    RequireDone(CallWithText(MAPILogOn, L""), "a logon");
}

void LogOff() {
    GuardedRpc([] { MAPILogOff(); });
}

std::wstring Add(const Kind& kind) {
    std::wstring id = Write(kind.write, DocumentOf(kind, 8, L""));
    if (id.empty()) {
        throw std::runtime_error("an added item has no identifier");
    }
    return id;
}

void Change(const Kind& kind, const std::wstring& id) {
    Write(kind.write, DocumentOf(kind, 4, id));
}

void Delete(const Kind& kind, const std::wstring& id) {
    Write(kind.write, DocumentOf(kind, 32, id));
}
