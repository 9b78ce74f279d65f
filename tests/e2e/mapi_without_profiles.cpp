// A MAPI library that lacks MAPIAdminProfiles and has every other function that the agent looks up. None of
// them is ever called: an agent that does not find all of them does not log on.

extern "C" long NotServed() {
    constexpr long kNoSupport = static_cast<long>(0x80040102);  // MAPI_E_NO_SUPPORT
    return kNoSupport;
}
