// The slots through which a test program calls the system, `extern "C" decltype(&::f) __imp_f`.
#pragma once

#include "support/win.h"

namespace vndiscover {

// Leads the calls that go through a slot to another function while it lives.
template <class Function>
class ImportSlot {
  public:
    ImportSlot(Function& slot, Function target) : slot_(slot), original_(slot) { Lead(target); }
    ~ImportSlot() { Lead(original_); }
    ImportSlot(const ImportSlot&) = delete;
    ImportSlot& operator=(const ImportSlot&) = delete;

  private:
    void Lead(Function target) {
        DWORD protection;
        VirtualProtect(&slot_, sizeof slot_, PAGE_READWRITE, &protection);
        slot_ = target;
        VirtualProtect(&slot_, sizeof slot_, protection, &protection);
    }

    Function& slot_;
    const Function original_;
};

}  // namespace vndiscover
