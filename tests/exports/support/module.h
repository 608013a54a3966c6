// Loads VnDiscover.dll like a host, and replaces system calls that it imports.
#pragma once

#include <map>
#include <new>
#include <string>

#include "support/win.h"
#include "vndiscover.h"

namespace vndiscover {

// Loaded from the folder of the test program while the object exists.
class Module {
  public:
    Module();
    ~Module() { FreeLibrary(handle_); }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    // Unloads and loads again.
    void Reload() {
        this->~Module();
        new (this) Module;
    }
    HMODULE Handle() const { return handle_; }

  private:
    void* Find(const char* name) const;  // throws if there is no such export

    HMODULE handle_;  // first, since the exports are found in it

  public:
#define VN_FOUND(name) decltype(&::name) name = reinterpret_cast<decltype(&::name)>(Find(#name))
    VN_FOUND(DiscoverDevices);
    VN_FOUND(DiscoverDevicesByOID);
    VN_FOUND(DiscoverDevicesByOIDjson);
    VN_FOUND(DiscoverSnmp);
    VN_FOUND(StopDiscoverSnmp);
    VN_FOUND(DiscoverSnmpV3);
    VN_FOUND(DiscoverV3DevicesByOIDjson);
    VN_FOUND(DiscoverSoap);
    VN_FOUND(StopDiscoverSoap);
    VN_FOUND(DiscoverHttp);
    VN_FOUND(DiscoverBonjour);
    VN_FOUND(GetBonjourInformation);
    VN_FOUND(GetSnmpInformation);
    VN_FOUND(GetSnmpRequest);
    VN_FOUND(GetSnmpRequestRaw);
    VN_FOUND(GetNextSnmpRequestRaw);
    VN_FOUND(SetSnmpRequestRaw);
    VN_FOUND(GetSnmpRequestV3);
    VN_FOUND(GetNextSnmpRequestV3);
    VN_FOUND(VxPing);
    VN_FOUND(IsIPv6Supported);
#undef VN_FOUND
};

// Puts a function of the test in front of one that the module imports, while the object lives. Not
// longer than the module.
class ImportPatch {
  public:
    template <class Function>
    ImportPatch(HMODULE module, const char* name, Function replacement)
        : ImportPatch(module, name, reinterpret_cast<void*>(+replacement), 0) {}
    ~ImportPatch() { Write(original_); }
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;

  private:
    ImportPatch(HMODULE module, const char* name, void* replacement, int);
    void Write(void* target);

    void** slot_;
    void* original_;
};

// What the module finds when it looks a function of the system up at run time, while the object
// lives. One object at a time.
class LookupPatch {
  public:
    explicit LookupPatch(const Module& module) : patch_(module.Handle(), "GetProcAddress", Find) {
        found.clear();
    }
    template <class Function>
    void Set(const std::string& name, Function replacement) {
        found[name] = reinterpret_cast<void*>(+replacement);
    }

    static inline std::map<std::string, void*> found;  // null: there is no such function

  private:
    static FARPROC WINAPI Find(HMODULE library, const char* name) {
        const auto known = found.find(name);
        if (known == found.end()) return GetProcAddress(library, name);
        return reinterpret_cast<FARPROC>(known->second);
    }

    ImportPatch patch_;
};

}  // namespace vndiscover
