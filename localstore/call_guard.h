#pragma once

// The one shape in which a call enters the store: under the store's lock, recorded and failed on request in a
// recording build, and with every exception turned into a result code. No exception leaves the store.

#include <windows.h>

#include <mutex>
#include <new>
#include <optional>

#include "localstore/call_text.h"
#include "localstore/failure.h"

namespace localstore {

/// One lock for all objects of the process. Calls are short, and objects share messages, names and the index
/// of the files.
std::recursive_mutex& StoreMutex();

#ifdef LOCALSTORE_RECORDING
/// A call on its thread, in which it is the outermost one or part of another. Its construction does not
/// return while the recorder holds the call.
class CallHold {
  public:
    CallHold();
    CallHold(const CallHold&) = delete;
    CallHold& operator=(const CallHold&) = delete;
    ~CallHold();
};

/// Tells the recorder of one call, from its beginning to its result.
class CallRecord {
  public:
    CallRecord();
    CallRecord(const CallRecord&) = delete;
    CallRecord& operator=(const CallRecord&) = delete;
    ~CallRecord();

    /// True if this call is a client's and its text is wanted, for the record or to fail it by its name.
    [[nodiscard]] bool IsWanted() const;
    void Describe(const char* interfaceName, const char* method, std::string object, std::string arguments);
    /// The result with which this call is to end instead of running; none to run.
    [[nodiscard]] std::optional<HRESULT> Failure() const { return m_failure; }
    HRESULT Finish(HRESULT result) const;

  private:
    bool m_outermost;
    std::size_t m_index = 0;
    std::optional<HRESULT> m_failure;
    std::optional<HRESULT> m_warning;
};
#endif

/// Who is called, for the recorder: an interface, or null for an exported function, with the object's name
/// and the names of its store.
struct CallSubject {
    const char* interfaceName = nullptr;
    Text object;
    NamedProperties* names = nullptr;
};

/// Runs the body of a call. `subject` gives the CallSubject and `describe` adds the arguments; both run only
/// when recording.
template<class Subject, class Describe, class Body>
HRESULT GuardCall(const char* method, const Subject& subject, const Describe& describe,
                  const Body& body) noexcept {
    try {
#ifdef LOCALSTORE_RECORDING
        const CallHold hold;
#endif
        const std::lock_guard lock(StoreMutex());
#ifdef LOCALSTORE_RECORDING
        CallRecord record;
        if (record.IsWanted()) {
            const CallSubject who = subject();
            CallText text(who.names);
            describe(text);
            record.Describe(who.interfaceName, method, Utf8Of(who.object), text.Take());
        }
        if (record.Failure()) {
            return record.Finish(*record.Failure());
        }
        try {
            return record.Finish(body());
        } catch (const StoreError& error) {
            return record.Finish(error.Code());
        }
#else
        static_cast<void>(method);
        static_cast<void>(subject);
        static_cast<void>(describe);
        return body();
#endif
    } catch (const StoreError& error) {
        return error.Code();
    } catch (const std::bad_alloc&) {
        return MAPI_E_NOT_ENOUGH_MEMORY;
    } catch (...) {
        return MAPI_E_CALL_FAILED;
    }
}

}  // namespace localstore
