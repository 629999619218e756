// The application's signal actions: one table for each process, as in the kernel.
//
// The host passes SIG_DFL and SIG_IGN on to the kernel, which then handles stops, ignored signals
// and the inheritance over exec by itself. In place of a handler the kernel gets the host's entry.
// The kernel's actions for the host's own signals (host/signals/host_signals.h) never change,
// whatever the application asks for.
#pragma once

#include <array>
#include <cstdint>
#include <mutex>

#include "host/kernel/fork_lock.h"
#include "host/kernel/kernel_action.h"

namespace host {

class signal_actions {
 public:
  // Starts with the actions that the process inherited.
  signal_actions();
  signal_actions(const signal_actions& other);
  signal_actions& operator=(const signal_actions&) = delete;

  [[nodiscard]] kernel_action get(int signal) const;

  // Sets the action and stores the previous one. Returns 0, or the kernel's negative error number.
  std::int64_t set(int signal, const kernel_action& action, kernel_action& previous);

  // The action for a signal that is being delivered. Applies SA_RESETHAND.
  kernel_action take(int signal);

  // Call before exec: tells the kernel which of the host's own signals the application ignores, as
  // the new program inherits that.
  void tell_kernel_of_ignored() const;

 private:
  mutable fork_safe_mutex mutex_;
  std::array<kernel_action, highest_signal + 1> actions_{};
};

}  // namespace host
