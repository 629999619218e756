// Robust mutexes. A thread registers the list of those that it holds with the kernel, which marks
// them when the thread ends. This must happen before anybody learns that the application's thread
// has ended. The host's own thread ends later than that, which would be too late, so the host marks
// the mutexes itself. When the whole process ends, the kernel does it.
#pragma once

#include <cstdint>

namespace host {

struct thread_state;

// set_robust_list: the result, or a negative error number.
std::int64_t set_robust_list(thread_state& thread, const std::uint64_t* x);

// Marks the mutexes that the ending thread holds, wakes one waiter of each, and withdraws the list
// from the kernel.
void leave_robust_mutexes(thread_state& thread);

}  // namespace host
