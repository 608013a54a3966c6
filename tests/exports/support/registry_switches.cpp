#include "exports/support/registry_switches.h"

namespace vndiscover {
namespace {

constexpr char kMakerKey[] = "Software\\Varnell Osk";
constexpr char kKey[] = "Software\\Varnell Osk\\VnInst";

}  // namespace

RegistrySwitches::RegistrySwitches() {
    RegCreateKeyExA(HKEY_LOCAL_MACHINE, kKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key_,
                    nullptr);
}

RegistrySwitches::~RegistrySwitches() {
    RegCloseKey(key_);
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, kKey);
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, kMakerKey);
}

void RegistrySwitches::Set(const char* name, DWORD type, const Bytes& data) {
    RegSetValueExA(key_, name, 0, type, data.data(), static_cast<DWORD>(data.size()));
}

void RegistrySwitches::Remove(const char* name) { RegDeleteValueA(key_, name); }

}  // namespace vndiscover
