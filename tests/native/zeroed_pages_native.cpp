#include <sys/mman.h>

#include <map>
#include <new>

#include "support/zeroed_pages.h"

namespace vndiscover {
namespace {

std::map<void*, size_t>& Sizes() {
    static std::map<void*, size_t> sizes;
    return sizes;
}

}  // namespace

ZeroedPages::ZeroedPages(size_t bytes)
    : memory_(mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
    if (memory_ == MAP_FAILED) throw std::bad_alloc();
    Sizes()[memory_] = bytes;
}

ZeroedPages::~ZeroedPages() {
    munmap(memory_, Sizes()[memory_]);
    Sizes().erase(memory_);
}

}  // namespace vndiscover
