#include "values/oid_text.h"

#include <algorithm>
#include <charconv>

#include "values/module_types.h"
#include "values/ranges.h"

namespace vndiscover::host {
namespace {

constexpr uint32_t kTwoByteArcLimit = 16384;
constexpr size_t kMaxArcs = 128;

// Reads decimal digits and moves `text` past them. Empty without digits, or with over 32 bits.
std::optional<uint32_t> ReadArc(std::string_view& text) {
    uint32_t arc = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), arc);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<size_t>(end - text.data()));
    return arc;
}

void AppendArc(std::string& octets, uint64_t arc) {
    int groups = 1;
    while (arc >> (7 * groups) != 0) ++groups;
    for (int i = groups - 1; i >= 0; --i) {
        octets += static_cast<char>((arc >> (7 * i) & 0x7F) | (i > 0 ? 0x80 : 0));
    }
}

}  // namespace

std::optional<Oid> ParseOid(std::string_view text) {
    Oid oid;
    if (!text.empty() && text.front() == '.') text.remove_prefix(1);
    while (true) {
        const std::optional<uint32_t> arc = ReadArc(text);
        if (!arc || oid.size() == kMaxArcs) return std::nullopt;
        oid.push_back(*arc);
        if (text.empty()) break;
        if (text.front() != '.') return std::nullopt;
        text.remove_prefix(1);
    }
    const bool isValid = oid[0] <= 2 && (oid.size() < 2 || oid[0] == 2 || oid[1] < 40);
    return isValid ? std::optional(oid) : std::nullopt;
}

std::string OidToText(const Oid& oid) {
    std::string text;
    for (const uint32_t arc : oid) text += "." + std::to_string(arc);
    return text;
}

std::optional<Oid> DecodeOid(std::string_view octets) {
    Oid oid;
    uint64_t arc = 0;
    bool isInside = false;
    for (const char octet : octets) {
        arc = arc << 7 | (static_cast<uint8_t>(octet) & 0x7Fu);
        isInside = (octet & 0x80) != 0;
        // The first number holds two arcs, so it may exceed 32 bits by 80.
        if (arc > UINT32_MAX + (oid.empty() ? 80ull : 0ull)) return std::nullopt;
        if (isInside) continue;
        if (oid.empty()) {
            const uint32_t first = arc < 80 ? static_cast<uint32_t>(arc / 40) : 2;
            oid.push_back(first);
            arc -= uint64_t{first} * 40;
        }
        oid.push_back(static_cast<uint32_t>(arc));
        arc = 0;
    }
    if (oid.empty() || oid.size() > kMaxArcs || isInside) return std::nullopt;
    return oid;
}

std::string EncodeOid(const Oid& oid) {
    std::string octets;
    AppendArc(octets, uint64_t{oid[0]} * 40 + oid[1]);
    for (size_t i = 2; i < oid.size(); ++i) AppendArc(octets, oid[i]);
    return octets;
}

bool IsMisencoded(const Oid& oid) {
    if (oid.size() >= 2 && uint64_t{oid[0]} * 40 + oid[1] > 127) return true;
    return AnyOf(Tail(oid, 2), [](uint32_t arc) { return arc >= kTwoByteArcLimit; });
}

size_t RequestOctets(const Oid& oid) {
    size_t octets = 1;
    for (size_t i = 2; i < oid.size(); ++i) octets += oid[i] < 128 ? 1 : 2;
    return octets;
}

bool FitsRequest(const Oid& oid) { return oid.size() >= 2 && RequestOctets(oid) <= kRequestOidMax; }

Oid JustBefore(Oid oid) {
    if (oid.back()-- == 0) oid.pop_back();
    return oid;
}

bool IsWithin(const Oid& oid, const Oid& root) {
    return oid.size() >= root.size() && std::equal(root.begin(), root.end(), oid.begin());
}

Oid Head(const Oid& oid, size_t size) {
    return {oid.begin(), oid.begin() + static_cast<ptrdiff_t>(std::min(size, oid.size()))};
}

Oid Tail(const Oid& oid, size_t start) {
    return {oid.begin() + static_cast<ptrdiff_t>(std::min(start, oid.size())), oid.end()};
}

Oid Append(Oid oid, const Oid& arcs) {
    oid.insert(oid.end(), arcs.begin(), arcs.end());
    return oid;
}

}  // namespace vndiscover::host
