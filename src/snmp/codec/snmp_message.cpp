#include "snmp/codec/snmp_message.h"

#include <cstring>

#include "snmp/codec/asn.h"
#include "support/copy_text.h"
#include "support/debug_log.h"
#include "support/hex_text.h"

namespace vndiscover {
namespace {

constexpr size_t kFixedBytes = 20;
constexpr uint32_t kParsedValueRoom = 256;
constexpr uint8_t kLastPduTag = 0xA7;

uint8_t Low8(size_t value) { return static_cast<uint8_t>(value); }

// Writes to a buffer whose size was checked beforehand.
class Writer {
  public:
    explicit Writer(uint8_t* out) : next_(out) {}
    void Bytes(const void* bytes, size_t count) {
        if (count != 0) std::memcpy(next_, bytes, count);
        next_ += count;
    }
    template <class... Byte>
    void Put(Byte... values) {
        ((*next_++ = static_cast<uint8_t>(values)), ...);
    }

  private:
    uint8_t* next_;
};

// On the wire: the header, then the name and the value with their headers, as in the record.
size_t SentSize(const VarBindRecord& binding) {
    return 2u + binding.nameLength + 2u + binding.valueLength + 2u;
}

void WriteBinding(Writer& writer, const VarBindRecord& binding) {
    writer.Put(binding.seqTag, binding.seqLength);
    writer.Bytes(&binding.nameTag, binding.nameLength + 2u);
    writer.Bytes(&binding.valueTag, binding.valueLength + 2u);
}

size_t ListSize(const VarBindList& bindings) {
    size_t size = 0;
    for (int32_t i = 0; i < bindings.count; ++i) size += SentSize(bindings.bindings[i]);
    return size;
}

// The datagram as the parser sees it: zeros past its end, as in a zeroed receive buffer.
class Reader {
  public:
    Reader(const uint8_t* bytes, size_t length) : bytes_(bytes), length_(length) {}

    uint8_t At(size_t index) const { return index < length_ ? bytes_[index] : 0; }
    uint8_t Here() const { return At(position); }
    uint8_t Take() { return At(position++); }

    // A length of one byte, or 82 00 nn.
    uint8_t TakeLength() {
        if (At(position) == 0x82 && At(position + 1) == 0) position += 2;
        return Take();
    }

    // Zeroes the field, copies `count` bytes into it, or as many as fit, and skips all of them.
    void TakeInto(uint8_t* field, size_t size, size_t count) {
        const size_t rest = position < length_ ? length_ - position : 0;
        const uint8_t* from = rest != 0 ? bytes_ + position : nullptr;
        FillField(field, size, from, count < rest ? count : rest);
        position += count;
    }

    size_t position = 0;

  private:
    const uint8_t* bytes_;
    size_t length_;
};

// Moves the reader to the first binding. False: this is not an answer.
bool EnterBindings(Reader& reader) {
    reader.position += 3;  // version, not checked
    if (reader.Here() == kTagOctetString) {
        reader.Take();
        const uint8_t communityLength = reader.Take();
        reader.position += communityLength;  // not compared
    }
    const uint8_t pduTag = reader.Take();
    if (pduTag < kPduGetRequest || pduTag > kLastPduTag) return false;
    reader.TakeLength();
    reader.position += 9;  // request-id, error-status and error-index, not checked
    if (reader.Take() != kTagSequence) return false;
    reader.TakeLength();
    return true;
}

// False: there is no binding at the position.
bool ReadBinding(Reader& reader, ResponseRecord& record) {
    if (reader.Take() != kTagSequence) return false;
    reader.TakeLength();
    if (reader.Take() != kTagObjectIdentifier) return false;
    const uint8_t nameLength = reader.Take();
    reader.TakeInto(record.name, kNameSize, nameLength);
    // Cut like the name, so that code that copies this many bytes stays within the field.
    record.nameLength = nameLength < kNameSize ? nameLength : kNameSize;
    record.valueTag = reader.Take();
    record.valueLength = reader.Take();
    reader.TakeInto(record.value, kParsedValueRoom, record.valueLength);
    return true;
}

}  // namespace

int32_t BuildSnmpMessage(uint8_t* out, size_t outSize, const char* community, uint8_t pduType,
                         uint8_t requestId, const VarBindList& bindings) {
    if (!out || pduType < kPduGetRequest || pduType > kPduSetRequest) return 0;
    if (!FitTheirRecords(bindings)) return 0;
    const size_t n = community ? std::strlen(community) : 0;
    const size_t l = ListSize(bindings);
    const size_t total = kFixedBytes + n + l;
    if (n > kMaxCommunity || total > outSize) return 0;

    Writer writer(out);
    writer.Put(kTagSequence, Low8(total - 2));  // Kept: lengths wrap at 256
    writer.Put(kTagInteger, 1, 0);
    writer.Put(kTagOctetString, Low8(n));
    writer.Bytes(community, n);
    writer.Put(pduType, Low8(l + 11));
    writer.Put(kTagInteger, 1, requestId);
    writer.Put(kTagInteger, 1, 0);
    writer.Put(kTagInteger, 1, 0);
    writer.Put(kTagSequence, Low8(l));
    for (int32_t i = 0; i < bindings.count; ++i) WriteBinding(writer, bindings.bindings[i]);
    DebugLogA("SNMP_MSG = [%s]\n", HexText(out, total).c_str());
    return static_cast<int32_t>(total);
}

int32_t BuildRequest(uint8_t (&out)[kMaxMessageSize], const OidValue& oid, const ValueView& value,
                     uint8_t pduType, const char* community) {
    VarBindRecord binding;
    if (MakeVarBind(oid, value, binding) != 0) return 0;
    VarBindList list;
    SetVarBindList(&binding, 1, list);
    return BuildSnmpMessage(out, sizeof out, community, pduType, kRequestId, list);
}

int32_t ParseSnmpResponse(ResponseRecord& record, const uint8_t* datagram, size_t length,
                          const char* senderAddress) {
    CopyText(record.address, senderAddress);
    if (!datagram) return 0;
    Reader reader(datagram, length);
    if (reader.Take() != kTagSequence) return 0;
    const uint8_t messageLength = reader.TakeLength();
    if (!EnterBindings(reader)) return 0;
    int32_t count = 0;
    // Kept: the position counts from the start of the datagram, the length from after its header.
    while (reader.position < messageLength && ReadBinding(reader, record)) ++count;
    return count;
}

}  // namespace vndiscover
