// The application's system calls on signals. Each returns the kernel's result or negative error
// number, for the arguments in x.
#pragma once

#include <cstdint>

namespace host {

struct thread_state;

std::int64_t set_signal_action(thread_state& thread, const std::uint64_t* x);    // rt_sigaction
std::int64_t change_signal_mask(thread_state& thread, const std::uint64_t* x);   // rt_sigprocmask
std::int64_t change_signal_stack(thread_state& thread, const std::uint64_t* x);  // sigaltstack
std::int64_t get_pending_signals(thread_state& thread, const std::uint64_t* x);  // rt_sigpending

// rt_sigtimedwait. Signals of faults that were sent wait with the host and not with the kernel.
std::int64_t wait_for_signal(thread_state& thread, const std::uint64_t* x);

// Calls that wait under a mask of their own, in which the host's signals must not be:
// rt_sigsuspend, ppoll, pselect6, epoll_pwait, epoll_pwait2. call_not_started as in
// host/kernel/application_call.h.
std::int64_t wait_under_mask(thread_state& thread, const std::uint64_t* x);

}  // namespace host
