// The report that is printed and sent back: rows of "expected" and "seen". It must not identify the
// computer: it contains no name, no address and no text of the user's.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace check {

class Report {
  public:
    void Section(const char* title);
    // What comes from now on in this section has seconds of its own.
    void EndPart(const std::string& part);
    // As expected if the two texts are equal.
    void Add(const std::string& name, const std::string& expected, const std::string& seen);
    void NotSeen(const std::string& name, const std::string& expected, const std::string& reason);

    // The whole report: the system, the rows as tables, the counts, the seconds of each section.
    std::string Text(const std::string& system);
    int Different() const { return different_; }

  private:
    void Row(const std::string& name, const std::string& expected, const std::string& seen,
             const char* verdict);

    std::string rows_, title_, seconds_;
    std::chrono::steady_clock::time_point started_;
    int asExpected_ = 0, different_ = 0, notSeen_ = 0;
};

}  // namespace check
