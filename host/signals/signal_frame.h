// The record that is on the application's stack between a signal and rt_sigreturn. It has the
// kernel's layout, because the application's handlers, unwinders and context switches read it.
#pragma once

#include <cstdint>

namespace host {

struct kernel_action;
struct pending_signal;
struct thread_state;

// The kernel's SS_AUTODISARM, which C libraries do not define: while a handler runs, the thread has
// no alternate stack.
inline constexpr int stack_autodisarm = static_cast<int>(0x80000000);

// Puts a frame on the thread's stack, or on its alternate stack, and sets the context to the start
// of the handler. rt_sigreturn will restore `mask`. Returns false, with nothing changed, if the
// frame does not fit.
bool push_signal_frame(thread_state& thread, pending_signal arrived, const kernel_action& action,
                       std::uint64_t mask);

enum class frame_state : std::uint8_t {
  good,
  missing,  // nothing has changed
  bad,      // its records are not what the kernel accepts; all but the vectors has been restored
};

// Restores the context from the frame at its SP, and returns the frame's mask in `mask`.
frame_state pop_signal_frame(thread_state& thread, std::uint64_t& mask);

// SS_ONSTACK if the context's SP is on the alternate stack, SS_DISABLE if there is no such stack,
// otherwise 0.
int signal_stack_status(const thread_state& thread);

}  // namespace host
