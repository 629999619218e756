// The signals' part of a thread's record.
#pragma once

#include <array>
#include <csignal>
#include <cstdint>

#include "host/signals/host_signals.h"

namespace host {

class signal_actions;
struct thread_state;

// A signal that the host has received and not yet delivered to the application.
struct pending_signal {
  int signal = 0;  // 0: none
  siginfo_t info{};
  std::uint64_t mask = 0;  // the thread's mask when it arrived
  std::uint64_t fault_address = 0;
  std::uint64_t syndrome = 0;  // ESR_EL1 of a fault, 0 if the kernel does not give it
  std::uint64_t block = 0;     // of a fault: the application address of the block, or 0
};

// All pending signals of a thread. There is room for one ordinary signal, because all signals are
// blocked while one is pending. The host's own signals are never really blocked. As with every
// standard signal, only one of each kind is pending at a time.
struct pending_signals {
  pending_signal fault;
  pending_signal other;
  std::array<pending_signal, fault_signals.size()> sent_faults;  // by kill and the like
};

struct thread_signals {
  signal_actions* actions = nullptr;  // of the thread's process
  pending_signals pending;
  pending_signal client_fault;      // the last fault of the client's code
  std::uint64_t last_syndrome = 0;  // that a frame told the application
  std::uint64_t last_fault_address = 0;
  std::uint64_t blocked_host_signals = 0;  // by the application; the kernel does not block them
  stack_t alternate_stack{};               // that the application asked for
  void* entry_stack = nullptr;             // the host's own; kept when the record is used again
};

// Gives a thread's record its part of signals, in the state of a new thread. A record that is
// reused already has the part; it keeps the entry's stack.
void attach_signals(thread_state& thread, signal_actions& actions);

}  // namespace host
