// Malformed relatives of good datagrams, all of them following from one seed.
#pragma once

#include <initializer_list>
#include <random>

#include "helpers/bytes.h"

namespace vndiscover {

class Mutator {
  public:
    explicit Mutator(uint32_t seed) : random_(seed) {}

    size_t Below(size_t limit) { return random_() % limit; }

    Bytes Mutated(Bytes data) {
        for (size_t changes = 1 + Below(4) * Below(2); changes > 0; --changes) {
            if (data.empty()) data = {0x30};
            const size_t at = Below(data.size());
            const Bytes added = ChangedAt(data, at);
            data.insert(data.begin() + static_cast<std::ptrdiff_t>(at), added.begin(), added.end());
        }
        return data;
    }

  private:
    uint8_t OneOf(std::initializer_list<uint8_t> bytes) {
        return bytes.begin()[Below(bytes.size())];
    }
    uint8_t Tag() {
        return OneOf({0x02, 0x04, 0x05, 0x06, 0x24, 0x30, 0x40, 0x41, 0x43, 0x46, 0x80, 0xA0, 0xA2,
                      0xA3, 0xA8, 0xFF});
    }
    uint8_t Length() { return OneOf({0x00, 0x01, 0x7F, 0x80, 0x81, 0x82, 0x84, 0x88, 0xFE, 0xFF}); }
    Bytes Noise(size_t count) {
        Bytes noise(count);
        for (uint8_t& byte : noise) byte = static_cast<uint8_t>(random_());
        return noise;
    }
    // Returns what is to be inserted there.
    Bytes ChangedAt(Bytes& data, size_t at) {
        Bytes nested;
        switch (Below(9)) {
            case 0:
                data[at] ^= static_cast<uint8_t>(1 << Below(8));
                return {};
            case 1:
                data.resize(at);
                return {};
            case 2:
                data[at] = Tag();
                return {};
            case 3:
                data[at] = Length();
                return {};
            case 4:
                nested.resize(OneOf({1, 1, 10, 200}) * 2u);
                for (size_t i = 0; i < nested.size(); ++i) nested[i] = i % 2 ? Length() : Tag();
                return nested;
            case 5:
                return Bytes{Length()} + Noise(8);
            case 6:
                data = data + Noise(Below(100));
                return {};
            case 7:  // about as large as what is still taken
                data.resize(2044 + Below(9), Length());
                return {};
            default:
                return data;
        }
    }

    std::mt19937 random_;
};

}  // namespace vndiscover
