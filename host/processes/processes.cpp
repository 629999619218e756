#include "host/processes/processes.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <linux/sched.h>
#include <string_view>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/kernel/address.h"
#include "host/kernel/application_call.h"
#include "host/kernel/fatal.h"
#include "host/kernel/fork_lock.h"
#include "host/kernel/guarded_copy.h"
#include "host/kernel/kernel_call.h"
#include "host/kernel/process_call.h"
#include "host/processes/dispatch.h"
#include "host/processes/thread_calls.h"
#include "host/signals/signal_actions.h"
#include "host/signals/signal_delivery.h"
#include "host/signals/thread_signals.h"
#include "host/threads/thread.h"

namespace host {
namespace {

// The arguments of the clone system call.
struct clone_request {
  explicit clone_request(const thread_context& context)
      : flags(context.x[0]),
        stack(context.x[1]),
        parent_tid(context.x[2]),
        tls(context.x[3]),
        child_tid(context.x[4]) {}

  [[nodiscard]] bool has(std::uint64_t flag) const { return (flags & flag) != 0; }
  [[nodiscard]] std::uint64_t exit_signal() const { return flags & CSIGNAL; }

  std::uint64_t flags;
  std::uint64_t stack;
  std::uint64_t parent_tid;
  std::uint64_t tls;
  std::uint64_t child_tid;
};

[[noreturn]] void refuse(const clone_request& request, const char* what) {
  fatal("clone with the flags %#lx (%s) is not supported", request.flags, what);
}

void give_registers(thread_context& context, const clone_request& request) {
  if (request.stack != 0) context.sp = request.stack;
  if (request.has(CLONE_SETTLS)) context.tpidr = request.tls;
}

// A pending signal is for the parent. As in the kernel, the call starts again after its handler.
bool has_pending_signal(const thread_state& thread) {
  return thread.signals->pending.other.signal != 0;
}

// --- fork --------------------------------------------------------------------------------------

constexpr std::uint64_t fork_flags = CSIGNAL | CLONE_SETTLS | CLONE_PARENT_SETTID |
                                     CLONE_CHILD_SETTID | CLONE_CHILD_CLEARTID | CLONE_PIDFD |
                                     CLONE_UNTRACED | CLONE_DETACHED;

// Only the C library's own fork leaves the C library usable in the child, and that function takes
// none of the other flags.
void check_fork(const clone_request& request) {
  if (request.exit_signal() != SIGCHLD) refuse(request, "an exit signal other than SIGCHLD");
  if (request.has(CLONE_VFORK)) refuse(request, "CLONE_VFORK without CLONE_VM");
  if (request.has(~fork_flags)) refuse(request, "a process with other flags than fork's");
}

// Writes what the kernel would write for the parent.
std::int64_t announce_child(const clone_request& request, pid_t child) {
  if (request.has(CLONE_PARENT_SETTID)) write_to_application(request.parent_tid, child);
  if (request.has(CLONE_PIDFD)) {
    const auto descriptor =
        static_cast<int>(kernel_call(SYS_pidfd_open, static_cast<std::uint64_t>(child)));
    write_to_application(request.parent_tid, descriptor);
  }
  return child;
}

void begin_forked(thread_state& thread, const clone_request& request) {
  thread.signals->pending = {};
  thread.process.is_vfork_child = false;
  thread.process.robust_list = 0;
  thread.process.clear_child_tid = request.has(CLONE_CHILD_CLEARTID) ? request.child_tid : 0;
  if (request.has(CLONE_CHILD_SETTID)) write_to_application(request.child_tid, thread.tid);
  give_registers(thread.context, request);
}

std::int64_t fork_with_locks(thread_state& thread, const clone_request& request) {
  hold_for_fork();
  const pid_t child = fork();
  const int error = errno;
  if (child == 0) keep_only(thread);
  release_after_fork();
  if (child < 0) return -error;
  if (child != 0) return announce_child(request, child);
  begin_forked(thread, request);
  return 0;
}

// --- vfork -------------------------------------------------------------------------------------

// The kernel keeps separate registers, numbers and signals for each of the two processes. Here both
// use one record, and the child uses it first. This saves the parent's values and restores them.
class parents_view {
 public:
  explicit parents_view(thread_state& thread)
      : thread_(thread),
        context_(thread.context),
        tid_(thread.tid),
        clear_child_tid_(thread.process.clear_child_tid),
        alternate_stack_(thread.signals->alternate_stack),
        actions_(thread.signals->actions),
        pending_(thread.signals->pending),
        is_vfork_child_(thread.process.is_vfork_child) {}
  ~parents_view() {
    copy_registers(context_, thread_.context);
    std::ranges::copy(context_.raw_tls, thread_.context.raw_tls);
    thread_.tid = tid_;
    thread_.process.clear_child_tid = clear_child_tid_;
    thread_.signals->alternate_stack = alternate_stack_;
    thread_.signals->actions = actions_;
    thread_.signals->pending = pending_;
    thread_.process.is_vfork_child = is_vfork_child_;
    thread_.stop_requested = process_is_ending();
    thread_.context.attention = 1;
  }
  parents_view(const parents_view&) = delete;
  parents_view& operator=(const parents_view&) = delete;

