// The lines that code under test writes to its log, collected while the object lives.
#pragma once

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "support/debug_log.h"

namespace vndiscover {

// Lines come without their time stamp but with their line end; what is not ASCII in wide ones is
// '?'. On Windows it sees what goes to the debugger, from any module of the process whose debug
// switch is on. One at a time.
class LogCapture {
  public:
    LogCapture();
    ~LogCapture();

    std::vector<std::string> Lines() const {
        std::lock_guard<std::mutex> lock(mutex_);
        return lines_;
    }
    std::string Text() const {
        std::string text;
        for (const std::string& line : Lines()) text += line;
        return text;
    }
    bool Has(const std::string& line) const {
        const std::vector<std::string> lines = Lines();
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }
    void Clear() {
        std::lock_guard<std::mutex> lock(mutex_);
        lines_.clear();
    }
    void Add(const std::string& line) {
        std::lock_guard<std::mutex> lock(mutex_);
        lines_.push_back(line);
    }

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
};

// Also turns the debug switch on, for code that is linked into the test itself.
class UnitLog : public LogCapture {
  public:
    UnitLog() { g_debugSwitches.debug = 1; }
    ~UnitLog() { g_debugSwitches.debug = 0; }
};

}  // namespace vndiscover
