#include "tests/wire/pdu.h"

#include <algorithm>

namespace {

constexpr std::uint8_t kVersion = 5;
constexpr std::uint16_t kAcceptance = 0;
/// Of a request: common header, allocation hint, context and procedure.
constexpr std::size_t kRequestHeaderSize = kPduHeaderSize + 8;

}  // namespace

Bytes CommandSyntax() {
    return Hex("f7 4c 5f ef  43 3a  10 44  ab 61 cb f7 01 f1 41 35  01 00 00 00");
}

Bytes CallbackSyntax() {
    return Hex("7b 40 7e 88  c9 88  15 4e  94 35 27 48 14 18 cd 5b  01 00 00 00");
}

Bytes NdrSyntax() {
    return Hex("04 5d 88 8a  eb 1c  c9 11  9f e8 08 00 2b 10 48 60  02 00 00 00");
}

Bytes Encode(const Pdu& pdu) {
    ByteWriter writer;
    writer.U8(kVersion).U8(0).U8(static_cast<std::uint8_t>(pdu.type)).U8(pdu.flags);
    writer.Raw(Hex("10 00 00 00"));  // little-endian integers, ASCII, IEEE floating point
    writer.U16(static_cast<std::uint16_t>(kPduHeaderSize + pdu.body.size())).U16(0).U32(pdu.callId);
    return writer.Raw(pdu.body).Written();
}

std::size_t AnnouncedSize(const Bytes& header) {
    ByteReader reader(header);
    const std::uint8_t version = reader.U8();
    reader.Raw(7);
    const std::size_t size = reader.U16();
    if (version != kVersion || size < kPduHeaderSize) {
        throw std::runtime_error("not the header of a protocol data unit: " + ToHex(header));
    }
    return size;
}

Pdu Decode(const Bytes& bytes) {
    ByteReader reader(bytes);
    reader.Raw(2);
    Pdu pdu;
    pdu.type = static_cast<PduType>(reader.U8());
    pdu.flags = reader.U8();
    reader.Raw(8);
    pdu.callId = reader.U32();
    pdu.body = reader.Rest();
    return pdu;
}

Pdu BindPdu(std::uint32_t callId, const Bytes& interfaceSyntax) {
    ByteWriter writer;
    writer.U16(kFragmentSize).U16(kFragmentSize).U32(0);  // 0: a new group of associations
    writer.Raw(Hex("01 00 00 00"));                       // one context
    writer.U16(0).Raw(Hex("01 00"));                      // its number, with one transfer syntax
    writer.Raw(interfaceSyntax).Raw(NdrSyntax());
    return {PduType::kBind, kFirstFragment | kLastFragment, callId, writer.Written()};
}

BindResult ReadBindResult(const Pdu& pdu) {
    BindResult result;
    if (pdu.type != PduType::kBindAck) {
        return result;
    }
    ByteReader reader(pdu.body);
    reader.U16();
    result.maximumReceived = reader.U16();
    reader.U32();
    reader.Raw(reader.U16());
    reader.Align(4);
    reader.U32();  // the number of results: one for the one context
    result.accepted = reader.U16() == kAcceptance;
    reader.U16();
    result.transferSyntax = reader.Rest();
    return result;
}

Bytes ProposedInterface(const Pdu& bind) {
    ByteReader reader(bind.body);
    reader.Raw(8 + 4 + 4);
    return reader.Raw(20);
}

Pdu BindAckPdu(const Pdu& bind, const std::string& endpoint) {
    ByteWriter writer;
    writer.U16(kFragmentSize).U16(kFragmentSize).U32(1);
    writer.U16(static_cast<std::uint16_t>(endpoint.size() + 1));
    for (const char character : endpoint) {
        writer.U8(static_cast<std::uint8_t>(character));
    }
    writer.U8(0).Align(4);
    writer.Raw(Hex("01 00 00 00")).U16(kAcceptance).U16(0).Raw(NdrSyntax());
    const PduType type =
        bind.type == PduType::kAlterContext ? PduType::kAlterContextResponse : PduType::kBindAck;
    return {type, kFirstFragment | kLastFragment, bind.callId, writer.Written()};
}

std::vector<Pdu> RequestPdus(std::uint32_t callId, std::uint16_t procedure, const Bytes& stub) {
    constexpr std::size_t kRoom = kFragmentSize - kRequestHeaderSize;
    std::vector<Pdu> pdus;
    std::size_t sent = 0;
    do {
        const std::size_t end = std::min(stub.size(), sent + kRoom);
        ByteWriter writer;
        writer.U32(static_cast<std::uint32_t>(stub.size() - sent)).U16(0).U16(procedure);
        writer.Raw({stub.begin() + static_cast<std::ptrdiff_t>(sent),
                    stub.begin() + static_cast<std::ptrdiff_t>(end)});
        std::uint8_t flags = sent == 0 ? kFirstFragment : 0;
        flags = static_cast<std::uint8_t>(flags | (end == stub.size() ? kLastFragment : 0));
        pdus.push_back({PduType::kRequest, flags, callId, writer.Written()});
        sent = end;
    } while (sent < stub.size());
    return pdus;
}

bool Join(CallPdu& call, const Pdu& fragment) {
    ByteReader reader(fragment.body);
    call.type = fragment.type;
    call.callId = fragment.callId;
    reader.U32();
    call.contextId = reader.U16();
    const std::uint16_t procedureOrCancels = reader.U16();
    if (call.type == PduType::kRequest) {
        call.procedure = procedureOrCancels;
    }
    if (call.type == PduType::kFault) {
        call.faultStatus = reader.U32();
    } else {
        const Bytes more = reader.Rest();
        call.stub.insert(call.stub.end(), more.begin(), more.end());
    }
    return (fragment.flags & kLastFragment) != 0;
}

Pdu EmptyResponsePdu(const CallPdu& request) {
    ByteWriter writer;
    writer.U32(0).U16(request.contextId).U8(0).U8(0);
    return {PduType::kResponse, kFirstFragment | kLastFragment, request.callId, writer.Written()};
}
