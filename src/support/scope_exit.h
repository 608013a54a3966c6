// Runs code on every exit from a scope.
#pragma once

#include <utility>

namespace vndiscover {

// Runs `work`, which must not throw, when the scope ends: const ScopeExit end([&] { ... });
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
