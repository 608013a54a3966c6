#include "support/lazy_table.h"

#include <new>

#include "support/win.h"

namespace vndiscover {

// From the system, whose fresh pages are zero and take up memory only once touched; the C runtime
// would zero the block by writing to all of it.
ZeroedPages::ZeroedPages(size_t bytes)
    : memory_(VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE)) {
    if (!memory_) throw std::bad_alloc();
}

ZeroedPages::~ZeroedPages() { VirtualFree(memory_, 0, MEM_RELEASE); }

}  // namespace vndiscover
