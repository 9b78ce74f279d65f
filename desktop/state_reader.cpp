#include "desktop/state_reader.h"

#include <windows.h>

#include <cwchar>
#include <string>

#include "desktop/callback_service.h"
#include "desktop/input_file.h"
#include "support/rpc_guard.h"

extern "C" {
#include "command.h"
}

namespace {

/// Far more than the map of any folder takes.
constexpr long long kLongestMap = 1024LL * 1024 * 1024;

/// The path of a file that is not there yet, which is removed in the end.
class TemporaryFile {
  public:
    TemporaryFile() {
        wchar_t folder[MAX_PATH + 1] = L"";
        wchar_t path[MAX_PATH + 1] = L"";
        if (GetTempPathW(MAX_PATH + 1, folder) == 0 || GetTempFileNameW(folder, L"zeb", 0, path) == 0) {
            throw Failure(ExitCode::kOutputFailed, L"the folder for temporary files cannot be written to");
        }
        m_path = path;
        // An empty file would be no map.
        DeleteFileW(path);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() { DeleteFileW(m_path.c_str()); }

    [[nodiscard]] const CString& Path() const { return m_path; }

  private:
    CString m_path;
};

/// Stops the read at its first document, where a read of changes can be stopped: by then the map is complete.
/// From in here the mark comes in the middle of the read for certain, which takes it back at its end.
class StoppingReceiver : public ItemReceiver {
  public:
    explicit StoppingReceiver(const ItemKind& kind) : m_kind(kind) {}

    void Receive(const wchar_t* document) noexcept override {
        if (!m_stopSent) {
            m_stopSent = GuardRpcCall([](void* /*unused*/) noexcept { Stop(); }, nullptr) == 0;
        }
        try {
            RemovePicture(document);
        } catch (...) {
            // A picture too many in the agent's folder is no reason to fail.
        }
    }

    [[nodiscard]] bool HasStopped() const { return m_stopSent; }

  private:
    /// The file of the picture belongs to whoever receives the document.
    void RemovePicture(const wchar_t* document) const {
        // A read of changed appointments does not stop, so all of them come here, and none has a picture.
        if (std::wcsstr(document, L"<PICPath>") == nullptr) {
            return;
        }
        const ComApartmentHold hold;
        ItemDocument item(m_kind.root, document);
        const CString path = item.Field(L"PICPath");
        if (!path.empty()) {
            DeleteFileW(path.c_str());
        }
    }

    const ItemKind& m_kind;
    bool m_stopSent = false;
};

}  // namespace

std::optional<FolderState> ReadFolderState(const AgentConnection& agent, const ItemKind& kind) {
    const TemporaryFile map;
    CString path = map.Path();
    long status = 1;
    StoppingReceiver receiver(kind);
    {
        const Reception reception(receiver);
        wchar_t nothing[] = L"";
        agent.Call([&] { kind.read(nothing, path.data(), &status); });
    }
    if (status != 0 && !receiver.HasStopped()) {
        return std::nullopt;
    }
    const std::optional<std::string> text = ReadFileBytes(map.Path(), kLongestMap);
    // Of an empty folder there need not be a map; a map that is missing behind a document tells nothing.
    if (!text && receiver.HasStopped()) {
        return std::nullopt;
    }
    return FolderState(text.value_or(std::string()));
}
