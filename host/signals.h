// Signals, as far as the host itself needs them.
//
// A fault may come from application code, which runs with the application's TPIDR_EL0 and on the
// application's stack, or from client and host code. So the host's own entry takes every fault
// first, on a stack of its own, and tells the two apart by the interrupted address before anything
// touches thread-local storage. The client's actions for these signals, given by `sigaction` as in
// any program, are kept in a table and called from there.
#pragma once

#include <csignal>
#include <cstdint>

namespace host {

struct thread_state;

// Sent by a thread that ends the process to those that are to stop. Nothing else on Linux uses it.
inline constexpr int stop_signal = SIGSTKFLT;

void install_signal_handlers();

// Gives the calling thread the stack on which signals are taken.
void install_signal_stack();

// A fault of application code that no processor raised: an instruction cannot be fetched from `pc`.
// Reports it, calls the client's handler, and ends the process by the signal.
[[noreturn]] void raise_fetch_fault(int signal, std::uint64_t pc);

// Gives a signal its default action, in the kernel.
void restore_default_action(int signal);

// Whether the host keeps this signal's action and mask bit to itself.
bool is_host_signal(int signal);

}  // namespace host
