// The application's system calls about signals. Each takes the call's arguments in x, and returns
// what the kernel would: a result, or a negative error number.
#pragma once

#include <cstdint>

namespace host {

struct thread_state;

std::int64_t set_signal_action(thread_state& thread, const std::uint64_t* x);    // rt_sigaction
std::int64_t change_signal_mask(thread_state& thread, const std::uint64_t* x);   // rt_sigprocmask
std::int64_t change_signal_stack(thread_state& thread, const std::uint64_t* x);  // sigaltstack
std::int64_t get_pending_signals(thread_state& thread, const std::uint64_t* x);  // rt_sigpending

// rt_sigtimedwait. Fault signals that somebody sent are pending in the host, not in the kernel.
std::int64_t wait_for_signal(thread_state& thread, const std::uint64_t* x);

// The calls that wait under a mask of their own: rt_sigsuspend, ppoll, pselect6, epoll_pwait,
// epoll_pwait2. The host's signals are taken out of that mask. Can return call_not_started
// (host/kernel/application_call.h).
std::int64_t wait_under_mask(thread_state& thread, const std::uint64_t* x);

}  // namespace host
