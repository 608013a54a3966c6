#include "check/report.h"

#include <cstdio>

namespace check {

void Report::EndPart(const std::string& part) {
    using std::chrono::duration_cast;
    const auto now = std::chrono::steady_clock::now();
    const auto took = duration_cast<std::chrono::milliseconds>(now - started_).count();
    if (!part.empty()) {
        seconds_ += (seconds_.empty() ? "" : ", ") + part + " " + std::to_string(took / 1000) +
                    "." + std::to_string(took / 100 % 10);
    }
    started_ = now;
}

void Report::Section(const char* title) {
    EndPart(title_);
    title_ = title;
    rows_ += std::string("\n## ") + title + "\n\n| | expected | seen | |\n|---|---|---|---|\n";
    std::printf("\n%s\n", title);
}

void Report::Add(const std::string& name, const std::string& expected, const std::string& seen) {
    const bool same = expected == seen;
    ++(same ? asExpected_ : different_);
    Row(name, expected, seen, same ? "ok" : "DIFFERENT");
}

void Report::NotSeen(const std::string& name, const std::string& expected,
                     const std::string& reason) {
    ++notSeen_;
    Row(name, expected, "not seen: " + reason, "");
}

void Report::Row(const std::string& name, const std::string& expected, const std::string& seen,
                 const char* verdict) {
    rows_ += "| " + name + " | " + expected + " | " + seen + " | " + verdict + " |\n";
    std::printf("  %-10s %s: %s\n", verdict, name.c_str(), seen.c_str());
    std::fflush(stdout);  // if a row hangs, it is the one after the last one shown
}

std::string Report::Text(const std::string& system) {
    EndPart(title_);
    char counts[128];
    std::snprintf(counts, sizeof counts, "\n%d as expected, %d different, %d not seen\n",
                  asExpected_, different_, notSeen_);
    return "# windows_check\n\n" + system + "\n" + rows_ + counts + "\nSeconds: " + seconds_ + "\n";
}

}  // namespace check
