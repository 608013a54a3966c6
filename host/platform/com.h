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
        : isOpen_(SUCCEEDED(
              CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {}
    ~Apartment() {
        if (isOpen_) CoUninitialize();
    }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;

  private:
    bool isOpen_;  // false: the thread's other kind of apartment is as good
};

}  // namespace vndiscover::host
