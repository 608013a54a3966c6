// What a sweep requires of adapters and ports, and what the firewall is told. Without --network
// nothing is sent but one probe from 127.0.0.1.
#include "check/windows_headers.h"

#include <iphlpapi.h>

#include <icmpapi.h>
#include <mswsock.h>

#include <algorithm>
#include <memory>
#include <set>
#include <vector>

#include "check/agent.h"
#include "check/module.h"
#include "check/rows.h"

namespace check {
namespace {

constexpr char kGroup[] = "239.255.255.250";
constexpr char kBroadcast[] = "255.255.255.255";
constexpr uint16_t kSnmpPort = 161, kWsdPort = 3702;
constexpr int kWaitMs = 1000;
constexpr char kLoop[] = "an IPv6 multicast without IPV6_MULTICAST_LOOP, by another member here";
constexpr char kUnreachable[] = "an echo of 8 bytes to nobody, into a buffer of 48";

struct Adapter {
    DWORD index;
    std::string name, address;
};

// Those with an IPv4 address, in the order in which the module uses them.
std::vector<Adapter> Adapters() {
    std::vector<char> list(22528);
    ULONG size = ULONG(list.size());
    std::vector<Adapter> found;
    const auto* info = reinterpret_cast<const IP_ADAPTER_INFO*>(list.data());
    if (GetAdaptersInfo(reinterpret_cast<IP_ADAPTER_INFO*>(list.data()), &size) != 0)
        info = nullptr;
    for (; info; info = info->Next) {
        for (const IP_ADDR_STRING* entry = &info->IpAddressList; entry; entry = entry->Next) {
            const std::string address = entry->IpAddress.String;
            if (address != "0.0.0.0") found.push_back({info->Index, info->AdapterName, address});
        }
    }
    return found;
}

void NameRow(Report& report, const std::vector<Adapter>& adapters) {
    const char* const name = "adapter names of GetAdaptersInfo in GetAdaptersAddresses";
    ULONG error = 0;
    int calls = 0;
    const AddressList list = ListAddresses(AF_UNSPEC, 0, error, calls);
    std::set<std::string> names;
    const auto* adapter =
        error == 0 ? reinterpret_cast<const IP_ADAPTER_ADDRESSES*>(list.data()) : nullptr;
    for (; adapter; adapter = adapter->Next) names.insert(adapter->AdapterName);
    if (adapters.empty()) {
        report.NotSeen(name, "all", "this computer has no adapter");
        return;
    }
    const bool all = std::all_of(adapters.begin(), adapters.end(),
                                 [&](const Adapter& one) { return names.count(one.name) == 1; });
    report.Add(name, "all", all ? "all" : "not all");
}

// Two sockets with SO_REUSEADDR, as a responder of the system and another would have.
void PortRows(Report& report) {
    const BOOL shares = TRUE;
    UdpSocket first(AF_INET), second(AF_INET);
    first.Set(SOL_SOCKET, SO_REUSEADDR, &shares, sizeof shares);
    second.Set(SOL_SOCKET, SO_REUSEADDR, &shares, sizeof shares);
    const int one = first.Bind("0.0.0.0", kWsdPort), two = second.Bind("0.0.0.0", kWsdPort);
    report.Add("port 3702 shared by two sockets", "0, 0", Number(one) + ", " + Number(two));

    UdpSocket all(AF_INET), loopback(AF_INET);
    const char* const name = "127.0.0.2, port 161, beside all addresses";
    if (const int taken = all.Bind("0.0.0.0", kSnmpPort)) {
        report.NotSeen(name, "0", "port 161 is taken (" + Number(taken) + ")");
    } else {
        report.Add(name, "0", Number(loopback.Bind("127.0.0.2", kSnmpPort)));
    }
}

bool Send(const UdpSocket& socket, const char* address, uint16_t port) {
    const sockaddr_in to = LoopbackAddress(address, port);  // any address will do
    return sendto(socket.Get(), "check", 5, 0, reinterpret_cast<const sockaddr*>(&to), sizeof to) ==
           5;
}

int Join(UdpSocket& socket, const char* address) {
    ip_mreq membership = {};
    inet_pton(AF_INET, kGroup, &membership.imr_multiaddr);
    inet_pton(AF_INET, address, &membership.imr_interface);
    return socket.Set(IPPROTO_IP, IP_ADD_MEMBERSHIP, &membership, sizeof membership);
}

// That this check stays on the loopback rests on this. The port is the receiver's own, so nobody
// else listens.
void ProbeRow(Report& report, const std::vector<Adapter>& adapters) {
    const char* const name = "a multicast from 127.0.0.1, by a member on a real adapter";
    UdpSocket receiver(AF_INET), sender(AF_INET);
    const int bound = receiver.Bind("0.0.0.0", 0);
    const auto joined = std::count_if(adapters.begin(), adapters.end(), [&](const Adapter& one) {
        return Join(receiver, one.address.c_str()) == 0;
    });
    if (bound != 0 || joined == 0) {
        report.NotSeen(name, "not heard", "this computer has no adapter for it");
        return;
    }
    sender.Bind("127.0.0.1", 0);
    if (Send(sender, kGroup, receiver.Port())) {
        report.Add(name, "not heard", receiver.IsReadable(kWaitMs) ? "heard" : "not heard");
    } else {
        report.Add(name, "not heard", "sending fails with " + Number(WSAGetLastError()));
    }
}

// The adapter by which what waits in the socket has come, by IP_PKTINFO; 0 if it does not tell.
DWORD CameBy(const UdpSocket& socket) {
    LPFN_WSARECVMSG receive = nullptr;
    GUID id = WSAID_WSARECVMSG;
    DWORD size = 0;
    WSAIoctl(socket.Get(), SIO_GET_EXTENSION_FUNCTION_POINTER, &id, sizeof id, &receive,
             sizeof receive, &size, nullptr, nullptr);
    char data[16], control[256];
    WSABUF buffer = {sizeof data, data};
    WSAMSG message = {};
    message.lpBuffers = &buffer;
    message.dwBufferCount = 1;
    message.Control = {sizeof control, control};
    if (!receive || receive(socket.Get(), &message, &size, nullptr, nullptr) != 0) return 0;
    for (WSACMSGHDR* part = WSA_CMSG_FIRSTHDR(&message); part;
         part = WSA_CMSG_NXTHDR(&message, part)) {
        if (part->cmsg_level == IPPROTO_IP && part->cmsg_type == IP_PKTINFO) {
            return reinterpret_cast<const IN_PKTINFO*>(WSA_CMSG_DATA(part))->ipi_ifindex;
        }
    }
    return 0;
}

std::string LeavesBy(const Adapter& from, const std::vector<Adapter>& adapters,
                     const char* address) {
    UdpSocket receiver(AF_INET), sender(AF_INET);
    const DWORD on = 1;
    receiver.Bind("0.0.0.0", 0);
    receiver.Set(IPPROTO_IP, IP_PKTINFO, &on, sizeof on);
    for (const Adapter& adapter : adapters) Join(receiver, adapter.address.c_str());
    sender.Bind(from.address.c_str(), 0);
    sender.Set(SOL_SOCKET, SO_BROADCAST, &on, sizeof on);
    if (!Send(sender, address, receiver.Port()))
        return "sending fails with " + Number(WSAGetLastError());
    if (!receiver.IsReadable(kWaitMs)) return "it does not come back";
    const DWORD by = CameBy(receiver);
    return by == from.index ? "by its own adapter"
           : by             ? "by another adapter"
                            : "the adapter is not told";
}

void LeavingRows(Report& report, const std::vector<Adapter>& adapters) {
    int number = 0;
    for (const Adapter& adapter : adapters) {
        const std::string which = ", IPv4 address " + Number(++number);
        report.Add("where its broadcast leaves" + which, "by its own adapter",
                   LeavesBy(adapter, adapters, kBroadcast));
        report.Add("where its multicast leaves" + which, "by its own adapter",
                   LeavesBy(adapter, adapters, kGroup));
    }
}

// The module sends so, and must not hear itself.
void LoopRow(Report& report) {
    UdpSocket receiver(AF_INET6), sender(AF_INET6);
    sockaddr_in6 any = {}, group = {};
    any.sin6_family = group.sin6_family = AF_INET6;
    const int bound = bind(receiver.Get(), reinterpret_cast<const sockaddr*>(&any), sizeof any);
    ipv6_mreq membership = {};
    inet_pton(AF_INET6, "FF02::1", &membership.ipv6mr_multiaddr);
    receiver.Set(IPPROTO_IPV6, IPV6_ADD_MEMBERSHIP, &membership, sizeof membership);
    const char off = 0;
    sender.Set(IPPROTO_IPV6, IPV6_MULTICAST_LOOP, &off, sizeof off);
    group.sin6_addr = membership.ipv6mr_multiaddr;
    group.sin6_port = htons(receiver.Port());
    if (bound == 0 && sendto(sender.Get(), "check", 5, 0, reinterpret_cast<const sockaddr*>(&group),
                             sizeof group) == 5) {
        report.Add(kLoop, "not heard", receiver.IsReadable(kWaitMs) ? "heard" : "not heard");
    } else if (const int error = WSAGetLastError(); bound != 0 || error == WSAENETUNREACH) {
        report.NotSeen(kLoop, "not heard", "no IPv6");
    } else {
        report.Add(kLoop, "not heard", "sending fails with " + Number(error));
    }
}

// Of addresses kept for documentation, so nobody is there.
void UnreachableRow(Report& report) {
    char data[] = "Data Buf", reply[48] = {};
    const HANDLE handle = IcmpCreateFile();
    const DWORD replies = IcmpSendEcho(handle, LoopbackAddress("192.0.2.1", 0).sin_addr.s_addr,
                                       data, 8, nullptr, reply, sizeof reply, 2000);
    const DWORD error = GetLastError();
    IcmpCloseHandle(handle);
    const DWORD status =
        replies == 0 ? error : reinterpret_cast<const ICMP_ECHO_REPLY*>(reply)->Status;
    // A router may say that nobody is there, or this computer that no way leads there.
    const bool isRight = status == IP_REQ_TIMED_OUT || status == ERROR_NETWORK_UNREACHABLE ||
                         status == ERROR_HOST_UNREACHABLE || status == IP_TTL_EXPIRED_TRANSIT ||
                         (status >= IP_DEST_NET_UNREACHABLE && status <= IP_DEST_PORT_UNREACHABLE);
    report.Add(kUnreachable, "timed out or unreachable",
               isRight ? "timed out or unreachable"
                       : Number(replies) + " reply, status " + Number(status));
}

}  // namespace

void AdapterRows(Report& report, bool mayUseNetwork) {
    report.Section("Adapters and ports");
    const std::vector<Adapter> adapters = Adapters();
    NameRow(report, adapters);
    PortRows(report);
    ProbeRow(report, adapters);
    if (!mayUseNetwork) {
        for (const auto& [name, expected] :
             {std::pair("where broadcasts and multicasts leave", "by their own adapter"),
              {kLoop, "not heard"},
              {kUnreachable, "timed out or unreachable"}})
            report.NotSeen(name, expected, "needs --network");
        return;
    }
    LeavingRows(report, adapters);
    LoopRow(report);
    UnreachableRow(report);
}

}  // namespace check
