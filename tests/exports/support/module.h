// Loads VnDiscover.dll like a host, and replaces system calls that it imports.
#pragma once

#include <cstring>
#include <map>
#include <new>
#include <stdexcept>
#include <string>

#include "support/win.h"
#include "vndiscover.h"

namespace vndiscover {

// Loaded from the folder of the test program while the object exists.
class Module {
  public:
    Module() : handle_(LoadLibraryW(L"VnDiscover.dll")) {  // the system searches that folder first
        if (!handle_) throw std::runtime_error("VnDiscover.dll cannot be loaded");
    }
    ~Module() { FreeLibrary(handle_); }
    Module& operator=(Module&&) = delete;  // nor copied

    // Unloads and loads again.
    void Reload() {
        this->~Module();
        new (this) Module;
    }
    HMODULE Handle() const { return handle_; }

  private:
    void* Find(const char* name) const {
        void* address = reinterpret_cast<void*>(GetProcAddress(handle_, name));
        if (!address) throw std::runtime_error(std::string("no export ") + name);
        return address;
    }

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
    ImportPatch& operator=(ImportPatch&&) = delete;  // nor copied

  private:
    ImportPatch(HMODULE module, const char* name, void* replacement, int)
        : slot_(FindSlot(module, name)), original_(*slot_) {
        Write(replacement);
    }
    void Write(void* target) {
        DWORD protection;
        VirtualProtect(slot_, sizeof *slot_, PAGE_READWRITE, &protection);
        *slot_ = target;
        VirtualProtect(slot_, sizeof *slot_, protection, &protection);
    }
    static void** FindSlot(HMODULE module, const char* name) {
        auto* base = reinterpret_cast<uint8_t*>(module);
        const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
        const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
        const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
        auto* library =
            reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
        for (; library->Name != 0; ++library) {
            auto* names =
                reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
            auto* slots = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
            for (; names->u1.AddressOfData != 0; ++names, ++slots) {
                if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
                const auto* entry =
                    reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
                if (std::strcmp(reinterpret_cast<const char*>(entry->Name), name) == 0) {
                    return reinterpret_cast<void**>(&slots->u1.Function);
                }
            }
        }
        throw std::runtime_error(std::string("the module does not import ") + name);
    }

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