 private:
  thread_state& thread_;
  thread_context context_;
  pid_t tid_;
  std::uint64_t clear_child_tid_;
  stack_t alternate_stack_;
  signal_actions* actions_;
  pending_signals pending_;
  bool is_vfork_child_;
};

struct vfork_birth {
  thread_state& thread;
  const clone_request& request;
  signal_actions& actions;
  std::uint64_t mask;
};

// Never returns: the child ends by a system call, exec or exit.
void run_vforked(void* argument) {
  const auto& birth = *static_cast<const vfork_birth*>(argument);
  thread_state& thread = birth.thread;
  thread.tid = static_cast<pid_t>(kernel_call(SYS_gettid));
  thread.signals->actions = &birth.actions;
  thread.signals->pending = {};
  thread.process.is_vfork_child = true;
  thread.process.clear_child_tid = 0;  // the kernel has it
  give_registers(thread.context, birth.request);
  thread.context.x[0] = 0;
  set_application_mask(thread, birth.mask);
  for (;;) {  // the child goes on even if the parent's process is ending
    run_blocks(thread);
    thread.stop_requested = false;
  }
}

std::int64_t start_vforked(thread_state& thread, const clone_request& request, std::uint64_t mask) {
  signal_actions own(*thread.signals->actions);
  const vfork_birth birth{thread, request, own, mask};
  const parents_view parent(thread);
  return start_suspended(request.flags & ~std::uint64_t{CLONE_SETTLS}, request.parent_tid,
                         request.child_tid, run_vforked, const_cast<vfork_birth*>(&birth));
}

void set_and_leave(void* flag) {
  *static_cast<volatile bool*>(flag) = true;
  kernel_call(SYS_exit_group, 0);
}

// qemu-user treats vfork as fork, and does not protect the locks that other threads hold. It can be
// recognised: it refuses a child that ends without a signal, as it does for fork.
bool vfork_shares_memory() {
  static const bool shares = [] {
    volatile bool seen = false;
    const std::int64_t child =
        start_suspended(CLONE_VM | CLONE_VFORK, 0, 0, set_and_leave, const_cast<bool*>(&seen));
    if (child > 0) waitpid(static_cast<pid_t>(child), nullptr, __WALL);
    return static_cast<bool>(seen);
  }();
  return shares;
}

std::int64_t vfork_or_fork(thread_state& thread, clone_request request, std::uint64_t mask) {
  if (active_thread_count() == 1 || vfork_shares_memory())
    return start_vforked(thread, request, mask);
  request.flags &= ~std::uint64_t{CLONE_VM | CLONE_VFORK};
  check_fork(request);
  const std::int64_t result = fork_with_locks(thread, request);
  if (result == 0) thread.process.is_vfork_child = true;
  return result;
}

void check_vfork(const clone_request& request) {
  if (!request.has(CLONE_VFORK)) refuse(request, "a process that shares memory");
  if (request.has(CLONE_THREAD)) refuse(request, "CLONE_VFORK with CLONE_THREAD");
}

}  // namespace

std::int64_t clone_process(thread_state& thread) {
  const clone_request request(thread.context);
  const bool shares_memory = request.has(CLONE_VM);
  shares_memory ? check_vfork(request) : check_fork(request);
  const std::uint64_t mask = block_signals(thread);
  std::int64_t result = call_not_started;
  if (!has_pending_signal(thread)) {
    result =
        shares_memory ? vfork_or_fork(thread, request, mask) : fork_with_locks(thread, request);
  }
  set_application_mask(thread, mask);
  return result;
}

}  // namespace host
