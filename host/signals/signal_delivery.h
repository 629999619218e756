// Delivers a thread's pending signals to the application. This happens between two blocks, when all
// of the application's state is in the thread's context.
#pragma once

#include <cstdint>

namespace host {

struct thread_state;

// Delivers the pending signals that are not blocked. Afterwards the context may be at the start of
// a handler, and the thread has the application's mask again. Does not return if the default action
// of a signal ends the process.
void deliver_signals(thread_state& thread);

// Makes a fault pending because no instruction can be fetched from the context's PC.
void raise_fetch_fault(thread_state& thread, int signal);

// rt_sigreturn: restores the context and the mask from the frame at the context's SP.
void return_from_signal(thread_state& thread);

// Call at the end of a thread: blocks all signals, and sends a pending one that was meant for the
// process to the process again.
void stop_taking_signals(thread_state& thread);

// Blocks all signals until set_application_mask. Returns the application's mask, which includes the
// host's own signals if the application has blocked them.
std::uint64_t block_signals(thread_state& thread);
void set_application_mask(thread_state& thread, std::uint64_t mask);

}  // namespace host
