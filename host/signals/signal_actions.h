// The application's signal actions: one table for a process, as the kernel has it.
//
// The kernel itself is told of SIG_DFL and SIG_IGN as they are, so that stops, ignored signals and
// what exec inherits are its own business. In place of a handler it gets the host's entry. The
// actions of the host's own signals (host/signals/host_signals.h) stay the host's whatever the
// application asks.
#pragma once

#include <array>
#include <cstdint>
#include <mutex>

#include "host/kernel/fork_lock.h"
#include "host/kernel/kernel_action.h"

namespace host {

class signal_actions {
 public:
  // What the process inherited.
  signal_actions();
  signal_actions(const signal_actions& other);
  signal_actions& operator=(const signal_actions&) = delete;

  [[nodiscard]] kernel_action get(int signal) const;

  // Sets the action and returns the one before. The kernel's error number, negative, where it
  // refuses.
  std::int64_t set(int signal, const kernel_action& action, kernel_action& previous);

  // The action for a signal that is now delivered. SA_RESETHAND takes effect.
  kernel_action take(int signal);

  // Before exec: actions that the kernel was not told of and that the new program inherits.
  void tell_kernel_of_ignored() const;

 private:
  mutable fork_safe_mutex mutex_;
  std::array<kernel_action, highest_signal + 1> actions_{};
};

}  // namespace host
