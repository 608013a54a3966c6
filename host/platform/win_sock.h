#pragma once

#include <winsock2.h>

namespace vndiscover::host {

// For its lifetime, the functions of Windows Sockets can be used.
class WinSock {
  public:
    WinSock() {
        WSADATA data;
        isStarted_ = WSAStartup(MAKEWORD(2, 2), &data) == 0;
    }
    ~WinSock() {
        if (isStarted_) WSACleanup();
    }
    WinSock(const WinSock&) = delete;
    WinSock& operator=(const WinSock&) = delete;

  private:
    bool isStarted_;
};

}  // namespace vndiscover::host
