// Malformed relatives of good datagrams, all of them following from one seed.
#pragma once

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
    uint8_t OneOf(const Bytes& values) { return values[Below(values.size())]; }
    uint8_t Tag() {
        static const Bytes tags = Hex("02 04 05 06 24 30 40 41 43 46 80 a0 a2 a3 a8 ff");
        return OneOf(tags);
    }
    uint8_t Length() {
        static const Bytes lengths = Hex("00 01 7f 80 81 82 84 88 fe ff");
        return OneOf(lengths);
    }
    Bytes Noise(size_t count) {
        Bytes noise(count);
        for (uint8_t& byte : noise) byte = static_cast<uint8_t>(random_());
        return noise;
    }
    size_t Times() { return static_cast<size_t>(OneOf({1, 1, 10, 100})) * OneOf({1, 1, 9}); }

    // Returns what is to be inserted there.
    Bytes ChangedAt(Bytes& data, size_t at) {
        Bytes nested;
        switch (Below(8)) {
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
                for (size_t i = Times(); i > 0; --i) nested = nested + Bytes{Tag(), Length()};
                return nested;
            case 5:
                return Bytes{Length()} + Noise(8);
            case 6:  // some become too large to be taken at all
                data = data + Noise(Times() * 9);
                return {};
            default:
                return data;
        }
    }

    std::mt19937 random_;
};

}  // namespace vndiscover
