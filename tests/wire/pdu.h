#pragma once

// The protocol data units of connection-oriented DCE/RPC, as far as a call on a named pipe needs them.
// Format: C706, chapter 12, "RPC PDU Encodings"; [MS-RPCE], section 2.2.2.

#include "tests/wire/bytes.h"

enum class PduType : std::uint8_t {
    kRequest = 0,
    kResponse = 2,
    kFault = 3,
    kBind = 11,
    kBindAck = 12,
    kBindNak = 13,
    kAlterContext = 14,
    kAlterContextResponse = 15,
};

constexpr std::uint8_t kFirstFragment = 1;
constexpr std::uint8_t kLastFragment = 2;
constexpr std::size_t kPduHeaderSize = 16;
/// The fragment size that both ends of this program propose. It is what the platform's runtime proposes, so
/// that long texts really come in several fragments.
constexpr std::uint16_t kFragmentSize = 5840;

/// An interface with its version, as bytes: 16 of the UUID, then major and minor number of 16 bits each.
[[nodiscard]] Bytes CommandSyntax();
[[nodiscard]] Bytes CallbackSyntax();
/// NDR 2.0.
[[nodiscard]] Bytes NdrSyntax();

struct Pdu {
    PduType type = PduType::kRequest;
    std::uint8_t flags = kFirstFragment | kLastFragment;
    std::uint32_t callId = 0;
    /// What follows the common header.
    Bytes body;
};

[[nodiscard]] Bytes Encode(const Pdu& pdu);

/// The size of the whole unit that a header of kPduHeaderSize bytes announces. A header that is none throws
/// std::runtime_error.
[[nodiscard]] std::size_t AnnouncedSize(const Bytes& header);

[[nodiscard]] Pdu Decode(const Bytes& bytes);

/// A proposal of one interface, as presentation context 0.
[[nodiscard]] Pdu BindPdu(std::uint32_t callId, const Bytes& interfaceSyntax);

/// The outcome of a proposal.
struct BindResult {
    bool accepted = false;
    std::uint16_t maximumReceived = 0;
    Bytes transferSyntax;
};
[[nodiscard]] BindResult ReadBindResult(const Pdu& pdu);

/// The interface that a proposal asks for, in the form of CommandSyntax.
[[nodiscard]] Bytes ProposedInterface(const Pdu& bind);

/// The acceptance of a proposal, which refers to it for its call number.
[[nodiscard]] Pdu BindAckPdu(const Pdu& bind, const std::string& endpoint);

/// The fragments of a request with at most kFragmentSize bytes each.
[[nodiscard]] std::vector<Pdu> RequestPdus(std::uint32_t callId, std::uint16_t procedure, const Bytes& stub);

/// A request, response or fault with its fragments joined.
struct CallPdu {
    PduType type = PduType::kRequest;
    std::uint32_t callId = 0;
    std::uint16_t contextId = 0;
    /// Of a request.
    std::uint16_t procedure = 0;
    /// Of a fault.
    std::uint32_t faultStatus = 0;
    Bytes stub;
};

/// Appends one fragment to what came before it. True once it was the last.
bool Join(CallPdu& call, const Pdu& fragment);

[[nodiscard]] Pdu EmptyResponsePdu(const CallPdu& request);
