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

#include <csignal>
#include <ucontext.h>

namespace host {

struct pending_signal;
struct thread_state;

void install_signal_handlers();

// Gives the calling thread, to whose record signals are attached, the stack on which it takes them.
// It must not take any before.
void install_signal_stack(thread_state& thread);

// What the kernel is told to call.
extern "C" void signal_entry(int signal, siginfo_t* info, void* context);

// Reports a fault of application code that the application doesn't handle, calls the client's
// handler, and ends the process by the signal. The state is the thread's context.
[[noreturn]] void end_by_fault(thread_state& thread, const pending_signal& fault);

// Has the kernel keep a signal for the calling thread, where it is blocked.
void send_again(int signal, const siginfo_t& info);

}  // namespace host
