// What must happen however a scope is left.
#pragma once

#include <utility>

namespace vndiscover {

// Runs `work`, which must not throw, at the end of the scope: const ScopeExit end([&] { ... });
template <class Work>
class ScopeExit {
  public:
    explicit ScopeExit(Work work) : work_(std::move(work)) {}
    ~ScopeExit() { work_(); }
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;

  private:
    Work work_;
};

}  // namespace vndiscover
