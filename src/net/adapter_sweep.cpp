#include "net/adapter_sweep.h"

#include "support/debug_log.h"

namespace vndiscover {

AdapterSweep::AdapterSweep(SCKRAW& socket, OwnedSocket& sock, const SweepRequest& request)
    : socket_(socket), sock_(sock), request_(request), adapters_(std::make_unique<AdapterTable>()) {
    if (IsIPv6()) {
        count_ = adapters_->LoadIPv6LinkLocal();
        DebugLogA("-------------- ...nCount [%d]\n", static_cast<int>(count_));
    } else {
        count_ = adapters_->LoadIPv4Addresses();
    }
}

bool AdapterSweep::Next() {
    while (next_ < count_) {
        ReadAddress(next_++);
        if (SendFrom(address_)) return true;
    }
    return false;
}

void AdapterSweep::ReadAddress(uint32_t index) {
    if (IsIPv6()) {
        sockaddr_in6 address = {};
        adapters_->GetIPv6Address(index, &address);
        address_[0] = '\0';
        AdapterTable::AddressToText(AF_INET6, &address.sin6_addr, address_, kIPv6AddressTextSize);
        return;
    }
    char mask[kAdapterTextSize] = {};
    char description[kAdapterTextSize] = {};
    adapters_->GetIPv4Address(index, address_, mask, description);
    DebugLogA("NIC [%d]\n", static_cast<int>(index));
    DebugLogA("   IP   = [%s, %s]\n", address_, mask);
    DebugLogA("   DESC = [%s]\n", description);
}

bool AdapterSweep::SendFrom(const char* address) {
    sock_.Reset();
    sock_ = socket_.CreateSocket(SOCK_DGRAM, request_.protocol, request_.family,
                                 request_.socketTimeoutMs, address);
    // Not for every socket: a directed request waits for one answer only, and the call takes time.
    if (sock_) SCKRAW::RaiseReceiveBuffer(sock_.Get());
    if (IsIPv6()) DebugLogA("IPADDRESS .... %s", address);
    // A socket that failed to open needs no check: the send on it fails.
    if (socket_.SendToSocket(sock_, request_.target, request_.port, request_.data,
                             request_.length) != -1) {
        return true;
    }
    DebugLogA("sendto() failed, err: %d\n", WSAGetLastError());
    return false;
}

}  // namespace vndiscover
