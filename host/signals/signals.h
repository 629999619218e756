// The one place where signals arrive. They are pending from then on, until the application can take
// them.
//
// A signal can interrupt the application's code, which runs with the application's TPIDR_EL0 and
// stack, or code of the client or the host. So the host's entry receives all signals, on a stack of
// its own from which it finds the thread's record. After a fault in translated code, the
// application's state is recovered at once. Any other signal stays pending until the thread is
// between two blocks, where host/signals/signal_delivery.h delivers it. The entry makes the thread
// leave the code cache soon. The client sets actions for faults with `sigaction`, as any program
// does. They are kept in a table, and the entry calls them.
#pragma once

#include <csignal>
#include <ucontext.h>

namespace host {

struct pending_signal;
struct thread_state;

void install_signal_handlers();

// Gives the calling thread the stack on which it receives signals. Its record must have its part of
// signals (attach_signals). No signal may arrive on the thread before this.
void install_signal_stack(thread_state& thread);

// The handler that the kernel calls.
extern "C" void signal_entry(int signal, siginfo_t* info, void* context);

// Reports a fault of the application that it does not handle, calls the client's handler, and ends
// the process by the signal. The application's state is in the thread's context.
[[noreturn]] void end_by_fault(thread_state& thread, const pending_signal& fault);

// Gives a signal back to the kernel, which keeps it until the calling thread unblocks it.
void send_again(int signal, const siginfo_t& info);

}  // namespace host
