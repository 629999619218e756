#include "host/processes/syscalls.h"

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
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "host/kernel/address.h"
#include "host/kernel/application_call.h"
#include "host/kernel/fatal.h"
#include "host/kernel/kernel_call.h"
#include "host/memory/advertised_sve.h"
#include "host/memory/application_memory.h"
#include "host/memory/memory_map.h"
#include "host/memory/own_files.h"
#include "host/memory/program_break.h"
#include "host/processes/execution.h"
#include "host/processes/processes.h"
#include "host/processes/robust_list.h"
#include "host/processes/thread_calls.h"
#include "host/signals/signal_calls.h"
#include "host/signals/signal_delivery.h"
#include "host/threads/thread.h"

namespace host {
namespace {

bool is_error(std::int64_t result) { return result < 0 && result > -4096; }

std::uint64_t page_up(std::uint64_t address) {
  static const auto page_bytes = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
  return (address + page_bytes - 1) & ~(page_bytes - 1);
}

mapping_change change_to(std::uint64_t protection) {
  return (protection & PROT_EXEC) != 0 ? mapping_change::executable
                                       : mapping_change::not_executable;
}

// Notes the effect of an mremap with these arguments and this result.
void note_moved(const std::uint64_t* x, std::uint64_t start) {
  const auto change =
      is_executable(x[0]) ? mapping_change::executable : mapping_change::not_executable;
  const std::uint64_t old_end = page_up(x[0] + x[1]);
  if ((x[3] & MREMAP_DONTUNMAP) == 0) {
    note_unmapped(x[0], old_end);
    note_changed(x[0], old_end, mapping_change::removed);
  }
  note_mapped(start, page_up(start + x[2]));
  note_changed(start, page_up(start + x[2]), change);
}

std::int64_t change_mapping(std::int64_t number, const std::uint64_t* x) {
  const std::int64_t result = kernel_call(number, x[0], x[1], x[2], x[3], x[4], x[5]);
  if (is_error(result)) return result;
  const auto start = static_cast<std::uint64_t>(result);
  const std::uint64_t old_end = page_up(x[0] + x[1]);
  switch (number) {
    case SYS_mmap:
      note_mapped(start, page_up(start + x[1]));
      note_changed(start, page_up(start + x[1]), change_to(x[2]));
      break;
    case SYS_munmap:
      note_unmapped(x[0], old_end);
      note_changed(x[0], old_end, mapping_change::removed);
      break;
    case SYS_mremap: note_moved(x, start); break;
    default: note_changed(x[0], old_end, change_to(x[2]));
  }
  return result;
}

std::int64_t clone(thread_state& thread) {
  const std::uint64_t flags = thread.context.x[0];
  const auto has = [flags](std::uint64_t flag) { return (flags & flag) != 0; };
  if (has(CLONE_SIGHAND) && !has(CLONE_VM)) return -EINVAL;
  if (has(CLONE_THREAD) && !has(CLONE_SIGHAND)) return -EINVAL;
  return has(CLONE_THREAD) && !has(CLONE_VFORK) ? clone_thread(thread) : clone_process(thread);
}

// The calls that may name a file in which the application reads about itself.
std::int64_t call_with_path(const thread_state& thread, std::int64_t number) {
  std::array<std::uint64_t, 9> x{};
  std::copy_n(thread.context.x, x.size(), x.begin());
  if (number == SYS_openat) {
    if (const auto opened = open_own_file(x.data())) return *opened;
  } else if (number == SYS_readlinkat) {
    if (const auto length = read_own_link(x.data())) return *length;
  } else {
    const std::uint64_t flags = number == SYS_statx ? x[2] : x[3];
    const bool follows = number == SYS_faccessat || (flags & AT_SYMLINK_NOFOLLOW) == 0;
    if (follows) x[1] = followed_path(x[0], x[1]);
  }
  return application_call(x.data(), &thread.context.attention);
}

// A filter of system calls would apply to the host's own calls too. So the application sees a
// kernel without such filters.
std::int64_t control_process(thread_state& thread, const std::uint64_t* x) {
  switch (x[0]) {
    case PR_SET_SECCOMP:
    case PR_SET_SYSCALL_USER_DISPATCH: return -EINVAL;
    case PR_SVE_GET_VL:
      if (sve_is_advertised()) return get_vector_length(thread);
      break;
    case PR_SVE_SET_VL:
      if (sve_is_advertised()) return set_vector_length(thread, x[1]);
      break;
    default: break;
  }
  return application_call(x, &thread.context.attention);
}

std::int64_t set_tid_address(thread_state& thread) {
  thread.process.clear_child_tid = thread.context.x[0];
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
    case SYS_pkey_mprotect:
    case SYS_mremap: return change_mapping(number, x);
    case SYS_clone: return clone(thread);
    case SYS_clone3:  // C libraries then use clone
    case SYS_rseq:    // the kernel would not recognise the translations of its critical sections
      return -ENOSYS;
    case SYS_set_robust_list: return set_robust_list(thread, x);
    case SYS_set_tid_address: return set_tid_address(thread);
    case SYS_rt_sigaction: return set_signal_action(thread, x);
    case SYS_rt_sigprocmask: return change_signal_mask(thread, x);
    case SYS_rt_sigpending: return get_pending_signals(thread, x);
    case SYS_rt_sigtimedwait: return wait_for_signal(thread, x);
    case SYS_sigaltstack: return change_signal_stack(thread, x);
    case SYS_rt_sigsuspend:
    case SYS_ppoll:
    case SYS_pselect6:
    case SYS_epoll_pwait:
    case SYS_epoll_pwait2: return wait_under_mask(thread, x);
    case SYS_execve:
    case SYS_execveat: return execute_program(thread);
    case SYS_openat:
    case SYS_readlinkat:
    case SYS_newfstatat:
    case SYS_statx:
    case SYS_faccessat:
    case SYS_faccessat2: return call_with_path(thread, number);
    case SYS_prctl: return control_process(thread, x);
    case SYS_seccomp: return -ENOSYS;
    case SYS_ptrace: fatal("ptrace (request %ld) is not supported", x[0]);
    default: return application_call(x, &thread.context.attention);
  }
}

}  // namespace

after_call handle_system_call(thread_state& thread) {
  switch (thread.context.x[8]) {
    case SYS_exit: return exit_thread(thread, static_cast<int>(thread.context.x[0]));
    case SYS_exit_group: return exit_process(thread, static_cast<int>(thread.context.x[0]));
    case SYS_rt_sigreturn: return_from_signal(thread); return after_call::go_on;
    default: break;
  }
  const std::int64_t result = call(thread);
  if (result == call_not_started) {
    thread.context.pc -= 4;  // back to its SVC, to make the call after the signal
  } else {
    thread.context.x[0] = static_cast<std::uint64_t>(result);
  }
  return after_call::go_on;
}

}  // namespace host
