// New processes and new programs: fork, vfork and exec as the application's system calls ask for
// them.
//
// A forked child is this process once more, with the calling thread alone. A vforked one shares its
// memory with the parent, whose thread waits, and runs on that thread's record and stack in the
// meantime. A program that is executed starts under a new launcher with the same client.
#pragma once

#include <cstdint>

namespace host {

struct thread_state;

// clone without the flags of a thread. Returns the child's number, 0 in the child, or a negative
// error number; call_not_started if a signal is to be delivered first.
std::int64_t clone_process(thread_state& thread);

}  // namespace host
