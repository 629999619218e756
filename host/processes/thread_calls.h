// The application's system calls that start and end threads, and that end the process.
#pragma once

#include <cstdint>

#include "host/processes/dispatch.h"
#include "host/threads/thread.h"

namespace host {

// clone with the flags of a thread: starts a host thread that runs the application's new thread.
// Returns its number or a negative error number.
std::int64_t clone_thread(thread_state& parent);

// Copies the application's registers.
void copy_registers(const thread_context& from, thread_context& to);

// exit: the thread leaves the dispatcher; `finish_thread` does the rest.
after_call exit_thread(thread_state& thread, int status);

// exit_group: stops the other threads, runs the remaining events, and exits.
after_call exit_process(thread_state& thread, int status);

// Call after run_thread: tells those who wait for the thread that it has ended, and ends the
// process if it was the last one. Does not return on the initial thread.
void finish_thread(thread_state& thread);

}  // namespace host
