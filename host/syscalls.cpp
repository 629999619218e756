#include "host/syscalls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <linux/mman.h>
#include <sched.h>
#include <string_view>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "host/address.h"
#include "host/application_call.h"
#include "host/fatal.h"
#include "host/memory_map.h"
#include "host/program_break.h"
#include "host/signal_calls.h"
#include "host/signal_delivery.h"
#include "host/thread.h"
#include "host/threads.h"

namespace host {
namespace {

bool is_error(std::int64_t result) { return result < 0 && result > -4096; }

std::int64_t change_mapping(std::int64_t number, const std::uint64_t* x) {
  const std::int64_t result = kernel_call(number, x[0], x[1], x[2], x[3], x[4], x[5]);
  if (is_error(result)) return result;
  const auto start = static_cast<std::uint64_t>(result);
  switch (number) {
    case SYS_mmap: note_changed(start, start + x[1]); break;
    case SYS_mremap:
      note_changed(x[0], x[0] + x[1]);
      note_changed(start, start + x[2]);
      break;
    default: note_changed(x[0], x[0] + x[1]);
  }
  return result;
}

// /proc/self/exe shall be the program, not the launcher. The kernel is asked first whether the path
// can be read at all.
bool names_own_executable(std::uint64_t directory, std::uint64_t path) {
  if (is_error(kernel_call(SYS_faccessat, directory, path, F_OK))) return false;
  return std::strcmp(pointer_to<const char>(path), "/proc/self/exe") == 0;
}

std::int64_t read_link(const std::uint64_t* x) {
  const auto module = main_module();
  if (!module || x[3] == 0 || !names_own_executable(x[0], x[1])) {
    return kernel_call(SYS_readlinkat, x[0], x[1], x[2], x[3]);
  }
  const std::size_t length = std::min<std::size_t>(module->full_path.size(), x[3]);
  std::memcpy(pointer_to(x[2]), module->full_path.data(), length);
  return static_cast<std::int64_t>(length);
}

std::int64_t open_file(const std::uint64_t* x) {
  const std::int64_t result = kernel_call(SYS_openat, x[0], x[1], x[2], x[3]);
  if (is_error(result) || !names_own_executable(x[0], x[1])) return result;
  const auto module = main_module();
  if (!module) return result;
  close(static_cast<int>(result));
  return kernel_call(SYS_openat, x[0], address_of(module->full_path.c_str()), x[2], x[3]);
}

std::int64_t clone(thread_state& thread) {
  const std::uint64_t flags = thread.context.x[0];
  constexpr std::uint64_t thread_flags = CLONE_VM | CLONE_SIGHAND | CLONE_THREAD;
  if ((flags & CLONE_VFORK) != 0) fatal("vfork (clone, flags %#lx) is not supported yet", flags);
  if ((flags & CLONE_VM) == 0) fatal("fork (clone, flags %#lx) is not supported yet", flags);
  if ((flags & thread_flags) != thread_flags) {
    fatal("clone with the flags %#lx is not supported yet", flags);
  }
  return clone_thread(thread);
}

std::int64_t set_tid_address(thread_state& thread) {
  thread.clear_child_tid = thread.context.x[0];
  return thread.tid;
}

std::int64_t call(thread_state& thread) {
  const std::uint64_t* const x = thread.context.x;
  const auto number = static_cast<std::int64_t>(x[8]);
  switch (number) {
    case SYS_brk: return static_cast<std::int64_t>(move_program_break(x[0]));
    case SYS_mmap:
    case SYS_munmap:
    case SYS_mprotect:
    case SYS_mremap: return change_mapping(number, x);
    case SYS_clone: return clone(thread);
    case SYS_clone3:  // C libraries go on with clone
    case SYS_rseq:    // its critical sections would be copies in the cache
      return -ENOSYS;
    case SYS_set_tid_address: return set_tid_address(thread);
    case SYS_rt_sigaction: return set_signal_action(thread, x);
    case SYS_rt_sigprocmask: return change_signal_mask(thread, x);
    case SYS_rt_sigpending: return get_waiting_signals(thread, x);
    case SYS_sigaltstack: return change_signal_stack(thread, x);
    case SYS_rt_sigsuspend:
    case SYS_ppoll:
    case SYS_pselect6:
    case SYS_epoll_pwait:
    case SYS_epoll_pwait2: return wait_under_mask(thread, x);
    case SYS_execve:
    case SYS_execveat: fatal("execve is not supported yet");
    case SYS_readlinkat: return read_link(x);
    case SYS_openat: return open_file(x);
    default: return application_call(x, &thread.context.attention);
  }
}

}  // namespace

std::int64_t kernel_call(std::int64_t number, std::uint64_t a0, std::uint64_t a1, std::uint64_t a2,
                         std::uint64_t a3, std::uint64_t a4, std::uint64_t a5) {
  register std::uint64_t x0 asm("x0") = a0;
  register std::uint64_t x1 asm("x1") = a1;
  register std::uint64_t x2 asm("x2") = a2;
  register std::uint64_t x3 asm("x3") = a3;
  register std::uint64_t x4 asm("x4") = a4;
  register std::uint64_t x5 asm("x5") = a5;
  register std::int64_t x8 asm("x8") = number;
  asm volatile("svc #0"
               : "+r"(x0)
               : "r"(x1), "r"(x2), "r"(x3), "r"(x4), "r"(x5), "r"(x8)
               : "memory", "cc");
  return static_cast<std::int64_t>(x0);
}

after_call handle_system_call(thread_state& thread) {
  switch (thread.context.x[8]) {
    case SYS_exit: return exit_thread(thread, static_cast<int>(thread.context.x[0]));
    case SYS_exit_group: return exit_process(thread, static_cast<int>(thread.context.x[0]));
    case SYS_rt_sigreturn: return_from_signal(thread); return after_call::go_on;
    default: break;
  }
  const std::int64_t result = call(thread);
  if (result == call_not_started) {
    thread.context.pc -= 4;  // to its SVC, for after the signal
  } else {
    thread.context.x[0] = static_cast<std::uint64_t>(result);
  }
  return after_call::go_on;
}

}  // namespace host
