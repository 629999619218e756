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
#include "host/fatal.h"
#include "host/memory_map.h"
#include "host/program_break.h"
#include "host/signals.h"
#include "host/thread.h"
#include "host/threads.h"

namespace host {
namespace {

// The kernel's record of a signal action, which is not the C library's.
struct kernel_action {
  std::uint64_t handler;
  std::uint64_t flags;
  std::uint64_t restorer;
  std::uint64_t mask;
};

constexpr int highest_signal = 64;
constexpr int first_real_time_signal = 32;

// Actions that the kernel is not told of, since their signals are the host's.
std::array<kernel_action, highest_signal + 1> kept_actions{};

// The C library's own two signals, for cancellation and for changing credentials in all threads.
// It installs their handlers when the first thread starts; they are not sent without need.
bool is_c_library_signal(std::uint64_t signal) {
  return signal == first_real_time_signal || signal == first_real_time_signal + 1;
}

std::int64_t set_kept_action(std::uint64_t signal, std::uint64_t action, std::uint64_t old) {
  const kernel_action previous = kept_actions[signal];
  if (action != 0) {
    std::memcpy(&kept_actions[signal], pointer_to(action), sizeof(kernel_action));
  }
  if (old != 0) std::memcpy(pointer_to(old), &previous, sizeof previous);
  return 0;
}

std::int64_t set_signal_action(const std::uint64_t* x) {
  const std::uint64_t signal = x[0];
  const std::uint64_t action = x[1];
  if (signal == 0 || signal > highest_signal) return -EINVAL;
  if (is_c_library_signal(signal)) return set_kept_action(signal, action, x[2]);
  if (action != 0) {
    kernel_action wanted{};
    std::memcpy(&wanted, pointer_to(action), sizeof wanted);
    const bool is_plain =
        wanted.handler == address_of(SIG_DFL) || wanted.handler == address_of(SIG_IGN);
    if (!is_plain) {
      fatal("a signal handler of the program (here for signal %d, %s) is not supported yet",
            static_cast<int>(signal), sigdescr_np(static_cast<int>(signal)));
    }
  }
  if (is_host_signal(static_cast<int>(signal))) return set_kept_action(signal, action, x[2]);
  return kernel_call(SYS_rt_sigaction, signal, action, x[2], x[3]);
}

std::uint64_t without_host_signals(std::uint64_t mask) {
  for (int signal = 1; signal <= highest_signal; signal++) {
    if (is_host_signal(signal)) mask &= ~(1ull << (signal - 1));
  }
  return mask;
}

std::int64_t change_signal_mask(const std::uint64_t* x) {
  if (x[1] == 0 || x[3] != sizeof(std::uint64_t)) {
    return kernel_call(SYS_rt_sigprocmask, x[0], x[1], x[2], x[3]);
  }
  std::uint64_t mask = 0;
  std::memcpy(&mask, pointer_to(x[1]), sizeof mask);
  mask = without_host_signals(mask);
  return kernel_call(SYS_rt_sigprocmask, x[0], address_of(&mask), x[2], x[3]);
}

// No handler of the program's runs yet, so its signal stacks are only remembered.
std::int64_t change_signal_stack(thread_state& thread, const std::uint64_t* x) {
  const stack_t old = thread.signal_stack;
  if (x[0] != 0) std::memcpy(&thread.signal_stack, pointer_to(x[0]), sizeof old);
  if (x[1] != 0) std::memcpy(pointer_to(x[1]), &old, sizeof old);
  return 0;
}

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

std::int64_t send_signal_to_thread(std::int64_t number, const std::uint64_t* x) {
  const std::uint64_t signal = number == SYS_tkill ? x[1] : x[2];
  if (is_c_library_signal(signal)) {
    fatal(
        "signal %d of the C library (pthread_cancel, or setuid with threads) is not supported yet",
        static_cast<int>(signal));
  }
  return kernel_call(number, x[0], x[1], x[2], x[3]);
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
    case SYS_rt_sigaction: return set_signal_action(x);
    case SYS_rt_sigprocmask: return change_signal_mask(x);
    case SYS_sigaltstack: return change_signal_stack(thread, x);
    case SYS_tkill:
    case SYS_tgkill:
    case SYS_rt_tgsigqueueinfo: return send_signal_to_thread(number, x);
    case SYS_rt_sigreturn: fatal("rt_sigreturn is not supported yet");
    case SYS_execve:
    case SYS_execveat: fatal("execve is not supported yet");
    case SYS_readlinkat: return read_link(x);
    case SYS_openat: return open_file(x);
    default: return kernel_call(number, x[0], x[1], x[2], x[3], x[4], x[5]);
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
    default: break;
  }
  thread.context.x[0] = static_cast<std::uint64_t>(call(thread));
  return after_call::go_on;
}

}  // namespace host
