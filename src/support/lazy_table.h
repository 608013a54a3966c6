// A table of fixed capacity whose entries are constructed when they are first filled.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <optional>

namespace vndiscover {

// A block of zeroed memory that takes up no RAM until it is touched. It counts as committed memory
// at once: 35 and 17 MB for the tables of the two managers.
class ZeroedPages {
  public:
    explicit ZeroedPages(size_t bytes);  // throws std::bad_alloc
    ~ZeroedPages();
    ZeroedPages(const ZeroedPages&) = delete;
    ZeroedPages& operator=(const ZeroedPages&) = delete;

    void* Get() const noexcept { return memory_; }

  private:
    void* memory_;
};

// Entries are filled from 0 upwards; one that was filled before keeps its content until it is
// overwritten. Address space is reserved by Reserve, or by the first fill. For one thread at a
// time.
template <class Entry, uint32_t Capacity>
class LazyTable {
  public:
    static constexpr uint32_t kCapacity = Capacity;

    LazyTable() = default;
    ~LazyTable() {
        for (uint32_t i = 0; i < constructed_; ++i) At(i).~Entry();
    }

    // Throws std::bad_alloc. Later calls do nothing.
    void Reserve() {
        if (!pages_) pages_.emplace(sizeof(Entry) * size_t{Capacity});
    }

    // The entry to fill. index is below Capacity and at most the number of entries filled so far.
    // Throws std::bad_alloc if nothing was reserved.
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
