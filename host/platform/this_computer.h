// The facts about this computer, read from the system.
#pragma once

#include "model/computer/computer.h"

namespace vndiscover::host {

// For any thread. A call takes some milliseconds, Firewall perhaps a second.
class ThisComputer : public Computer {
  public:
    AdapterList IPv4() const override;
    AdapterList IPv6() const override;
    Route RouteTo(const char* ipv4Address) const override;
    FirewallState Firewall() const override;
    LogSwitches Log() const override;
    std::string ProgramPath() const override;
};

}  // namespace vndiscover::host
