#include "snmp/codec/oid_text.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "snmp/codec/asn.h"
#include "support/debug_log.h"
#include "support/hex_text.h"

namespace vndiscover {
namespace {

const char kBlanks[] = " \t\n\r";
const char kTrimmed[] = " \t\n\r\"";

bool IsOneOf(char c, const char* set) { return c != '\0' && std::strchr(set, c) != nullptr; }

bool IsBlank(const std::string& piece) {
    return piece.find_first_not_of(kBlanks) == std::string::npos;
}

std::string Trim(const std::string& piece) {
    const size_t first = piece.find_first_not_of(kTrimmed);
    if (first == std::string::npos) return {};
    return piece.substr(first, piece.find_last_not_of(kTrimmed) - first + 1);
}

// Reads one piece and leaves `text` at the delimiter or the end after it.
std::string ReadPiece(const char*& text, const char* delimiters) {
    std::string piece;
    char quote = '\0';
    for (; *text && (quote || !IsOneOf(*text, delimiters)); ++text) {
        if (quote ? *text == quote : (*text == '"' || *text == '\'')) {
            quote = quote ? '\0' : *text;
        } else if (piece.size() < kMaxPieceChars) {
            piece += *text;
        }
    }
    return piece;
}

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

std::vector<std::string> SplitText(const char* text, const char* delimiters) {
    std::vector<std::string> pieces;
    bool delimiterBefore = false;
    for (;;) {
        std::string piece = ReadPiece(text, delimiters);
        const bool delimiterAfter = *text != '\0';
        if (!IsBlank(piece) || (delimiterBefore && delimiterAfter)) {
            pieces.push_back(Trim(piece));
        }
        if (!delimiterAfter || pieces.size() == kMaxPieces) return pieces;
        delimiterBefore = true;
        ++text;
    }
}

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

OidValue OidOf(const char* text) {
    OidValue oid;
    ParseOidText(oid, text);
    return oid;
}

}  // namespace vndiscover
