#include "snmp/codec/oid_text.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <string>
#include <vector>

#include "snmp/codec/asn_encode.h"
#include "snmp/codec/text_tokenizer.h"
#include "support/debug_log.h"
#include "support/hex_text.h"

namespace vndiscover {
namespace {

int ReadArc(const std::string& piece) {
    const long value = std::strtol(piece.c_str(), nullptr, 10);
    return static_cast<int>(std::clamp(value, long{INT_MIN}, long{INT_MAX}));
}

std::vector<int> ReadArcs(const char* text) {
    std::vector<int> arcs;
    for (const std::string& piece : SplitText(text ? text : "", ".")) {
        if (!piece.empty()) arcs.push_back(ReadArc(piece));
    }
    return arcs;
}

// Kept: counts the first two arcs separately, one byte more than the content has.
int CountForLog(const std::vector<int>& arcs) {
    int count = 0;
    for (size_t i = 0; i < arcs.size(); ++i) count += i >= 2 && arcs[i] >= 128 ? 2 : 1;
    return count;
}

std::vector<uint8_t> EncodeArcs(const std::vector<int>& arcs) {
    std::vector<uint8_t> content;
    if (arcs.size() < 2) return content;
    content.push_back(static_cast<uint8_t>(static_cast<unsigned>(arcs[0]) * 40u +
                                           static_cast<unsigned>(arcs[1])));
    for (size_t i = 2; i < arcs.size(); ++i) {
        if (arcs[i] >= 128) {
            content.push_back(static_cast<uint8_t>((arcs[i] >> 7) | 0x80));
            content.push_back(static_cast<uint8_t>(arcs[i] & 0x7F));
        } else {
            content.push_back(static_cast<uint8_t>(arcs[i]));
        }
    }
    return content;
}

}  // namespace

int32_t ParseOidText(OidValue& out, const char* text) {
    const std::vector<int> arcs = ReadArcs(text);
    DebugLogA("OID length [%d]\n", CountForLog(arcs));
    std::vector<uint8_t> content = EncodeArcs(arcs);
    DebugLogA("OID = [%s]\n", HexText(content.data(), content.size()).c_str());
    const auto length = static_cast<int32_t>(content.size());
    if (length > kMaxOidContent) content.clear();
    out.tag = kTagObjectIdentifier;
    out.length = static_cast<uint8_t>(content.size());
    std::copy(content.begin(), content.end(), out.content);
    return length;
}

}  // namespace vndiscover
