#pragma once

// Instant-messaging addresses. The store keeps them in one property, with the service as a prefix of the
// text.

#include <array>
#include <cstdint>

#include "support/text.h"

/// A service and the field of a contact that holds an address of it.
struct IMService {
    std::int32_t fieldId;
    WideView prefix;
};

/// The field of an address without a service.
constexpr std::int32_t kIMAddressField = 4022;

constexpr std::array<IMService, 8> kIMServices{{
    {4023, WIDE("AIM:")},
    {4024, WIDE("WINDOWSLIVE:")},
    {4025, WIDE("YAHOO:")},
    {4026, WIDE("SKYPE:")},
    {4027, WIDE("QQ:")},
    {4028, WIDE("GTALK:")},
    {4029, WIDE("ICQ:")},
    {4030, WIDE("JABBER:")},
}};

/// Cuts the service off an address and returns the service's field id. The prefix is everything up to the
/// first colon, compared without regard to case; an address without a known one stays as it is and gives
/// 4022.
std::int32_t SplitIMAddress(CString& address);
