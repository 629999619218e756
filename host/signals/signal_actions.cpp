#include "host/signals/signal_actions.h"

#include <csignal>

#include "host/kernel/address.h"
#include "host/signals/host_signals.h"
#include "host/signals/signals.h"

namespace host {
namespace {

constexpr std::uint64_t all_signals = ~std::uint64_t{0};

// The flags that change what the kernel does before the handler runs, or without it. The host
// applies SA_NODEFER, SA_RESETHAND and SA_ONSTACK itself when it delivers the signal.
constexpr std::uint64_t kernel_flags = SA_NOCLDSTOP | SA_NOCLDWAIT | SA_RESTART;

// The mask blocks all signals, so that a thread takes no second signal before the host has looked
// at the first.
kernel_action for_kernel(const kernel_action& action) {
  if (!action.has_handler()) return action;
  return {.handler = address_of(&signal_entry),
          .flags = SA_SIGINFO | SA_ONSTACK | (action.flags & kernel_flags),
          .restorer = 0,
          .mask = all_signals};
}

}  // namespace

signal_actions::signal_actions() {
  for (int signal = 1; signal <= highest_signal; ++signal) {
    actions_[static_cast<std::size_t>(signal)] = action_in_kernel(signal);
  }
}

signal_actions::signal_actions(const signal_actions& other) {
  const std::lock_guard lock(other.mutex_);
  actions_ = other.actions_;
}

kernel_action signal_actions::get(int signal) const {
  const std::lock_guard lock(mutex_);
  return actions_[static_cast<std::size_t>(signal)];
}

std::int64_t signal_actions::set(int signal, const kernel_action& action, kernel_action& previous) {
  const std::lock_guard lock(mutex_);
  kernel_action& kept = actions_[static_cast<std::size_t>(signal)];
  if (!is_host_signal(signal)) {
    const std::int64_t error = set_action_in_kernel(signal, for_kernel(action));
    if (error < 0) return error;
  }
  previous = kept;
  kept = action;
  kept.mask &= ~(signal_bit(SIGKILL) | signal_bit(SIGSTOP));
  return 0;
}

kernel_action signal_actions::take(int signal) {
  const std::lock_guard lock(mutex_);
  kernel_action& kept = actions_[static_cast<std::size_t>(signal)];
  const kernel_action taken = kept;
  if (taken.has_handler() && (taken.flags & SA_RESETHAND) != 0) {
    kept.handler = 0;
    if (!is_host_signal(signal)) set_action_in_kernel(signal, kept);
  }
  return taken;
}

void signal_actions::tell_kernel_of_ignored() const {
  const std::lock_guard lock(mutex_);
  for (int signal = 1; signal <= highest_signal; ++signal) {
    const kernel_action& kept = actions_[static_cast<std::size_t>(signal)];
    if (is_host_signal(signal) && kept.is_ignored()) set_action_in_kernel(signal, kept);
  }
}

}  // namespace host
