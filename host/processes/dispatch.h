// The loop of a thread: find or make the translation of the next block, run it, and see to
// whatever it left the cache for.
#pragma once

#include "host/threads/thread.h"

namespace host {

// Runs the bound thread from thread_context::pc until it ends: by its exit system call, or because
// another thread ends the process. Its thread events are run.
void run_thread(thread_state& thread);

// The same without the events: for a vforked child, whose thread is its parent's.
void run_blocks(thread_state& thread);

}  // namespace host
