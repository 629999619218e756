#include "host/processes/thread_calls.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <linux/futex.h>
#include <pthread.h>
#include <sched.h>
#include <semaphore>
#include <sys/syscall.h>
#include <unistd.h>

#include "host/client/events.h"
#include "host/kernel/address.h"
#include "host/kernel/fatal.h"
#include "host/kernel/kernel_call.h"
#include "host/processes/dispatch.h"
#include "host/processes/robust_list.h"
#include "host/signals/signal_delivery.h"
#include "host/signals/signals.h"
#include "host/signals/thread_signals.h"

namespace host {
namespace {

constexpr std::size_t host_stack_bytes = 1u << 20;

std::atomic<int> status_of_initial_thread = 0;

struct birth {
  thread_state* thread = nullptr;
  std::uint64_t flags = 0;
  std::uint64_t parent_tid = 0;
  std::uint64_t child_tid = 0;
  std::uint64_t signal_mask = 0;
  std::binary_semaphore ready{0};
};

void store_tid(std::uint64_t address, pid_t tid) { *pointer_to<pid_t>(address) = tid; }

bool is_initial_thread(const thread_state& thread) { return thread.tid == getpid(); }

// Writes the child's number where the flags ask for it, before either thread continues.
void announce(birth& b) {
  const pid_t tid = b.thread->tid;
  if ((b.flags & CLONE_PARENT_SETTID) != 0) store_tid(b.parent_tid, tid);
  if ((b.flags & CLONE_CHILD_SETTID) != 0) store_tid(b.child_tid, tid);
  if ((b.flags & CLONE_CHILD_CLEARTID) != 0) b.thread->process.clear_child_tid = b.child_tid;
}

void* run_new_thread(void* argument) {
  auto& b = *static_cast<birth*>(argument);
  thread_state& thread = *b.thread;
  bind_thread(thread);
  install_signal_stack(thread);
  announce(b);
  const std::uint64_t mask = b.signal_mask;
  b.ready.release();  // `b` does not exist any more after this
  set_application_mask(thread, mask);
  run_thread(thread);
  finish_thread(thread);
  return nullptr;
}

void set_up_child(const thread_context& parent, thread_context& child) {
  const std::uint64_t flags = parent.x[0];
  const std::uint64_t stack = parent.x[1];
  const std::uint64_t tls = parent.x[3];
  copy_registers(parent, child);
  child.x[0] = 0;
  if (stack != 0) child.sp = stack;
  if ((flags & CLONE_SETTLS) != 0) child.tpidr = tls;
}

bool start_host_thread(birth& b) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_attr_setstacksize(&attributes, host_stack_bytes);
  pthread_t handle{};
  const int error = pthread_create(&handle, &attributes, run_new_thread, &b);
  pthread_attr_destroy(&attributes);
  return error == 0;
}

// As in the kernel, this is the thread's last access to the application's memory, and the wake is
// not a private one.
void clear_and_wake(std::uint64_t address) {
  if (address == 0) return;
  std::atomic_ref(*pointer_to<pid_t>(address)).store(0);
  kernel_call(SYS_futex, address, FUTEX_WAKE, 1);
}

[[noreturn]] void wait_for_the_end() {
  for (;;) pause();
}

[[noreturn]] void end_process(int status) {
  run_exit_events();
  std::exit(status);
}

// A vforked child ends alone: its memory and its threads belong to its parent.
[[noreturn]] void leave_vforked(int status) {
  for (;;) kernel_call(SYS_exit_group, static_cast<std::uint64_t>(status));
}

}  // namespace

void copy_registers(const thread_context& from, thread_context& to) {
  std::copy(std::begin(from.x), std::end(from.x), to.x);
  std::copy(&from.q[0][0], &from.q[0][0] + sizeof from.q, &to.q[0][0]);
  to.sp = from.sp;
  to.pc = from.pc;
  to.nzcv = from.nzcv;
  to.fpcr = from.fpcr;
  to.fpsr = from.fpsr;
  to.tpidr = from.tpidr;
}

std::int64_t clone_thread(thread_state& parent) {
  if (parent.process.is_vfork_child)
    fatal("a thread in a process that vfork made is not supported");
  thread_state* const child = acquire_thread();
  if (child == nullptr) return -EAGAIN;
  set_up_child(parent.context, child->context);
  attach_signals(*child, *parent.signals->actions);
  child->process.inherits_vector_length = parent.process.inherits_vector_length;
  const std::uint64_t mask = block_signals(parent);  // the new thread has no stack for signals yet
  birth b = {.thread = child,
             .flags = parent.context.x[0],
             .parent_tid = parent.context.x[2],
             .child_tid = parent.context.x[4],
             .signal_mask = mask};
  const bool started = start_host_thread(b);
  if (started) b.ready.acquire();
  set_application_mask(parent, mask);
  if (started) return child->tid;
  retire_thread(*child);
  release_thread(*child);
  return -EAGAIN;
}

after_call exit_thread(thread_state& thread, int status) {
  if (thread.process.is_vfork_child) leave_vforked(status);
  if (is_initial_thread(thread)) status_of_initial_thread = status;
  return after_call::end_thread;
}

after_call exit_process(thread_state& thread, int status) {
  if (thread.process.is_vfork_child) leave_vforked(status);
  if (!stop_other_threads()) return after_call::end_thread;
  run_thread_exit_events(thread);
  retire_thread(thread);
  end_process(status);
}

void finish_thread(thread_state& thread) {
  stop_taking_signals(thread);
  const bool initial = is_initial_thread(thread);
  const std::uint64_t clear_child_tid = thread.process.clear_child_tid;
  const int left = retire_thread(thread);
  if (process_is_ending()) wait_for_the_end();
  if (left == 0) end_process(status_of_initial_thread);
  leave_robust_mutexes(thread);
  release_thread(thread);
  clear_and_wake(clear_child_tid);
  if (initial) wait_for_the_end();
}

}  // namespace host
