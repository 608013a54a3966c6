// Owners for COM.
#pragma once

#include <windows.h>

#include <objbase.h>

#include "platform/owned.h"

namespace vndiscover::host {

template <class Interface>
void Release(Interface* object) noexcept {
    object->Release();
}
template <class Interface>
using OwnedObject = Owned<ClosedBy<Interface*, Release<Interface>>>;

// For calls that return an object through a pointer.
template <class Object>
void** Receive(Object& object) {
    return reinterpret_cast<void**>(object.Receive());
}

// The apartment of a thread, as the shell and its dialogs need it.
class Apartment {
  public:
    Apartment()
        : owned_(SUCCEEDED(
              CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {}

  private:
    struct Traits {
        using Value = bool;  // false: the thread's other kind of apartment is as good
        static Value Empty() noexcept { return false; }
        static void Close(Value) noexcept { CoUninitialize(); }
    };
    Owned<Traits> owned_;
};

}  // namespace vndiscover::host
