#include "net/adapter_sweep.h"

#include <memory>

#include "net/adapter_table.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

// No socket stays open behind its phase, however that ends.
class CloseOnExit {
  public:
    explicit CloseOnExit(OwnedSocket& sock) : sock_(sock) {}
    ~CloseOnExit() { sock_.Reset(); }

  private:
    OwnedSocket& sock_;
};

void Open(SCKRAW& socket, OwnedSocket& sock, const Probe& probe, const char* bindAddress) {
    sock = socket.CreateSocket(SOCK_DGRAM, probe.protocol, probe.family, probe.socketTimeoutMs,
                               bindAddress);
    // Here and not for every socket: a directed request waits for one answer, and the call costs.
    if (sock) SCKRAW::RaiseReceiveBuffer(sock.Get());
}

void SendAndRun(SCKRAW& socket, OwnedSocket& sock, const Probe& probe, const char* bindAddress,
                bool isLast, const SweepPhase& phase) {
    const CloseOnExit close(sock);
    // A socket that did not open is not told apart: the send on it fails and says so.
    if (socket.SendToSocket(sock, probe.target, probe.port, probe.data, probe.length) != -1) {
        phase(bindAddress, isLast);
    } else {
        DebugLogA("sendto() failed, err: %d\n", WSAGetLastError());
    }
}

void SweepIPv4(SCKRAW& socket, OwnedSocket& sock, const Probe& probe, const SweepPhase& phase) {
    const auto adapters = std::make_unique<AdapterTable>();
    const uint32_t count = adapters->LoadIPv4Addresses();
    for (uint32_t i = 0; i < count; ++i) {
        char address[kAdapterTextSize] = {};
        char mask[kAdapterTextSize] = {};
        char description[kAdapterTextSize] = {};
        adapters->GetIPv4Address(i, address, mask, description);
        DebugLogA("NIC [%d]\n", static_cast<int>(i));
        DebugLogA("   IP   = [%s, %s]\n", address, mask);
        DebugLogA("   DESC = [%s]\n", description);
        SweepFrom(socket, sock, probe, address, i + 1 == count, phase);
    }
}

void SweepIPv6(SCKRAW& socket, OwnedSocket& sock, const Probe& probe, const SweepPhase& phase) {
    const auto adapters = std::make_unique<AdapterTable>();
    const uint32_t count = adapters->LoadIPv6LinkLocal();
    DebugLogA("-------------- ...nCount [%d]\n", static_cast<int>(count));
    for (uint32_t i = 0; i < count; ++i) {
        sockaddr_in6 address = {};
        adapters->GetIPv6Address(i, &address);
        char text[kIPv6AddressTextSize] = {};
        AdapterTable::AddressToText(AF_INET6, &address.sin6_addr, text, sizeof text);
        Open(socket, sock, probe, text);
        DebugLogA("IPADDRESS .... %s", text);
        SendAndRun(socket, sock, probe, text, true,
                   phase);  // Kept: each one is told it is the last.
    }
}

}  // namespace

void SweepFrom(SCKRAW& socket, OwnedSocket& sock, const Probe& probe, const char* bindAddress,
               bool isLast, const SweepPhase& phase) {
    Open(socket, sock, probe, bindAddress);
    SendAndRun(socket, sock, probe, bindAddress, isLast, phase);
}

void SweepAdapters(SCKRAW& socket, OwnedSocket& sock, const Probe& probe, const SweepPhase& phase) {
    if (probe.family == AF_INET6) {
        SweepIPv6(socket, sock, probe, phase);
    } else {
        SweepIPv4(socket, sock, probe, phase);
    }
}

}  // namespace vndiscover
