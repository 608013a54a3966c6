#include "net/adapter_sweep.h"

#include "support/debug_log.h"

namespace vndiscover {
namespace {

void Open(SCKRAW& socket, OwnedSocket& sock, const SweepRequest& request, const char* bindAddress) {
    sock = socket.CreateSocket(SOCK_DGRAM, request.protocol, request.family,
                               request.socketTimeoutMs, bindAddress);
    // Not for every socket: a directed request waits for one answer only, and the call takes time.
    if (sock) SCKRAW::RaiseReceiveBuffer(sock.Get());
}

// A socket that failed to open needs no check: the send on it fails and logs the error.
bool Send(SCKRAW& socket, OwnedSocket& sock, const SweepRequest& request) {
    if (socket.SendToSocket(sock, request.target, request.port, request.data, request.length) !=
        -1) {
        return true;
    }
    DebugLogA("sendto() failed, err: %d\n", WSAGetLastError());
    sock.Reset();
    return false;
}

}  // namespace

bool SendRequest(SCKRAW& socket, OwnedSocket& sock, const SweepRequest& request,
                 const char* bindAddress) {
    Open(socket, sock, request, bindAddress);
    return Send(socket, sock, request);
}

AdapterSweep::AdapterSweep(SCKRAW& socket, OwnedSocket& sock, const SweepRequest& request)
    : socket_(socket), sock_(sock), request_(request), adapters_(std::make_unique<AdapterTable>()) {
    if (request_.family == AF_INET6) {
        count_ = adapters_->LoadIPv6LinkLocal();
        DebugLogA("-------------- ...nCount [%d]\n", static_cast<int>(count_));
    } else {
        count_ = adapters_->LoadIPv4Addresses();
    }
}

bool AdapterSweep::Next() {
    sock_.Reset();
    while (next_ < count_) {
        const uint32_t index = next_++;
        if (request_.family == AF_INET6 ? SendFromIPv6(index) : SendFromIPv4(index)) return true;
    }
    return false;
}

bool AdapterSweep::SendFromIPv4(uint32_t index) {
    char mask[kAdapterTextSize] = {};
    char description[kAdapterTextSize] = {};
    adapters_->GetIPv4Address(index, address_, mask, description);
    DebugLogA("NIC [%d]\n", static_cast<int>(index));
    DebugLogA("   IP   = [%s, %s]\n", address_, mask);
    DebugLogA("   DESC = [%s]\n", description);
    return SendRequest(socket_, sock_, request_, address_);
}

bool AdapterSweep::SendFromIPv6(uint32_t index) {
    sockaddr_in6 address = {};
    adapters_->GetIPv6Address(index, &address);
    address_[0] = '\0';
    AdapterTable::AddressToText(AF_INET6, &address.sin6_addr, address_, kIPv6AddressTextSize);
    Open(socket_, sock_, request_, address_);
    DebugLogA("IPADDRESS .... %s", address_);
    return Send(socket_, sock_, request_);
}

}  // namespace vndiscover
