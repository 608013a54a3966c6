// The engine's calls for a step or a request, without secrets.
#pragma once

#include <string>

#include "model/asking/call_text.h"
#include "window/work/engine.h"

namespace vndiscover::host {

// `probe` is for WS-Discovery only.
Call CallOf(const SweepStep& step, const std::string& probe);
// A get-next request.
Call CallOf(const AskTarget& target, const Oid& oid);
Call PingOf(const std::string& address);

}  // namespace vndiscover::host
