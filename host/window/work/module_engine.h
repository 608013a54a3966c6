#pragma once

#include "window/work/engine.h"

namespace vndiscover::host {

std::unique_ptr<Engine> MakeModuleEngine();

// The call that a step or a request makes, without secrets. `probe`: for WS-Discovery.
Call CallOf(const SweepStep& step, const std::string& probe);
Call CallOf(const AskTarget& target, const Oid& oid);
Call PingOf(const std::string& address);

}  // namespace vndiscover::host
