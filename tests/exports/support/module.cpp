#include "exports/support/module.h"

#include <cstring>
#include <stdexcept>
#include <string>

namespace vndiscover {
namespace {

void** FindSlot(HMODULE module, const char* name) {
    auto* base = reinterpret_cast<uint8_t*>(module);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    auto* library =
        reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
    for (; library->Name != 0; ++library) {
        auto* names = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
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

}  // namespace

// The system searches the program's folder first.
Module::Module() : handle_(LoadLibraryW(L"VnDiscover.dll")) {
    if (!handle_) throw std::runtime_error("VnDiscover.dll cannot be loaded");
}

void* Module::Find(const char* name) const {
    void* address = reinterpret_cast<void*>(GetProcAddress(handle_, name));
    if (!address) throw std::runtime_error(std::string("no export ") + name);
    return address;
}

ImportPatch::ImportPatch(HMODULE module, const char* name, void* replacement, int)
    : slot_(FindSlot(module, name)), original_(*slot_) {
    Write(replacement);
}

void ImportPatch::Write(void* target) {
    DWORD protection;
    VirtualProtect(slot_, sizeof *slot_, PAGE_READWRITE, &protection);
    *slot_ = target;
    VirtualProtect(slot_, sizeof *slot_, protection, &protection);
}

}  // namespace vndiscover
