// A block of zeroed memory that costs nothing until it is touched.
#pragma once

#include <cstddef>

namespace vndiscover {

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

}  // namespace vndiscover
