#include "net/pinger.h"

#include <cstring>
#include <memory>

#include "net/sckraw.h"
#include "support/debug_log.h"

namespace vndiscover {
namespace {

constexpr char kPayload[] = "Data Buffer";
constexpr WORD kPayloadBytes = 8;  // Kept: the text's first eight characters only.
constexpr DWORD kReplyBytesV6 = 1072;
constexpr UCHAR kTimeToLive = 255;

// One echo record and the payload that comes back.
struct alignas(ICMP_ECHO_REPLY) ReplyV4 {
    uint8_t bytes[48];
};
static_assert(sizeof(ICMP_ECHO_REPLY) + kPayloadBytes == sizeof(ReplyV4), "one record and payload");

// Closed with the function that was found for it.
using OwnedIcmpHandle = std::unique_ptr<void, decltype(&IcmpCloseHandle)>;

HANDLE NullIfInvalid(HANDLE handle) { return handle == INVALID_HANDLE_VALUE ? nullptr : handle; }

uint32_t TargetV4(const char* address) {
    const uint32_t dotted = inet_addr(address);
    return dotted != INADDR_NONE ? dotted : SCKRAW::ResolveV4(address);
}

}  // namespace

Pinger::Pinger() {
    createFile = library.Find<CreateFileFunction>("IcmpCreateFile");
    closeHandle = library.Find<CloseHandleFunction>("IcmpCloseHandle");
    sendEcho = library.Find<SendEchoFunction>("IcmpSendEcho");
    if (!createFile || !closeHandle || !sendEcho) return;
    WSADATA data;
    // Kept: started twice and cleaned up once, so one reference remains.
    (void)WSAStartup(MAKEWORD(1, 1), &data);
    if (WSAStartup(MAKEWORD(1, 1), &data) != 0) {
        WSACleanup();
        return;
    }
    ready = 1;
}

Pinger::~Pinger() {
    if (ready) WSACleanup();  // otherwise it would release a reference of the host
}

int Pinger::Ping(const char* address, uint32_t timeoutMs) {
    return inet_addr(address) != INADDR_NONE ? EchoV4(address, timeoutMs)
                                             : EchoV6(address, timeoutMs);
}

int Pinger::EchoV4(const char* address, uint32_t timeoutMs) {
    if (!ready) return 0;
    const uint32_t target = TargetV4(address);
    if (target == INADDR_NONE) return 0;
    const OwnedIcmpHandle handle(NullIfInvalid(createFile()), closeHandle);
    if (!handle) return 0;
    ReplyV4 reply = {};
    char payload[sizeof kPayload];
    std::memcpy(payload, kPayload, sizeof payload);  // the call takes writable memory
    const DWORD replies = sendEcho(handle.get(), target, payload, kPayloadBytes, nullptr,
                                   reply.bytes, sizeof reply.bytes, timeoutMs);
    DebugLogW(L"IcmpSendEcho dwRetVal = %d\n", static_cast<int>(replies));
    ICMP_ECHO_REPLY first;
    std::memcpy(&first, reply.bytes, sizeof first);
    return replies != 0 && first.Status == IP_SUCCESS ? 1 : 0;
}

int Pinger::EchoV6(const char* address, uint32_t timeoutMs) {
    if (!ready || !ipHelper_) return 0;
    const auto createFileV6 = ipHelper_.Find<decltype(&Icmp6CreateFile)>("Icmp6CreateFile");
    const auto sendEchoV6 = ipHelper_.Find<decltype(&Icmp6SendEcho2)>("Icmp6SendEcho2");
    if (!createFileV6 || !sendEchoV6) return 0;  // some systems have neither

    OwnedAddressList target;
    if (getaddrinfo(address, nullptr, nullptr, target.Receive()) != 0) return 0;
    sockaddr_in6 source = {};  // the system chooses the address
    source.sin6_family = AF_INET6;
    // Only the first address is used. An IPv4 one cannot be reached this way, and read as IPv6 it
    // would be another host's.
    if (target.Get()->ai_family != AF_INET6) return 0;
    sockaddr_in6 destination;
    std::memcpy(&destination, target.Get()->ai_addr, sizeof destination);
    IP_OPTION_INFORMATION options = {};
    options.Ttl = kTimeToLive;

    const OwnedIcmpHandle handle(NullIfInvalid(createFileV6()), closeHandle);
    if (!handle) return 0;
    alignas(8) uint8_t reply[kReplyBytesV6] = {};
    uint8_t noData = 0;
    const DWORD replies = sendEchoV6(handle.get(), nullptr, nullptr, nullptr, &source, &destination,
                                     &noData, 0, &options, reply, sizeof reply, timeoutMs);
    return replies != 0 ? 1 : 0;  // Kept: unlike IPv4, the reply's status is not examined.
}

}  // namespace vndiscover
