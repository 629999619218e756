// The events that a client has registered for.
#pragma once

#include <cstdint>

struct _instr_list_t;

namespace host {

struct thread_state;

void run_thread_init_events(thread_state& thread);
void run_thread_exit_events(thread_state& thread);
void run_exit_events();

// The kernel transfer events. Delivery: a handler of the application is about to run, and its frame
// is at the context's SP. Return: the handler returns through the frame at `frame`.
void run_signal_delivery_events(thread_state& thread, int signal);
void run_signal_return_events(thread_state& thread, std::uint64_t frame);

// The restore-state events: the instruction at the context's PC, in the block at `block`, has
// faulted.
void run_restore_state_events(thread_state& thread, std::uint64_t block);

// The application-to-application block events, for the block at `pc`.
void run_block_events(thread_state& thread, std::uint64_t pc, _instr_list_t& list);

}  // namespace host
