// A fixed table whose entries come to life when they are first filled.
#pragma once

#include <cstdint>
#include <new>
#include <optional>

#include "support/zeroed_pages.h"

namespace vndiscover {

// Entries are filled from 0 upwards; an entry that was filled before keeps its content until it is
// overwritten. The room is reserved by the first fill, or before: a table that nobody fills costs
// not even that. Not for more than one thread.
template <class Entry, uint32_t Capacity>
class LazyTable {
  public:
    static constexpr uint32_t kCapacity = Capacity;

    LazyTable() = default;
    ~LazyTable() {
        for (uint32_t i = 0; i < constructed_; ++i) At(i).~Entry();
    }
    LazyTable(const LazyTable&) = delete;
    LazyTable& operator=(const LazyTable&) = delete;

    // Throws std::bad_alloc; without effect when the room is there.
    void Reserve() {
        if (!pages_) pages_.emplace(sizeof(Entry) * size_t{Capacity});
    }

    // The entry to fill; index is at most the count of entries filled so far, below Capacity.
    // Throws std::bad_alloc where the room was not reserved.
    Entry& ToFill(uint32_t index) {
        if (index == constructed_) {
            Reserve();
            new (Slot(index)) Entry();
            ++constructed_;
        }
        return At(index);
    }

    // An entry that was filled before.
    Entry& operator[](uint32_t index) { return At(index); }

  private:
    void* Slot(uint32_t index) const { return static_cast<Entry*>(pages_->Get()) + index; }
    Entry& At(uint32_t index) { return *std::launder(static_cast<Entry*>(Slot(index))); }

    std::optional<ZeroedPages> pages_;
    uint32_t constructed_ = 0;
};

}  // namespace vndiscover
