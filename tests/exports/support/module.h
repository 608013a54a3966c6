// VnDiscover.dll as a host loads it, and the system calls that it imports.
#pragma once

#include "support/win.h"
#include "vndiscover.h"

namespace vndiscover {

// Loaded from the folder of the test program while the object lives.
class Module {
  public:
    Module() { Load(); }
    ~Module() { FreeLibrary(handle_); }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    // Unloads and loads again.
    void Reload();
    HMODULE Handle() const { return handle_; }

    decltype(&::DiscoverDevices) DiscoverDevices;
    decltype(&::DiscoverDevicesByOID) DiscoverDevicesByOID;
    decltype(&::DiscoverDevicesByOIDjson) DiscoverDevicesByOIDjson;
    decltype(&::DiscoverSnmp) DiscoverSnmp;
    decltype(&::StopDiscoverSnmp) StopDiscoverSnmp;
    decltype(&::DiscoverSnmpV3) DiscoverSnmpV3;
    decltype(&::DiscoverV3DevicesByOIDjson) DiscoverV3DevicesByOIDjson;
    decltype(&::DiscoverSoap) DiscoverSoap;
    decltype(&::StopDiscoverSoap) StopDiscoverSoap;
    decltype(&::DiscoverHttp) DiscoverHttp;
    decltype(&::DiscoverBonjour) DiscoverBonjour;
    decltype(&::GetBonjourInformation) GetBonjourInformation;
    decltype(&::GetSnmpInformation) GetSnmpInformation;
    decltype(&::GetSnmpRequest) GetSnmpRequest;
    decltype(&::GetSnmpRequestRaw) GetSnmpRequestRaw;
    decltype(&::GetNextSnmpRequestRaw) GetNextSnmpRequestRaw;
    decltype(&::SetSnmpRequestRaw) SetSnmpRequestRaw;
    decltype(&::GetSnmpRequestV3) GetSnmpRequestV3;
    decltype(&::GetNextSnmpRequestV3) GetNextSnmpRequestV3;
    decltype(&::VxPing) VxPing;
    decltype(&::IsIPv6Supported) IsIPv6Supported;

  private:
    void Load();
    HMODULE handle_ = nullptr;
};

// Puts a function of the test in front of one that the module imports, while the object lives. Not
// longer than the module.
class ImportPatch {
  public:
    template <class Function>
    ImportPatch(HMODULE module, const char* name, Function replacement)
        : ImportPatch(module, name, reinterpret_cast<void*>(replacement), 0) {}
    ~ImportPatch();
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;

  private:
    ImportPatch(HMODULE module, const char* name, void* replacement, int);
    void Write(void* target);

    void** slot_;
    void* original_;
};

}  // namespace vndiscover
