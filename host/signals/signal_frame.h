// The record on the application's stack between a signal and rt_sigreturn: the kernel's own, so
// that handlers, unwinders and context switches of the application find what they know.
#pragma once

#include <cstdint>

namespace host {

struct kernel_action;
struct pending_signal;
struct thread_state;

// The kernel's SS_AUTODISARM, which C libraries lack: the stack is given up while a handler runs.
inline constexpr int stack_autodisarm = static_cast<int>(0x80000000);

// Puts a frame on the thread's stack, or its alternate one, and sends its context to the handler.
// `mask` is what rt_sigreturn is to bring back. False, with nothing changed: there is no room.
bool push_signal_frame(thread_state& thread, const pending_signal& arrived,
                       const kernel_action& action, std::uint64_t mask);

// Takes the context from the frame at its SP, and the mask. False: there is no frame.
bool pop_signal_frame(thread_state& thread, std::uint64_t& mask);

// SS_ONSTACK if the context's SP lies on the alternate stack, SS_DISABLE if there is none.
int signal_stack_status(const thread_state& thread);

}  // namespace host
