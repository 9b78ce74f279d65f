#pragma once

// The MAPI interfaces with every method answering MAPI_E_NO_SUPPORT. An object derives from one of them and
// overrides what it can do, so what is not supported is refused in one place.

#include <windows.h>

#include <mapidefs.h>
#include <mapix.h>

#include "localstore/call_guard.h"

namespace localstore {

/// Something that can say what the recorder is to call it.
class SubjectProvider {
  public:
    [[nodiscard]] virtual CallSubject Subject() const = 0;

  protected:
    ~SubjectProvider() = default;
};

/// What every object of the store has besides its interface.
class ObjectTraits : public SubjectProvider {
  public:
    [[nodiscard]] virtual bool Supports(REFIID iid) const = 0;
    [[nodiscard]] virtual HRESULT Refuse(const char* method) const noexcept = 0;

  protected:
    ~ObjectTraits() = default;
};

// The platform's interfaces have no virtual destructor, as objects end through Release alone; the published
// lists of methods name their parameters, which a refusal does not use.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#pragma GCC diagnostic ignored "-Wunused-parameter"

#define LOCALSTORE_REFUSE        \
    override {                   \
        return Refuse(__func__); \
    }

class RefusingSession : public IMAPISession, public ObjectTraits {
  public:
    using Interface = IMAPISession;
    MAPI_IMAPISESSION_METHODS(LOCALSTORE_REFUSE)

  protected:
    virtual ~RefusingSession() = default;
};

class RefusingProfileAdmin : public IProfAdmin, public ObjectTraits {
  public:
    using Interface = IProfAdmin;
    MAPI_IPROFADMIN_METHODS(LOCALSTORE_REFUSE)

  protected:
    virtual ~RefusingProfileAdmin() = default;
};

class RefusingTable : public IMAPITable, public ObjectTraits {
  public:
    using Interface = IMAPITable;
    MAPI_IMAPITABLE_METHODS(LOCALSTORE_REFUSE)

  protected:
    virtual ~RefusingTable() = default;
};

class RefusingStore : public IMsgStore, public ObjectTraits {
  public:
    using Interface = IMsgStore;
    MAPI_IMAPIPROP_METHODS(LOCALSTORE_REFUSE)
    MAPI_IMSGSTORE_METHODS(LOCALSTORE_REFUSE)

  protected:
    virtual ~RefusingStore() = default;
};

class RefusingFolder : public IMAPIFolder, public ObjectTraits {
  public:
    using Interface = IMAPIFolder;
    MAPI_IMAPIPROP_METHODS(LOCALSTORE_REFUSE)
    MAPI_IMAPICONTAINER_METHODS(LOCALSTORE_REFUSE)
    MAPI_IMAPIFOLDER_METHODS(LOCALSTORE_REFUSE)

  protected:
    virtual ~RefusingFolder() = default;
};

class RefusingMessage : public IMessage, public ObjectTraits {
  public:
    using Interface = IMessage;
    MAPI_IMAPIPROP_METHODS(LOCALSTORE_REFUSE)
    MAPI_IMESSAGE_METHODS(LOCALSTORE_REFUSE)

  protected:
    virtual ~RefusingMessage() = default;
};

class RefusingAttachment : public IAttach, public ObjectTraits {
  public:
    using Interface = IAttach;
    MAPI_IMAPIPROP_METHODS(LOCALSTORE_REFUSE)

  protected:
    virtual ~RefusingAttachment() = default;
};

/// A stream has no published list of methods to expand, so it names them.
class RefusingStream : public IStream, public ObjectTraits {
  public:
    using Interface = IStream;
    STDMETHODIMP CopyTo(IStream* target, ULARGE_INTEGER size, ULARGE_INTEGER* read,
                        ULARGE_INTEGER* written) LOCALSTORE_REFUSE STDMETHODIMP
        LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER size, DWORD type) LOCALSTORE_REFUSE STDMETHODIMP
        UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER size, DWORD type) LOCALSTORE_REFUSE STDMETHODIMP
        Clone(IStream** clone) LOCALSTORE_REFUSE

        protected : virtual ~RefusingStream() = default;
};

#undef LOCALSTORE_REFUSE
#pragma GCC diagnostic pop

}  // namespace localstore
