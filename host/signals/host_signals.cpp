#include "host/signals/host_signals.h"

#include <algorithm>

#include "host/kernel/kernel_action.h"
#include "host/threads/thread.h"

namespace host {

bool is_fault_signal(int signal) { return std::ranges::count(fault_signals, signal) != 0; }

bool is_host_signal(int signal) { return is_fault_signal(signal) || signal == stop_signal; }

std::uint64_t host_signal_mask() {
  std::uint64_t mask = signal_bit(stop_signal);
  for (const int signal : fault_signals) mask |= signal_bit(signal);
  return mask;
}

}  // namespace host
