#pragma once

#include "support/owned.h"
#include "support/win.h"

namespace vndiscover {

struct SocketTraits {
    using Value = SOCKET;
    static Value Empty() noexcept { return INVALID_SOCKET; }
    static void Close(Value socket) noexcept {
        const int error = WSAGetLastError();  // callers read it after a close
        closesocket(socket);
        WSASetLastError(error);
    }
};
using OwnedSocket = Owned<SocketTraits>;

struct AddressListTraits {
    using Value = addrinfo*;
    static Value Empty() noexcept { return nullptr; }
    static void Close(Value list) noexcept { freeaddrinfo(list); }
};
using OwnedAddressList = Owned<AddressListTraits>;

}  // namespace vndiscover
