// New processes: the application's fork and vfork.
//
// A forked child is a copy of this process with the calling thread alone. A vforked child shares
// the memory of its parent, whose thread waits. Meanwhile the child uses that thread's record and
// stack.
#pragma once

#include <cstdint>

namespace host {

struct thread_state;

// clone without the flags of a thread. Returns the child's number, 0 in the child, a negative error
// number, or call_not_started if a signal is to be delivered first.
std::int64_t clone_process(thread_state& thread);

}  // namespace host
