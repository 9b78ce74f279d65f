#pragma once

// IMAPIProp of the store's objects: what all of them read alike, and what messages and attachments write
// alike.

#include "localstore/com_object.h"
#include "localstore/named_properties.h"
#include "localstore/property_source.h"
#include "localstore/property_stream.h"
#include "localstore/property_target.h"

namespace localstore {

/// An object whose properties can be read.
template<class Refusing>
class PropObject : public ComObject<Refusing> {
  public:
    STDMETHODIMP GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error) override {
        const auto describe = [&](CallText& text) {
            text.Flags("result", static_cast<ULONG>(result)).Flags("flags", flags);
        };
        return this->Call("GetLastError", describe, [&] {
            Require(error != nullptr, MAPI_E_INVALID_PARAMETER);
            // No more is known than the result code said.
            *error = nullptr;
            return S_OK;
        });
    }

    STDMETHODIMP GetProps(LPSPropTagArray tags, ULONG flags, ULONG* count, LPSPropValue* values) override {
        return this->Call(
            "GetProps", [&](CallText& text) { text.Tags(tags).Flags("flags", flags); },
            [&] { return GetPropsOf(Source(), tags, flags, count, values); });
    }

    STDMETHODIMP GetPropList(ULONG flags, LPSPropTagArray* tags) override {
        return this->Call(
            "GetPropList", [&](CallText& text) { text.Flags("flags", flags); },
            [&] { return GetPropListOf(Source(), flags, tags); });
    }

    STDMETHODIMP OpenProperty(ULONG tag, LPCIID iid, ULONG options, ULONG flags, LPUNKNOWN* object) override {
        const auto describe = [&](CallText& text) {
            text.Tag(tag).Interface(iid).Flags("options", options).Flags("flags", flags);
        };
        return this->Call("OpenProperty", describe, [&] {
            Require(object != nullptr && iid != nullptr, MAPI_E_INVALID_PARAMETER);
            *object = nullptr;
            Require(IsEqualGUID(*iid, IID_IStream), MAPI_E_INTERFACE_NOT_SUPPORTED);
            *object = OpenStreamOf(Source(), this, Target(), this->Subject(), tag, flags).Detach();
            return S_OK;
        });
    }

    STDMETHODIMP GetIDsFromNames(ULONG count, LPMAPINAMEID* list, ULONG flags,
                                 LPSPropTagArray* tags) override {
        const auto describe = [&](CallText& text) { text.PropertyNames(count, list).Flags("flags", flags); };
        return this->Call("GetIDsFromNames", describe,
                          [&] { return localstore::GetIDsFromNames(Names(), count, list, flags, tags); });
    }

    STDMETHODIMP GetNamesFromIDs(LPSPropTagArray* tags, LPGUID set, ULONG flags, ULONG* count,
                                 LPMAPINAMEID** list) override {
        const auto describe = [&](CallText& text) {
            text.Tags(tags == nullptr ? nullptr : *tags).Flags("flags", flags);
        };
        return this->Call("GetNamesFromIDs", describe, [&] {
            return localstore::GetNamesFromIDs(Names(), tags, set, flags, count, list);
        });
    }

  protected:
    [[nodiscard]] virtual const PropertySource& Source() const = 0;
    [[nodiscard]] virtual NamedProperties& Names() const = 0;
    /// Where a stream that was opened for writing puts its value; null for an object that is not written to.
    [[nodiscard]] virtual PropertyTarget* Target() { return nullptr; }
};

/// An object whose properties can be written as well.
template<class Refusing>
class WritablePropObject : public PropObject<Refusing>, public PropertyTarget {
  public:
    STDMETHODIMP SetProps(ULONG count, LPSPropValue values, LPSPropProblemArray* problems) override {
        return this->Call(
            "SetProps", [&](CallText& text) { text.Values(count, values); },
            [&] { return SetPropsOn(*this, count, values, problems); });
    }

    STDMETHODIMP DeleteProps(LPSPropTagArray tags, LPSPropProblemArray* problems) override {
        return this->Call(
            "DeleteProps", [&](CallText& text) { text.Tags(tags); },
            [&] { return DeletePropsOn(*this, tags, problems); });
    }

  protected:
    [[nodiscard]] PropertyTarget* Target() override { return this; }
};

}  // namespace localstore
