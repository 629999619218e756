// Robust mutexes. A thread's list of those that it holds is registered with the kernel, which marks
// them at the thread's end. An application thread has to be gone before anybody is told of its end,
// and the kernel's moment comes after that, when the host's thread ends; so the host does it itself
// then. Where the whole process ends it is the kernel's doing.
#pragma once

#include <cstdint>

namespace host {

struct thread_state;

// set_robust_list: the result, or a negative error number.
std::int64_t set_robust_list(thread_state& thread, const std::uint64_t* x);

// Marks the mutexes that the ending thread holds, wakes a waiter of each, and takes the list from
// the kernel.
void leave_robust_mutexes(thread_state& thread);

}  // namespace host
