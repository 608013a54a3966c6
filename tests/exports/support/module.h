// Loads VnDiscover.dll like a host, and replaces system calls that it imports.
#pragma once

#include <map>
#include <new>
#include <stdexcept>
#include <string>

#include "check/module.h"

namespace vndiscover {

// Loaded from the folder of the test program while the object exists.
class Module : public check::Module {
  public:
    Module() {
        if (!IsUsable()) throw std::runtime_error("VnDiscover.dll does not load: " + Missing());
    }
    // Unloads and loads again.
    void Reload() {
        this->~Module();
        new (this) Module;
    }
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
        : slot_(check::ImportSlot(module, name)) {
        if (!slot_) throw std::runtime_error(std::string("the module does not import ") + name);
        original_ = *slot_;
        Write(replacement);
    }
    void Write(void* target) {
        DWORD protection;
        VirtualProtect(slot_, sizeof *slot_, PAGE_READWRITE, &protection);
        *slot_ = target;
        VirtualProtect(slot_, sizeof *slot_, protection, &protection);
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
