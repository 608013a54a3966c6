// Another process of VnBrowser that asks devices.
#pragma once

#include "device/ask_process.h"
#include "device/device.h"
#include "window/work/engine.h"

namespace vndiscover::host {

// By which the process is started; no user gives it.
constexpr char kReaderOption[] = "--ask-for-another-process";

Device DeviceOf(const AskTarget& target);

class ReaderProcess : public Reader {
  public:
    // Passwords go through a pipe that no other process has.
    ReaderProcess(const std::vector<AskTarget>& logins, HANDLE job);
    bool IsAlive() const override { return process_.IsAlive(); }
    Answer GetNext(size_t login, const std::string& address, const Oid& oid) override {
        return process_.GetNext(login, address, oid);
    }
    void End() override { process_.End(); }

  private:
    AskProcess process_;
};

// The other process's part: answers requests until there are no more.
void ServeReader();

}  // namespace vndiscover::host
