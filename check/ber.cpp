#include "check/ber.h"

#include <algorithm>
#include <cstdlib>

namespace check {

Bytes BytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

Bytes Join(const std::vector<Bytes>& parts) {
    Bytes whole;
    for (const Bytes& part : parts) whole.insert(whole.end(), part.begin(), part.end());
    return whole;
}

Bytes Tlv(uint8_t tag, const Bytes& content) {
    const size_t length = content.size();
    Bytes head = {tag};
    if (length > 0xFF) {
        head.insert(head.end(), {0x82, uint8_t(length >> 8), uint8_t(length)});
    } else if (length > 0x7F) {
        head.insert(head.end(), {0x81, uint8_t(length)});
    } else {
        head.push_back(uint8_t(length));
    }
    return Join({head, content});
}

Bytes Integer(int32_t value) {
    Bytes content;
    for (int shift = 24; shift >= 0; shift -= 8) content.push_back(uint8_t(value >> shift));
    while (content.size() > 1 &&
           ((content[0] == 0 && content[1] < 0x80) || (content[0] == 0xFF && content[1] >= 0x80))) {
        content.erase(content.begin());
    }
    return Tlv(kInteger, content);
}

Bytes OidOf(const std::string& dotted) {
    std::vector<uint32_t> arcs;
    for (const char* text = dotted.c_str(); *text == '.';) {
        char* end;
        arcs.push_back(uint32_t(std::strtoul(text + 1, &end, 10)));
        text = end;
    }
    Bytes content = {uint8_t(arcs.at(0) * 40 + arcs.at(1))};
    for (size_t i = 2; i < arcs.size(); ++i) {
        for (int shift = 28; shift >= 0; shift -= 7) {
            const uint32_t rest = arcs[i] >> shift;
            if (rest != 0 || shift == 0) {
                content.push_back(uint8_t((rest & 0x7F) | (shift ? 0x80 : 0)));
            }
        }
    }
    return content;
}

bool BerReader::Header(uint8_t tag, size_t& length) {
    const size_t left = size_t(end_ - at_);
    if (failed_ || left < 2 || at_[0] != tag) return !(failed_ = true);
    length = at_[1];
    size_t head = 2;
    if (length > 0x80) {
        head += length & 0x7F;
        if (head > 4 || left < head) return !(failed_ = true);
        length = 0;
        for (size_t i = 2; i < head; ++i) length = length << 8 | at_[i];
    }
    if (length > left - head) return !(failed_ = true);
    at_ += head;
    return true;
}

Bytes BerReader::Octets(uint8_t tag) {
    size_t length = 0;
    if (!Header(tag, length)) return {};
    at_ += length;
    return Bytes(at_ - length, at_);
}

BerReader BerReader::Enter(uint8_t tag) {
    size_t length = 0;
    BerReader inside(end_, end_);
    if (Header(tag, length)) {
        inside = BerReader(at_, at_ + length);
        at_ += length;
    }
    inside.failed_ = failed_;
    return inside;
}

int32_t BerReader::Number() {
    const Bytes content = Octets(kInteger);
    uint32_t value = !content.empty() && content[0] >= 0x80 ? ~0u : 0;
    for (const uint8_t byte : content) value = value << 8 | byte;
    return int32_t(value);
}

Bytes BerReader::Whole() {
    const uint8_t* start = at_;
    Octets(NextTag());
    return failed_ ? Bytes() : Bytes(start, at_);
}

}  // namespace check
