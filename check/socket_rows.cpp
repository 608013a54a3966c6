// What the module's datagram socket requires.
#include "check/windows_headers.h"

#include <iphlpapi.h>

#include <thread>

#include "check/agent.h"
#include "check/rows.h"

namespace check {
namespace {

constexpr char kThere[] = "127.0.0.1", kNobody[] = "127.0.0.3";
constexpr char kAllNodes[] = "FF02:0:0:0:0:0:0:1";
constexpr uint16_t kClosedPort = 9;
constexpr int kShortWaitMs = 1000;

int SendTo(const UdpSocket& socket, const char* address, uint16_t port, int size) {
    const std::string text(size_t(size), 'x');
    const sockaddr_in to = LoopbackAddress(address, port);
    return sendto(socket.Get(), text.data(), size, 0, reinterpret_cast<const sockaddr*>(&to),
                  sizeof to);
}

std::string Received(const UdpSocket& socket) {
    char buffer[VN_SOAP_REPLY_SIZE];
    const int received = recv(socket.Get(), buffer, sizeof buffer, 0);
    return received >= 0 ? Number(received) + " bytes" : "error " + Number(WSAGetLastError());
}

// Receives like the module, only a datagram that is waiting.
std::string Waiting(const UdpSocket& socket) {
    return socket.IsReadable(kShortWaitMs) ? Received(socket) : "nothing";
}

// A receive with SO_RCVTIMEO only. If the limit is ignored, a datagram to itself ends the wait.
std::string ReceivedWithinLimit(const UdpSocket& socket) {
    std::string text;
    const HANDLE done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const ULONGLONG started = GetTickCount64();
    std::thread thread([&] {
        text = Received(socket);
        SetEvent(done);
    });
    const bool ends = WaitForSingleObject(done, 5 * kShortWaitMs) == WAIT_OBJECT_0;
    const bool isEarly = GetTickCount64() - started + 50 < kShortWaitMs;
    if (!ends) SendTo(socket, kThere, socket.Port(), 1);
    thread.join();
    CloseHandle(done);
    return !ends ? "it waits for ever" : text + (isEarly ? " too early" : " after the limit");
}

void ReceiveErrorRows(Report& report) {
    UdpSocket sender(AF_INET), receiver(AF_INET);
    sender.Bind(kThere, 0);
    receiver.Bind(kThere, 0);
    const DWORD limit = kShortWaitMs;
    report.Add("SO_RCVTIMEO on a socket without the overlapped flag", "set (0)",
               "set (" + Number(sender.Set(SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit)) + ")");
    report.Add("a receive with that limit of 1 s", "error 10060 after the limit",
               ReceivedWithinLimit(sender));

    SendTo(sender, kNobody, kClosedPort, 1);
    report.Add("a receive after a datagram to a closed port", "error 10054", Waiting(sender));

    SendTo(sender, kThere, receiver.Port(), VN_SOAP_REPLY_SIZE + 1);
    SendTo(sender, kThere, receiver.Port(), VN_SOAP_REPLY_SIZE);
    report.Add("a datagram longer than the buffer", "error 10040", Waiting(receiver));
    report.Add("the one after it", "2048 bytes", Waiting(receiver));
}

void BindRow(Report& report) {
    UdpSocket socket(AF_INET);
    report.Add("a bind of an address that is not this computer's", "error 10049",
               "error " + Number(socket.Bind("192.0.2.1", 0)));  // reserved for documentation
}

void OptionRows(Report& report) {
    UdpSocket options(AF_INET6);
    const auto row = [&](const char* name, int option, char value) {
        const int error = options.Set(IPPROTO_IPV6, option, &value, 1);
        DWORD kept = 0xFFFF;
        int size = sizeof kept;
        getsockopt(options.Get(), IPPROTO_IPV6, option, reinterpret_cast<char*>(&kept), &size);
        report.Add(name, "set (0), reads as " + Number(value),
                   "set (" + Number(error) + "), reads as " + Number(kept & 0xFF));
    };
    row("IPV6_MULTICAST_LOOP as one byte", IPV6_MULTICAST_LOOP, 0);
    row("IPV6_MULTICAST_HOPS as one byte", IPV6_MULTICAST_HOPS, 8);
}

// The link-local addresses of adapters that are up.
std::vector<sockaddr_in6> LinkLocals(const AddressList& list) {
    std::vector<sockaddr_in6> found;
    const auto* adapter =
        list.empty() ? nullptr : reinterpret_cast<const IP_ADAPTER_ADDRESSES*>(list.data());
    for (; adapter; adapter = adapter->Next) {
        if (adapter->OperStatus != IfOperStatusUp) continue;
        for (const auto* entry = adapter->FirstUnicastAddress; entry; entry = entry->Next) {
            const auto* six = reinterpret_cast<const sockaddr_in6*>(entry->Address.lpSockaddr);
            if (IN6_IS_ADDR_LINKLOCAL(&six->sin6_addr)) found.push_back(*six);
        }
    }
    return found;
}

void AdapterRows(Report& report, const AddressList& six, ULONG sixError, int calls) {
    report.Add("size of an IPv4 adapter record", "704 bytes",
               Number(sizeof(IP_ADAPTER_INFO)) + " bytes");
    std::vector<char> list(22528);
    ULONG size = ULONG(list.size());
    const ULONG error = GetAdaptersInfo(reinterpret_cast<IP_ADAPTER_INFO*>(list.data()), &size);
    const std::string name = "GetAdaptersInfo into 22,528 bytes";
    if (error == ERROR_NO_DATA) {
        report.NotSeen(name, "0", "this computer has no adapter");
    } else {
        report.Add(name, "0", Number(error));
    }
    report.Add("GetAdaptersAddresses, IPv6, with prefixes", "0 in at most 3 calls",
               Number(sixError) + (calls <= 3 ? " in at most 3 calls" : " in more"));
    bool haveZones = true;
    for (const sockaddr_in6& address : LinkLocals(six)) haveZones &= address.sin6_scope_id != 0;
    if (LinkLocals(six).empty()) {
        report.NotSeen("the zones of link-local addresses", "all given",
                       "there is no such address");
    } else {
        report.Add("the zones of link-local addresses", "all given",
                   haveZones ? "all given" : "missing");
    }
}

// The interface through which a multicast from this socket returns to this computer.
std::string LeavesBy(UdpSocket& socket, DWORD own, const std::vector<sockaddr_in6>& adapters) {
    UdpSocket receiver(AF_INET6);
    sockaddr_in6 any = {};
    any.sin6_family = AF_INET6;
    if (bind(receiver.Get(), reinterpret_cast<const sockaddr*>(&any), sizeof any) != 0) {
        return "the receiver's bind fails with " + Number(WSAGetLastError());
    }
    // Every host is a member, but Windows may give a socket only what the socket itself has joined.
    for (const sockaddr_in6& adapter : adapters) {
        ipv6_mreq membership = {};
        inet_pton(AF_INET6, kAllNodes, &membership.ipv6mr_multiaddr);
        membership.ipv6mr_interface = adapter.sin6_scope_id;
        receiver.Set(IPPROTO_IPV6, IPV6_ADD_MEMBERSHIP, &membership, sizeof membership);
    }
    const DWORD loops = 1;
    socket.Set(IPPROTO_IPV6, IPV6_MULTICAST_LOOP, &loops, sizeof loops);
    sockaddr_in6 group = {};
    group.sin6_family = AF_INET6;
    group.sin6_port = htons(receiver.Port());
    inet_pton(AF_INET6, kAllNodes, &group.sin6_addr);
    if (sendto(socket.Get(), "check", 5, 0, reinterpret_cast<const sockaddr*>(&group),
               sizeof group) != 5) {
        return "sending fails with " + Number(WSAGetLastError());
    }
    char buffer[16];
    sockaddr_in6 sender = {};
    int size = sizeof sender;
    if (!receiver.IsReadable(kShortWaitMs)) return "it does not come back";
    if (recvfrom(receiver.Get(), buffer, sizeof buffer, 0, reinterpret_cast<sockaddr*>(&sender),
                 &size) != 5) {
        return "receiving fails with " + Number(WSAGetLastError());
    }
    return sender.sin6_scope_id == own ? "by its own adapter" : "by another adapter";
}

void LinkLocalRows(Report& report, const AddressList& list, bool mayUseNetwork) {
    const std::vector<sockaddr_in6> addresses = LinkLocals(list);
    if (addresses.empty()) {
        report.NotSeen("a bind of a link-local address without a zone", "0",
                       "there is no such address");
    }
    int number = 0;
    for (sockaddr_in6 address : addresses) {
        const DWORD own = address.sin6_scope_id;
        const std::string which = ", address " + Number(++number);
        address.sin6_scope_id = 0;
        address.sin6_port = 0;
        UdpSocket socket(AF_INET6);
        const bool bound =
            bind(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
        report.Add("a bind of a link-local address without a zone" + which, "0",
                   Number(bound ? 0 : WSAGetLastError()));
        const std::string leaves = "where its multicast to FF02::1 leaves" + which;
        if (mayUseNetwork) {
            report.Add(leaves, "by its own adapter", LeavesBy(socket, own, addresses));
        } else {
            report.NotSeen(leaves, "by its own adapter", "needs --network");
        }
    }
}

}  // namespace

AddressList ListAddresses(ULONG family, ULONG flags, ULONG& error, int& calls) {
    AddressList list(15000);
    error = ERROR_BUFFER_OVERFLOW;
    for (calls = 0; calls < 3 && error == ERROR_BUFFER_OVERFLOW; ++calls) {
        ULONG size = ULONG(list.size());
        error = GetAdaptersAddresses(family, flags, nullptr,
                                     reinterpret_cast<IP_ADAPTER_ADDRESSES*>(list.data()), &size);
        if (error == ERROR_BUFFER_OVERFLOW) list.resize(size);
    }
    return error == 0 ? list : AddressList();
}

void SocketRows(Report& report, bool mayUseNetwork) {
    report.Section("Sockets and adapters");
    ReceiveErrorRows(report);
    BindRow(report);
    OptionRows(report);
    ULONG error;
    int calls;
    const AddressList list = ListAddresses(AF_INET6, GAA_FLAG_INCLUDE_PREFIX, error, calls);
    AdapterRows(report, list, error, calls);
    LinkLocalRows(report, list, mayUseNetwork);
}

}  // namespace check
