// The lines that code under test writes to its log, collected while the object lives.
#pragma once

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

namespace vndiscover {

// Lines come without their time stamp but with their line end, wide ones as UTF-8. On Windows it
// sees what goes to the debugger, from any module of the process whose debug switch is on. One at a
// time.
class LogCapture {
  public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<std::string> Lines() const {
        std::lock_guard<std::mutex> lock(mutex_);
        return lines_;
    }
    bool Has(const std::string& line) const {
        const std::vector<std::string> lines = Lines();
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }
    void Clear() {
        std::lock_guard<std::mutex> lock(mutex_);
        lines_.clear();
    }

    void Add(std::string line);

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
    void* registration_;
};

}  // namespace vndiscover
