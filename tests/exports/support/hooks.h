// System calls of the module that tests stand in front of, one object of a kind at a time.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

#include "exports/support/module.h"

namespace vndiscover {

// The module's clock: the real one, which a test may move on, so that limits of a minute need no
// minute.
class FastClock {
  public:
    explicit FastClock(const Module& module) : patch_(module.Handle(), "GetTickCount", Moved) {
        offset_ = 0;
    }
    void Advance(DWORD milliseconds) { offset_ += milliseconds; }

  private:
    static DWORD WINAPI Moved() { return GetTickCount() + offset_; }

    static inline std::atomic<DWORD> offset_;
    ImportPatch patch_;
};

// The module's receive waits, in milliseconds. Short ones last a quarter of what the module asked
// for, so that a test with many sweeps does not take minutes: long enough for an answer to come by
// the relay on a machine that is busy with other tests.
class Waits {
  public:
    enum Length { kReal = 1, kShort = 4 };
    explicit Waits(const Module& module, Length length = kShort)
        : patch_(module.Handle(), "select", Select) {
        silent_.clear();
        shortenBy_ = length;
    }

    // Those that passed silently.
    std::vector<int> Silent() const {
        std::lock_guard<std::mutex> lock(mutex_);
        return silent_;
    }

  private:
    static int WSAAPI Select(int count, fd_set* readable, fd_set* writable, fd_set* failed,
                             const timeval* limit) {
        const int milliseconds = static_cast<int>(limit->tv_sec * 1000 + limit->tv_usec / 1000);
        const int shorter = milliseconds / shortenBy_;
        timeval wait = {shorter / 1000, shorter % 1000 * 1000};
        const int ready = select(count, readable, writable, failed, &wait);
        if (ready == 0) {
            std::lock_guard<std::mutex> lock(mutex_);
            silent_.push_back(milliseconds);
        }
        return ready;
    }

    static inline std::mutex mutex_;
    static inline std::vector<int> silent_;
    static inline int shortenBy_;
    ImportPatch patch_;
};

// Stands in front of recvfrom. Both functions run on the sweeping thread.
class Receives {
  public:
    // errorOf: gets the number of the call, from 1, and returns a WinSock error to report instead,
    // or 0. onDatagram: gets the number of datagrams so far.
    Receives(const Module& module, std::function<int(int)> errorOf,
             std::function<void(int)> onDatagram = nullptr)
        : patch_(module.Handle(), "recvfrom", Receive) {
        calls_ = datagrams_ = 0;
        errorOf_ = std::move(errorOf);
        onDatagram_ = std::move(onDatagram);
    }
    int Calls() const { return calls_; }

  private:
    static int WSAAPI Receive(SOCKET handle, char* buffer, int size, int flags, sockaddr* from,
                              int* fromLength) {
        ++calls_;
        if (const int error = errorOf_ ? errorOf_(calls_) : 0) {
            WSASetLastError(error);
            return SOCKET_ERROR;
        }
        const int received = recvfrom(handle, buffer, size, flags, from, fromLength);
        if (received >= 0 && onDatagram_) onDatagram_(++datagrams_);
        return received;
    }

    static inline std::function<int(int)> errorOf_;
    static inline std::function<void(int)> onDatagram_;
    static inline std::atomic<int> calls_;
    static inline std::atomic<int> datagrams_;
    ImportPatch patch_;
};

// Stands in front of sendto; errorOf as above.
class Sends {
  public:
    Sends(const Module& module, std::function<int(int)> errorOf)
        : patch_(module.Handle(), "sendto", Send) {
        calls_ = 0;
        errorOf_ = std::move(errorOf);
    }

  private:
    static int WSAAPI Send(SOCKET handle, const char* data, int length, int flags,
                           const sockaddr* to, int toLength) {
        if (const int error = errorOf_(++calls_)) {
            WSASetLastError(error);
            return SOCKET_ERROR;
        }
        return sendto(handle, data, length, flags, to, toLength);
    }

    static inline std::function<int(int)> errorOf_;
    static inline std::atomic<int> calls_;
    ImportPatch patch_;
};

}  // namespace vndiscover
