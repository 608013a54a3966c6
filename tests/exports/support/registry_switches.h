// The registry values that switch the module's debug log on.
#pragma once

#include <string>

#include "helpers/bytes.h"
#include "support/win.h"

namespace vndiscover {

// Takes the key away at its end. A module sees a change when it is loaded or when a thread starts.
class RegistrySwitches {
  public:
    RegistrySwitches();
    ~RegistrySwitches();
    RegistrySwitches(const RegistrySwitches&) = delete;
    RegistrySwitches& operator=(const RegistrySwitches&) = delete;

    void Set(const char* name, DWORD type, const Bytes& data);
    void SetOn(const char* name) { Set(name, REG_DWORD, {1, 0, 0, 0}); }
    void Remove(const char* name);

  private:
    HKEY key_ = nullptr;
};

}  // namespace vndiscover
