// Which answers of a scan still hold. A device that is read again may have lost an alert or a
// supply since: what it no longer says must not be told.
#pragma once

#include <cstddef>
#include <vector>

#include "model/scan/scan.h"

namespace vndiscover::host {

// Those of the answers with these ascending indexes that no later one from the same address
// replaces. A later sweep replaces the answers to the same question; a later reading, the variables
// of each object that it read, or all if it is complete; and a later state replaces alerts and the
// panel's text.
std::vector<size_t> CurrentAnswers(const Scan& scan, const std::vector<size_t>& answers);

// Removes the others, and sweeps without answers before the last search. Returns for each former
// index the answer that it is now, or that has replaced it.
std::vector<size_t> RemoveFormerAnswers(Scan& scan);

}  // namespace vndiscover::host
