#include "exports/support/hooks.h"

#include <atomic>
#include <mutex>

namespace vndiscover {
namespace {

// Long enough for an answer to come by the relay on a machine that is busy with other tests.
constexpr int kShortenBy = 4;

std::atomic<DWORD> g_clockOffset;
std::mutex g_mutex;
std::vector<int> g_silentWaits;
int g_shortenBy;
std::function<int(int)> g_receiveError;
std::function<void(int)> g_onDatagram;
std::function<int(int)> g_sendError;
std::atomic<int> g_receives;
std::atomic<int> g_datagrams;
std::atomic<int> g_sends;

DWORD WINAPI MovedTickCount() { return GetTickCount() + g_clockOffset; }

int WSAAPI RecordedSelect(int count, fd_set* readable, fd_set* writable, fd_set* failed,
                          const timeval* limit) {
    const int milliseconds = static_cast<int>(limit->tv_sec * 1000 + limit->tv_usec / 1000);
    const int shorter = milliseconds / g_shortenBy;
    timeval wait = {shorter / 1000, shorter % 1000 * 1000};
    const int ready = select(count, readable, writable, failed, &wait);
    if (ready == 0) {
        std::lock_guard<std::mutex> lock(g_mutex);
        g_silentWaits.push_back(milliseconds);
    }
    return ready;
}

int WSAAPI WatchedReceive(SOCKET handle, char* buffer, int size, int flags, sockaddr* from,
                          int* fromLength) {
    ++g_receives;
    if (const int error = g_receiveError ? g_receiveError(g_receives) : 0) {
        WSASetLastError(error);
        return SOCKET_ERROR;
    }
    const int received = recvfrom(handle, buffer, size, flags, from, fromLength);
    if (received >= 0 && g_onDatagram) g_onDatagram(++g_datagrams);
    return received;
}

int WSAAPI WatchedSend(SOCKET handle, const char* data, int length, int flags, const sockaddr* to,
                       int toLength) {
    if (const int error = g_sendError(++g_sends)) {
        WSASetLastError(error);
        return SOCKET_ERROR;
    }
    return sendto(handle, data, length, flags, to, toLength);
}

}  // namespace

FastClock::FastClock(const Module& module)
    : patch_(module.Handle(), "GetTickCount", MovedTickCount) {
    g_clockOffset = 0;
}

void FastClock::Advance(DWORD milliseconds) { g_clockOffset += milliseconds; }

Waits::Waits(const Module& module, Length length)
    : patch_(module.Handle(), "select", RecordedSelect) {
    g_silentWaits.clear();
    g_shortenBy = length == kShort ? kShortenBy : 1;
}

std::vector<int> Waits::Silent() const {
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_silentWaits;
}

Receives::Receives(const Module& module, std::function<int(int)> errorOf,
                   std::function<void(int)> onDatagram)
    : patch_(module.Handle(), "recvfrom", WatchedReceive) {
    g_receives = g_datagrams = 0;
    g_receiveError = std::move(errorOf);
    g_onDatagram = std::move(onDatagram);
}

int Receives::Calls() const { return g_receives; }

Sends::Sends(const Module& module, std::function<int(int)> errorOf)
    : patch_(module.Handle(), "sendto", WatchedSend) {
    g_sends = 0;
    g_sendError = std::move(errorOf);
}

}  // namespace vndiscover
