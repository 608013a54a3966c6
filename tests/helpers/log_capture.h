// Collects the lines that the code under test logs while the object exists.
#pragma once

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "support/debug_log.h"

namespace vndiscover {

// Lines have no time stamp, but their line end; characters other than ASCII in wide lines become
// '?'. On Windows this collects debugger output of every module of the process whose debug switch
// is on. One object at a time.
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

// Also turns on the debug switch of code that is linked into the test.
class UnitLog : public LogCapture {
  public:
    UnitLog() { g_debugSwitches.debug = 1; }
    ~UnitLog() { g_debugSwitches.debug = 0; }
};

}  // namespace vndiscover
