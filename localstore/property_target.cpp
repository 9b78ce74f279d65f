#include "localstore/property_target.h"

#include <algorithm>
#include <vector>

#include "localstore/buffers.h"
#include "localstore/property_source.h"
#include "localstore/values.h"

namespace localstore {

namespace {

/// More values than an object can have identifiers.
constexpr ULONG kMostValues = 0x10000;

void AddProblem(std::vector<SPropProblem>& list, ULONG index, PropertyTag tag, HRESULT code) {
    if (code != S_OK) {
        list.push_back({index, tag, code});
    }
}

/// Hands the problems to a client that wants them; without any, it gets null.
void PutProblems(const std::vector<SPropProblem>& list, LPSPropProblemArray* problems) {
    if (problems == nullptr || list.empty()) {
        return;
    }
    const auto count = static_cast<ULONG>(list.size());
    Buffer<SPropProblemArray> result(CbNewSPropProblemArray(count));
    result->cProblem = count;
    std::copy(list.begin(), list.end(), result->aProblem);
    *problems = result.Detach();
}

}  // namespace

HRESULT SetPropsOn(PropertyTarget& target, ULONG count, const SPropValue* values,
                   LPSPropProblemArray* problems) {
    if (problems != nullptr) {
        *problems = nullptr;
    }
    Require(count != 0 && count <= kMostValues && values != nullptr, MAPI_E_INVALID_PARAMETER);
    target.RequireWritable();
    std::vector<SPropProblem> list;
    for (ULONG i = 0; i < count; ++i) {
        const PropertyType type = TypeOf(values[i].ulPropTag);
        if (type == PT_ERROR || type == PT_NULL) {
            // Published: such values are passed over.
            continue;
        }
        HRESULT problem = S_OK;
        std::optional<Property> property = PropertyOfValue(values[i], problem);
        if (property) {
            problem = target.SetOne(std::move(*property));
        }
        AddProblem(list, i, values[i].ulPropTag, problem);
    }
    PutProblems(list, problems);
    return S_OK;
}

HRESULT DeletePropsOn(PropertyTarget& target, const SPropTagArray* tags, LPSPropProblemArray* problems) {
    if (problems != nullptr) {
        *problems = nullptr;
    }
    const std::vector<PropertyTag> wanted = TagsOfClient(tags);
    Require(!wanted.empty(), MAPI_E_INVALID_PARAMETER);
    target.RequireWritable();
    std::vector<SPropProblem> list;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        AddProblem(list, static_cast<ULONG>(i), wanted[i], target.RemoveOne(IdOf(wanted[i])));
    }
    PutProblems(list, problems);
    return S_OK;
}

}  // namespace localstore
