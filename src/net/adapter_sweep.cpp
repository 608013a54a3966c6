#include "net/adapter_sweep.h"

#include "support/debug_log.h"

namespace vndiscover {
namespace {

void Open(SCKRAW& socket, OwnedSocket& sock, const Probe& probe, const char* bindAddress) {
    sock = socket.CreateSocket(SOCK_DGRAM, probe.protocol, probe.family, probe.socketTimeoutMs,
                               bindAddress);
    // Here and not for every socket: a directed request waits for one answer, and the call costs.
    if (sock) SCKRAW::RaiseReceiveBuffer(sock.Get());
}

// A socket that did not open is not told apart: the send on it fails and says so.
bool Send(SCKRAW& socket, OwnedSocket& sock, const Probe& probe) {
    if (socket.SendToSocket(sock, probe.target, probe.port, probe.data, probe.length) != -1) {
        return true;
    }
    DebugLogA("sendto() failed, err: %d\n", WSAGetLastError());
    sock.Reset();
    return false;
}

}  // namespace

bool SendProbe(SCKRAW& socket, OwnedSocket& sock, const Probe& probe, const char* bindAddress) {
    Open(socket, sock, probe, bindAddress);
    return Send(socket, sock, probe);
}

AdapterSweep::AdapterSweep(SCKRAW& socket, OwnedSocket& sock, const Probe& probe)
    : socket_(socket), sock_(sock), probe_(probe), adapters_(std::make_unique<AdapterTable>()) {
    if (probe_.family == AF_INET6) {
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
        if (probe_.family == AF_INET6 ? SendFromIPv6(index) : SendFromIPv4(index)) return true;
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
    return SendProbe(socket_, sock_, probe_, address_);
}

bool AdapterSweep::SendFromIPv6(uint32_t index) {
    sockaddr_in6 address = {};
    adapters_->GetIPv6Address(index, &address);
    address_[0] = '\0';
    AdapterTable::AddressToText(AF_INET6, &address.sin6_addr, address_, kIPv6AddressTextSize);
    Open(socket_, sock_, probe_, address_);
    DebugLogA("IPADDRESS .... %s", address_);
    return Send(socket_, sock_, probe_);
}

}  // namespace vndiscover
