// The loop of a thread: find or make the translation of the next block, run it, and see to
// whatever it left the cache for.
#pragma once

#include <cstdint>

#include "host/threads/thread.h"

namespace host {

enum class after_call : std::uint8_t { go_on, end_thread };

// Carries out the call that the thread's registers describe. The calls that start threads and
// processes run this loop themselves, so they are above it, and the launcher hands them down.
using system_call_handler = after_call (*)(thread_state& thread);
void set_system_call_handler(system_call_handler handler);

// Runs the bound thread from thread_context::pc until it ends: by its exit system call, or because
// another thread ends the process. Its thread events are run.
void run_thread(thread_state& thread);

// The same without the events: for a vforked child, whose thread is its parent's.
void run_blocks(thread_state& thread);

}  // namespace host
