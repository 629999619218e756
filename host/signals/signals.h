// The one place where signals arrive, and how they wait for a point at which the application can
// take them.
//
// A signal may interrupt application code, which runs with the application's TPIDR_EL0 and stack,
// or code of the client or the host. So the host's entry takes all of them, on a stack of its own
// that knows its thread. A fault of application code gives the application's state at once. Any
// other signal waits until the thread is between two blocks, where host/signals/signal_delivery.h
// hands it to the application; the entry sees to it that the thread gets there soon. The client's
// actions for faults, given by `sigaction` as in any program, are kept in a table and called from
// here.
#pragma once

#include <array>
#include <csignal>
#include <cstdint>
#include <ucontext.h>

namespace host {

struct thread_state;

// Sent by one thread to another to have its attention: the process ends, or code has changed.
// Nothing else on Linux uses it.
inline constexpr int stop_signal = SIGSTKFLT;

inline constexpr std::array fault_signals = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP};

bool is_fault_signal(int signal);

// Whether the host keeps this signal's action and mask bit to itself: faults and stop_signal.
bool is_host_signal(int signal);
std::uint64_t host_signal_mask();

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

void install_signal_handlers();

// Gives the bound thread the stack on which signals are taken; it must not take any before.
void install_signal_stack(thread_state& thread);

// What the kernel is told to call.
extern "C" void signal_entry(int signal, siginfo_t* info, void* context);

// Reports a fault of application code that the application doesn't handle, calls the client's
// handler, and ends the process by the signal. The state is the thread's context.
[[noreturn]] void end_by_fault(thread_state& thread, const pending_signal& fault);

// Has the kernel keep a signal for the calling thread, where it is blocked.
void send_again(int signal, const siginfo_t& info);

// Gives a signal its default action, in the kernel.
void restore_default_action(int signal);

}  // namespace host
