#include "localstore/com_object.h"

namespace localstore {

namespace {

std::atomic<long> g_liveObjects = 0;  ///< objects of this module that were not yet destroyed

}  // namespace

const IID kSubjectInterface = {0x5b1de0d6, 0x6f0b, 0x4c7c, {0x9b, 0x1e, 0x38, 0x42, 0x0d, 0x94, 0x7a, 0x53}};

std::recursive_mutex& StoreMutex() {
    static std::recursive_mutex mutex;
    return mutex;
}

long LiveObjectCount() noexcept {
    return g_liveObjects;
}

LiveObject::LiveObject() noexcept {
    ++g_liveObjects;
}

LiveObject::~LiveObject() {
    --g_liveObjects;
}

CallSubject SubjectOf(IUnknown* object) {
    void* provider = nullptr;
    if (object == nullptr || FAILED(object->QueryInterface(kSubjectInterface, &provider)) ||
        provider == nullptr) {
        return {};
    }
    return static_cast<SubjectProvider*>(provider)->Subject();
}

}  // namespace localstore
