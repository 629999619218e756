// The events that a client has registered for.
#pragma once

#include <cstdint>

struct _instr_list_t;

namespace host {

struct thread_state;

void run_thread_init_events(thread_state& thread);
void run_thread_exit_events(thread_state& thread);
void run_exit_events();

// The application-to-application block events, for the block at `pc`.
void run_block_events(thread_state& thread, std::uint64_t pc, _instr_list_t& list);

}  // namespace host
