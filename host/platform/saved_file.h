// Files that are read whole and replaced whole. Paths are UTF-8.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "model/scan/scan.h"

namespace vndiscover::host {

// For calls of the system: with the prefix that lifts its limit of 260 characters, if needed.
std::wstring SystemPath(const std::string& path);

// UTF-16 with a byte order mark becomes UTF-8, since some editors and shells write it. Empty, with
// the reason in `problem`, if the file cannot be read or has more than `maxSize` bytes.
std::optional<std::string> ReadFileText(const std::string& path, size_t maxSize,
                                        std::string& problem);

// The scan in a file. Empty, with the reason in `problem`, if the file cannot be read or is no
// scan; then `isBroken` says that it could be read.
std::optional<Scan> LoadScan(const std::string& path, bool& isBroken, std::string& problem);

// Also true if the system does not say: such a file must not count as new.
bool FileExists(const std::string& path);

// Whether both name the same place, in any letter case. Links are not followed.
bool IsSamePath(const std::string& one, const std::string& other);

// Whether ReplaceFileText can succeed; if not, `problem` has the reason. Changes nothing.
bool CanReplaceFile(const std::string& path, std::string& problem);

// An existing file is not touched until the new one is complete. Returns false, with the reason in
// `problem`, if it is not replaced. If other programs have a file open, waits up to two seconds.
bool ReplaceFileText(const std::string& path, const std::string& text, std::string& problem);

}  // namespace vndiscover::host
