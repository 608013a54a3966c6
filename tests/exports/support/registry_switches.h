// The registry values that switch the module's debug log on.
#pragma once

#include "helpers/bytes.h"
#include "support/win.h"

namespace vndiscover {

// A module sees a change when it is loaded or when a thread starts.
class RegistrySwitches {
  public:
    // name: the one that is on; null: none.
    explicit RegistrySwitches(const char* name = nullptr) {
        RegCreateKeyA(HKEY_LOCAL_MACHINE, kKey, &key_);
        if (name) SetOn(name);
    }
    ~RegistrySwitches() {
        RegCloseKey(key_);
        RemoveAll();
        RegDeleteKeyA(HKEY_LOCAL_MACHINE, "Software\\Varnell Osk");
    }
    RegistrySwitches(const RegistrySwitches&) = delete;
    RegistrySwitches& operator=(const RegistrySwitches&) = delete;

    void Set(const char* name, DWORD type, const Bytes& data) {
        RegSetValueExA(key_, name, 0, type, data.data(), static_cast<DWORD>(data.size()));
    }
    void SetOn(const char* name) { Set(name, REG_DWORD, {1, 0, 0, 0}); }
    void Remove(const char* name) { RegDeleteValueA(key_, name); }
    // The key itself too; nothing can be set afterwards.
    void RemoveAll() { RegDeleteKeyA(HKEY_LOCAL_MACHINE, kKey); }

  private:
    static constexpr char kKey[] = "Software\\Varnell Osk\\VnInst";
    HKEY key_ = nullptr;
};

}  // namespace vndiscover
