#pragma once

#include "window/work/engine.h"

namespace vndiscover::host {

std::unique_ptr<Engine> MakeModuleEngine();

// The calls for a step or a request, without secrets.
// `probe` is for WS-Discovery only.
Call CallOf(const SweepStep& step, const std::string& probe);
Call CallOf(const AskTarget& target, const Oid& oid);
Call PingOf(const std::string& address);

}  // namespace vndiscover::host
