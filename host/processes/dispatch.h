// The loop of a thread: find or make the translation of the next block, run it, and do what it left
// the cache for.
#pragma once

#include <cstdint>

#include "host/threads/thread.h"

namespace host {

enum class after_call : std::uint8_t { go_on, end_thread };

// Makes the system call that the thread's registers describe. Some calls start threads and
// processes, which run this loop. So the calls are above the loop, and the launcher gives it the
// handler.
using system_call_handler = after_call (*)(thread_state& thread);
void set_system_call_handler(system_call_handler handler);

// Runs the bound thread from thread_context::pc until it ends, because it calls exit or because
// another thread ends the process. Runs its thread events.
void run_thread(thread_state& thread);

// The same without the events, for a vforked child, which runs on its parent's thread.
void run_blocks(thread_state& thread);

}  // namespace host
