// What is printed and sent back: rows of "expected" and "seen", and nothing that tells whose
// computer it was: no name, no address, no text of the user's.
#pragma once

#include <string>
#include <vector>

namespace check {

class Report {
  public:
    void Section(const char* title);
    // As expected where the two are the same text.
    void Add(const std::string& name, const std::string& expected, const std::string& seen);
    void NotSeen(const std::string& name, const std::string& expected, const std::string& reason);

    // The whole as text: the system, the rows as tables, the counts.
    std::string Text(const std::string& system) const;
    int Different() const { return different_; }

  private:
    void Row(const std::string& name, const std::string& expected, const std::string& seen,
             const char* verdict);

    std::string rows_;
    int asExpected_ = 0, different_ = 0, notSeen_ = 0;
};

}  // namespace check
