#pragma once

// The base of every object that the store hands out: its references, and the count of objects that live.

#include <windows.h>

#include <atomic>

#include "localstore/call_guard.h"
#include "localstore/refusing.h"
#include "support/owners.h"

namespace localstore {

/// Objects of this module that live.
long LiveObjectCount() noexcept;

/// Counts an object as long as it lives.
class LiveObject {
  public:
    LiveObject() noexcept;
    LiveObject(const LiveObject&) = delete;
    LiveObject& operator=(const LiveObject&) = delete;
    ~LiveObject();
};

/// The private interface through which the recorder learns what an object is called. Objects of other
/// providers do not have it.
extern const IID kSubjectInterface;

/// References and interfaces for an object over one of the refusing interfaces.
template<class Refusing>
class ComObject : public Refusing {
  public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = nullptr;
        if (IsEqualGUID(iid, kSubjectInterface)) {
            // Not counted: the asker looks and forgets.
            *object = static_cast<SubjectProvider*>(this);
            return S_OK;
        }
        if (!this->Supports(iid)) {
            return E_NOINTERFACE;
        }
        *object = static_cast<typename Refusing::Interface*>(this);
        this->AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --m_references;
        if (left == 0) {
            Destroy();
        }
        return left;
    }

    [[nodiscard]] HRESULT Refuse(const char* method) const noexcept override {
        return Call(
            method, [](CallText&) {}, [] { return MAPI_E_NO_SUPPORT; });
    }

  protected:
    ComObject() = default;

    /// One call of this object, in the shape of GuardCall.
    template<class Describe, class Body>
    HRESULT Call(const char* method, const Describe& describe, const Body& body) const noexcept {
        return GuardCall(
            method, [this] { return this->Subject(); }, describe, body);
    }

    /// A last chance to do what may call virtual functions; never fails visibly.
    virtual void BeforeDestruction() noexcept {}

  private:
    void Destroy() noexcept {
        const std::lock_guard lock(StoreMutex());
        BeforeDestruction();
        delete this;
    }

    LiveObject m_live;
    std::atomic<ULONG> m_references = 1;
};

/// Makes an object and gives the one reference to it to its owner. Not with Attach, which in some versions of
/// the platform's header adds a reference of its own.
template<class Object, class... Arguments>
ComPtr<Object> MakeObject(Arguments&&... arguments) {
    return Adopt(new Object(std::forward<Arguments>(arguments)...));
}

/// What the recorder calls an object; empty for one that is not the store's.
CallSubject SubjectOf(IUnknown* object);

/// The interface that a client asks for: the object's own if it names none.
template<class Object>
void RequireInterface(const Object& object, const IID* iid) {
    Require(iid == nullptr || object.Supports(*iid), MAPI_E_INTERFACE_NOT_SUPPORTED);
}

}  // namespace localstore
