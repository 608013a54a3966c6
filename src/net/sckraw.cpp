#include "net/sckraw.h"

#include <atomic>
#include <cstring>

#include "support/copy_text.h"
#include "support/debug_log.h"
#include "support/system_library.h"

namespace vndiscover {
namespace {

constexpr int kReceiveBufferBytes = 4 * 1024 * 1024;  // a burst of 8,192 answers
constexpr DWORD kMulticastHops = 8;

bool SetOption(SOCKET handle, int level, int option, const void* value, int length) {
    return setsockopt(handle, level, option, static_cast<const char*>(value), length) == 0;
}

bool SetIPv6MulticastOptions(SOCKET handle) {
    // One byte each: no loop-back of own multicasts, eight hops.
    const BYTE loop = 0;
    const BYTE hops = kMulticastHops;
    return SetOption(handle, IPPROTO_IPV6, IPV6_MULTICAST_LOOP, &loop, 1) &&
           SetOption(handle, IPPROTO_IPV6, IPV6_MULTICAST_HOPS, &hops, 1);
}

// Null, or the line of the first option that cannot be set.
const char* SetOptions(SOCKET handle, int family, int timeoutMs) {
    const int enabled = 1;
    if (!SetOption(handle, SOL_SOCKET, SO_RCVTIMEO, &timeoutMs, sizeof timeoutMs))
        return "Failed to set Socket receive timeout\n";
    if (!SetOption(handle, SOL_SOCKET, SO_SNDTIMEO, &timeoutMs, sizeof timeoutMs))
        return "Failed to set Socket send timeout\n";
    if (family == AF_INET && !SetOption(handle, SOL_SOCKET, SO_BROADCAST, &enabled, sizeof enabled))
        return "Failed to set SO_BROADCAST\n";
    if (family == AF_INET6 && !SetIPv6MulticastOptions(handle))
        return "Failed to set IPV6_MULTICAST_LOOP\n";  // for either option
    return nullptr;
}

void BindV6(SOCKET handle, const char* addressText) {
    sockaddr_in6 local = {};
    local.sin6_family = AF_INET6;
    {
        using InetPton = INT(WSAAPI*)(INT, PCSTR, PVOID);
        const SystemLibrary winSock(L"Ws2_32.dll");
        if (const auto inetPton = winSock.Find<InetPton>("inet_pton")) {
            DebugLogA(" tszBindAddr [%s]\n", addressText);
            inetPton(AF_INET6, addressText, &local.sin6_addr);
        }
    }
    // If this fails, the socket is used unbound.
    static_cast<void>(bind(handle, reinterpret_cast<const sockaddr*>(&local), sizeof local));
}

struct BindError {
    int code;
    const char* line;
};
constexpr BindError kBindErrors[] = {{WSAEACCES, "   WSAEACCES\n"},
                                     {WSAEFAULT, "   WSAEFAULT\n"},
                                     {WSAEINVAL, "   WSAEINVAL\n"},
                                     {WSAEINPROGRESS, "   WSAEINPROGRESS\n"},
                                     {WSAENOTSOCK, "   WSAENOTSOCK\n"},
                                     {WSAEADDRINUSE, "   WSAEADDRINUSE\n"},
                                     {WSAEADDRNOTAVAIL, "   WSAEADDRNOTAVAIL\n"},
                                     {WSAENETDOWN, "   WSAENETDOWN\n"},
                                     {WSAENOBUFS, "   WSAENOBUFS\n"},
                                     {WSANOTINITIALISED, "   WSANOTINITIALISED\n"}};

// On a socket that is neither bound nor used to send, a receive fails but a wait times out.
bool IsNothingQueued(int error) { return error == WSAEWOULDBLOCK || error == WSAEINVAL; }

// False: the wait timed out. If the wait fails, the receive that follows reports the error.
bool WaitForDatagram(SOCKET handle, int timeoutMs) {
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(handle, &readable);
    timeval wait = {timeoutMs > 0 ? timeoutMs / 1000 : 0, 0};
    return select(0, &readable, nullptr, nullptr, &wait) != 0;
}

// Bytes received, or SOCKET_ERROR.
int ReceiveNow(SOCKET handle, void* buffer, int size, char* fromAddress) {
    sockaddr_storage sender = {};
    int senderLength = sizeof sender;
    auto* const from = reinterpret_cast<sockaddr*>(&sender);
    const int received = recvfrom(handle, static_cast<char*>(buffer), size, 0, from, &senderLength);
    if (received == SOCKET_ERROR || !fromAddress) return received;
    char host[kSenderTextSize] = {};
    if (getnameinfo(from, senderLength, host, sizeof host, nullptr, 0, NI_NUMERICHOST) == 0) {
        CopyText(fromAddress, kSenderTextSize, host);
    }
    return received;
}

}  // namespace

SCKRAW::SCKRAW() {
    DebugLogA("SCKRAW::SCKRAW()\n");
    WSADATA data;
    // Kept: failures are reported as positive codes, so this branch is never taken; without WinSock
    // the calls that follow fail.
    if (WSAStartup(MAKEWORD(2, 0), &data) == -1) {
        DebugLogA("SCKRAW : WSAStartup() failed %d\n", WSAGetLastError());
        WSACleanup();
    }
}

SCKRAW::~SCKRAW() {
    DebugLogA("SCKRAW::~SCKRAW() [%d]\n", static_cast<int>(sock.Get()));
    sock.Reset();
    WSACleanup();
}

void SCKRAW::KeepStarted() {
    static std::atomic<bool> isKept{false};
    WSADATA data;
    if (!isKept.exchange(true) && WSAStartup(MAKEWORD(2, 0), &data) != 0) isKept = false;
}

OwnedSocket SCKRAW::CreateSocket(int type, int protocol, int addressFamily, int timeoutMs,
                                 const char* bindAddress) {
    family = addressFamily;
    OwnedSocket created(WSASocketA(addressFamily, type, protocol, nullptr, 0, 0));
    if (!created) return created;
    if (const char* const failure = SetOptions(created.Get(), addressFamily, timeoutMs)) {
        DebugLogA("%s", failure);
    } else if (bindAddress && *bindAddress) {
        if (addressFamily == AF_INET) BindV4(created.Get(), bindAddress, 0);
        if (addressFamily == AF_INET6) BindV6(created.Get(), bindAddress);
    }
    return created;
}

int SCKRAW::BindV4(SOCKET handle, const char* addressText, int port) {
    sockaddr_in local = {};
    local.sin_family = AF_INET;
    if (addressText && *addressText) local.sin_addr.s_addr = ResolveV4(addressText);
    if (port > 0) local.sin_port = htons(static_cast<u_short>(port));
    if (bind(handle, reinterpret_cast<const sockaddr*>(&local), sizeof local) != 0) {
        const int error = WSAGetLastError();
        DebugLogA("BIND error %x\n", static_cast<unsigned>(error));
        for (const BindError& known : kBindErrors) {
            if (known.code == error) DebugLogA("%s", known.line);
        }
    }
    return 0;
}

uint32_t SCKRAW::ResolveV4(const char* text) {
    if (IsDottedQuad(text)) return inet_addr(text);
    if (const hostent* host = gethostbyname(text)) {
        uint32_t address = INADDR_NONE;
        // An empty list, or addresses of another size, would be read past the end.
        if (host->h_addr_list[0] && host->h_length == sizeof address) {
            std::memcpy(&address, host->h_addr_list[0], sizeof address);
        }
        return address;
    }
    return inet_addr(text);
}

// Kept: four dots and nothing but digits exclude each other, so this is never true and all text
// goes to the resolver, which accepts dotted numbers too.
bool SCKRAW::IsDottedQuad(const char* text) {
    if (!text || !*text) return false;
    int dots = 0;
    bool onlyDigits = true;
    for (const char* c = text; *c; ++c) {
        if (*c == '.') ++dots;
        if (*c < '0' || *c > '9') onlyDigits = false;
    }
    return dots == 4 && onlyDigits;
}

int SCKRAW::SendTo(int addressFamily, const char* host, int port, const void* data, int length,
                   int timeoutMs) {
    if (!sock) sock = CreateSocket(SOCK_DGRAM, IPPROTO_UDP, addressFamily, timeoutMs, nullptr);
    return SendToSocket(sock, host, port, data, length);
}

int SCKRAW::SendToSocket(OwnedSocket& handle, const char* host, int port, const void* data,
                         int length) {
    addrinfo hints = {};
    hints.ai_family = family;
    hints.ai_socktype = SOCK_DGRAM;
    char service[16];
    wsprintfA(service, "%d", port);
    OwnedAddressList addresses;
    const int resolved = getaddrinfo(host, service, &hints, addresses.Receive());
    WSASetLastError(resolved);
    // Kept: callers take the positive code for a number of bytes and wait for an answer.
    if (resolved != 0) return resolved;

    const addrinfo& target = *addresses.Get();
    const int sent = sendto(handle.Get(), static_cast<const char*>(data), length, 0, target.ai_addr,
                            static_cast<int>(target.ai_addrlen));
    const int error = WSAGetLastError();
    if (sent == SOCKET_ERROR) {
        DebugLogA("sendto() failed - %d\n", error);
        // The owner gives up the handle too: closing the same number again might hit a socket that
        // another thread of the host has opened since.
        handle.Reset();
    }
    addresses.Reset();
    WSASetLastError(error);
    return sent;
}

int SCKRAW::RecvFromSocket(SOCKET handle, void* buffer, int size, char* fromAddress, int timeoutMs,
                           bool takesQueued) {
    int received = takesQueued ? ReceiveNow(handle, buffer, size, fromAddress) : SOCKET_ERROR;
    if (!takesQueued || (received == SOCKET_ERROR && IsNothingQueued(WSAGetLastError()))) {
        if (!WaitForDatagram(handle, timeoutMs)) {
            DebugLogA("RecvFrom - Timeout\n");
            lastError = SCKRAW_ERROR_TIMEOUT;
            return 0;
        }
        received = ReceiveNow(handle, buffer, size, fromAddress);
    }
    if (received != SOCKET_ERROR) return received;
    lastError = WSAGetLastError();
    DebugLogA("Receive Data failed - %d\n", static_cast<int>(lastError));
    return 0;
}

void SCKRAW::RaiseReceiveBuffer(SOCKET handle) {
    SetOption(handle, SOL_SOCKET, SO_RCVBUF, &kReceiveBufferBytes, sizeof kReceiveBufferBytes);
}

bool SCKRAW::StopBlocking(SOCKET handle) {
    u_long nonBlocking = 1;
    return ioctlsocket(handle, FIONBIO, &nonBlocking) == 0;
}

int SCKRAW::HasIPv6Address() {
    WSADATA data;
    // Kept: there is no matching clean-up, so each call leaks one start-up reference.
    if (WSAStartup(MAKEWORD(2, 2), &data) != 0) return 0;
    addrinfo hints = {};
    hints.ai_flags = AI_PASSIVE | AI_NUMERICHOST;
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    OwnedAddressList addresses;
    const int error = getaddrinfo(nullptr, "161", &hints, addresses.Receive());
    if (error != 0) {
        DebugLogA("ERROR: getaddrinfo failed with error %d\r\n", error);
        return 0;
    }
    int found = 0;
    for (const addrinfo* entry = addresses.Get(); entry; entry = entry->ai_next) {
        if (entry->ai_family == AF_INET6) found = 1;
    }
    return found;
}

}  // namespace vndiscover
