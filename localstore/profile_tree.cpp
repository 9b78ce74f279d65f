#include "localstore/profile_tree.h"

#include <windows.h>

#include <map>

#include "localstore/failure.h"
#include "localstore/file_system.h"

namespace localstore {

namespace {

Text g_root;  ///< the root that SetRootPath gave, empty for none

struct KeptIni {
    FileStamp stamp;
    FolderIni ini;
};

Text FullPath(const Text& path) {
    const DWORD size = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    Text full(size, L'\0');
    full.resize(GetFullPathNameW(path.c_str(), size, full.data(), nullptr));
    while (full.size() > 3 && full.back() == L'\\') {
        full.pop_back();
    }
    return full;
}

Text EnvironmentRoot() {
    const DWORD size = GetEnvironmentVariableW(L"LOCALSTORE_ROOT", nullptr, 0);
    Text path(size, L'\0');
    path.resize(size == 0 ? 0 : GetEnvironmentVariableW(L"LOCALSTORE_ROOT", path.data(), size));
    return path;
}

Text FolderBesideModule() {
    HMODULE module = nullptr;
    constexpr DWORD flags =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(&g_root), &module) == FALSE) {
        ThrowFileError();
    }
    constexpr DWORD longest = 32'768;
    Text path(longest, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), longest));
    return path.substr(0, path.size() - LastComponent(path).size()) + L"LocalStore";
}

/// The first with Default=1, else the first that does not say Default=0, else none.
template<class Info>
void ChooseDefault(std::vector<Info>& list, const std::vector<std::optional<bool>>& wishes) {
    for (const bool explicitly : {true, false}) {
        for (std::size_t i = 0; i < list.size(); ++i) {
            if (explicitly ? wishes[i] == true : !wishes[i].has_value()) {
                list[i].isDefault = true;
                return;
            }
        }
    }
}

}  // namespace

Text RootPath() {
    if (!g_root.empty()) {
        return g_root;
    }
    const Text environment = EnvironmentRoot();
    return FullPath(environment.empty() ? FolderBesideModule() : environment);
}

void SetRootPath(const Text& path) {
    g_root = path.empty() ? Text() : FullPath(path);
}

std::vector<ProfileInfo> ListProfiles() {
    std::vector<ProfileInfo> profiles;
    std::vector<std::optional<bool>> wishes;
    const Text root = RootPath();
    for (const Text& name : ListSubFolders(root)) {
        const FolderIni ini = ReadFolderIni(JoinPath(root, name));
        profiles.push_back({ini.Find(L"Profile", L"Name").value_or(name), name, false});
        wishes.push_back(ini.FindFlag(L"Profile", L"Default"));
    }
    ChooseDefault(profiles, wishes);
    return profiles;
}

std::vector<StoreInfo> ListStores(const Text& directory) {
    std::vector<StoreInfo> stores;
    std::vector<std::optional<bool>> wishes;
    const Text folder = JoinPath(RootPath(), directory);
    for (const Text& name : ListSubFolders(folder)) {
        const FolderIni ini = ReadFolderIni(JoinPath(folder, name));
        const bool refuses = ini.FindFlag(L"Store", L"Refuse").value_or(false);
        stores.push_back({StoreTree::Of(folder, directory, name), false, refuses});
        wishes.push_back(ini.FindFlag(L"Store", L"Default"));
    }
    ChooseDefault(stores, wishes);
    return stores;
}

FolderIni ReadFolderIni(const Text& folder) {
    static std::map<Text, KeptIni> kept;
    const Text path = JoinPath(folder, L"folder.ini");
    const std::optional<FileEntry> file = QueryFile(path);
    if (!file) {
        kept.erase(path);
        return {};
    }
    const auto found = kept.find(path);
    if (found != kept.end() && found->second.stamp == file->stamp) {
        return found->second.ini;
    }
    const std::optional<Text> text = ReadTextFile(path);
    FolderIni ini = text ? FolderIni(*text) : FolderIni();
    kept[path] = {file->stamp, ini};
    return ini;
}

bool SameName(std::wstring_view left, std::wstring_view right) {
    return CompareStringOrdinal(left.data(), static_cast<int>(left.size()), right.data(),
                                static_cast<int>(right.size()), TRUE) == CSTR_EQUAL;
}

}  // namespace localstore
