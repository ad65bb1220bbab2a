#pragma once

#include <utility>

namespace marrowpress {

/// Runs an action when the scope is left, by whatever way.
///
/// The action must not throw.
template <class Action>
class [[nodiscard]] ScopeExit {
public:
    explicit ScopeExit(Action action) : action_(std::move(action)) {}
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;
    ~ScopeExit() { action_(); }

private:
    Action action_;
};

}  // namespace marrowpress
