// Hands the signals that wait on a thread to the application: between two blocks, with all of its
// state in the thread's context.
#pragma once

#include <cstdint>

namespace host {

struct thread_state;

// Delivers what waits and isn't blocked. Afterwards the context may be at the start of a handler,
// and the thread's mask is the application's again. Doesn't return where the default action of a
// signal ends the process.
void deliver_signals(thread_state& thread);

// An instruction cannot be fetched from the context's PC: as a fault that waits.
void raise_fetch_fault(thread_state& thread, int signal);

// rt_sigreturn: the context and the mask come from the frame at the context's SP.
void return_from_signal(thread_state& thread);

// At the end of a thread: blocks all signals, and passes on what has come for the process.
void stop_taking_signals(thread_state& thread);

// Blocks all signals and returns the mask as the application knows it, with the host's own signals
// that it has blocked. Until set_application_mask, no signal comes.
std::uint64_t block_signals(thread_state& thread);
void set_application_mask(thread_state& thread, std::uint64_t mask);

}  // namespace host
