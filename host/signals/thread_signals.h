// What the host keeps of signals for each thread.
#pragma once

#include <array>
#include <csignal>
#include <cstdint>

#include "host/signals/host_signals.h"

namespace host {

class signal_actions;
struct thread_state;

// A signal that a thread has taken and the application has not.
struct pending_signal {
  int signal = 0;  // 0: none
  siginfo_t info{};
  std::uint64_t mask = 0;  // the thread's mask when it came
  std::uint64_t fault_address = 0;
  std::uint64_t syndrome = 0;  // ESR_EL1 of a fault, 0 if the kernel doesn't tell
};

// All that waits on a thread. With one other signal waiting all are blocked, so there is one of
// these; the host's own are never blocked really, but as with every standard signal only one of
// each waits.
struct pending_signals {
  pending_signal fault;
  pending_signal other;
  std::array<pending_signal, fault_signals.size()> sent_faults;  // by kill and kin
};

struct thread_signals {
  signal_actions* actions = nullptr;  // of the thread's process
  pending_signals pending;
  std::uint64_t blocked_host_signals = 0;  // by the application; the kernel does not block them
  stack_t alternate_stack{};               // that the application asked for
  void* entry_stack = nullptr;             // the host's own; kept when the record is used again
};

// Gives a thread's record its part of signals as it is at the thread's start. A record that is used
// again keeps the part that it had.
void attach_signals(thread_state& thread, signal_actions& actions);

}  // namespace host
