// The life of threads and the end of the process, as the application's system calls ask for it.
#pragma once

#include <cstdint>

#include "host/processes/dispatch.h"
#include "host/threads/thread.h"

namespace host {

// clone with the flags of a thread: makes a host thread that runs the application's new one.
// Returns the new thread's number or a negative error number.
std::int64_t clone_thread(thread_state& parent);

// The application's registers.
void copy_registers(const thread_context& from, thread_context& to);

// exit: the thread leaves the dispatcher; `finish_thread` does the rest.
after_call exit_thread(thread_state& thread, int status);

// exit_group: stops the other threads, runs the remaining events, and exits.
after_call exit_process(thread_state& thread, int status);

// After run_thread on a thread: tells whoever waits for its end, and ends the process if it was
// the last. The initial thread does not return from here.
void finish_thread(thread_state& thread);

}  // namespace host
