// Processes that ask devices side by side: the module allows one directed request a process.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "device/device.h"
#include "platform/owned.h"

namespace vndiscover::host {

// The only argument of such a process, which must call ServeReader. No user gives it.
constexpr char kReaderOption[] = "--ask-for-another-process";

// Asks devices, each by one of several logins.
class Reader {
  public:
    virtual ~Reader() = default;
    // Returns false if it could not be started, or has ended. Then it asks nothing.
    virtual bool IsAlive() const { return true; }
    virtual Answer GetNext(size_t login, const std::string& address, const Oid& oid) = 0;
    // Ends it, and the request that is being answered. For any thread.
    virtual void End() {}
};

// In this process.
class OwnReader : public Reader {
  public:
    explicit OwnReader(std::vector<Login> logins) : logins_(std::move(logins)) {}
    Answer GetNext(size_t login, const std::string& address, const Oid& oid) override;

  private:
    std::vector<Login> logins_;
    std::optional<Device> device_;  // asked last; it may know by now how it is reached
    std::pair<size_t, std::string> last_;
};

class ReaderProcess : public Reader {
  public:
    // `job`, or null, ends the process with this one.
    ReaderProcess(const std::vector<Login>& logins, HANDLE job);
    ~ReaderProcess() override { End(); }
    bool IsAlive() const override { return isAlive_; }
    void End() final;
    Answer GetNext(size_t login, const std::string& address, const Oid& oid) override;

  private:
    OwnedHandle process_, toProcess_, fromProcess_;
    bool isAlive_ = false;
};

// A job that ends its processes with this one, however that ends.
OwnedHandle EndingJob();

// The other process's part: answers requests from standard input until it ends.
void ServeReader();

}  // namespace vndiscover::host
