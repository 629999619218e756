#include "host/signals/signal_calls.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <sys/syscall.h>
#include <utility>

#include "host/kernel/address.h"
#include "host/kernel/application_call.h"
#include "host/kernel/guarded_copy.h"
#include "host/kernel/kernel_call.h"
#include "host/signals/host_signals.h"
#include "host/signals/signal_actions.h"
#include "host/signals/signal_delivery.h"
#include "host/signals/signal_frame.h"
#include "host/signals/thread_signals.h"
#include "host/threads/thread.h"

namespace host {
namespace {

constexpr std::uint64_t mask_bytes = 8;
constexpr std::uint64_t smallest_stack = 5120;  // the kernel's MINSIGSTKSZ

std::uint64_t changed_mask(std::uint64_t how, std::uint64_t old, std::uint64_t set) {
  switch (how) {
    case SIG_BLOCK: return old | set;
    case SIG_UNBLOCK: return old & ~set;
    default: return set;
  }
}

// The argument that points at a mask. For pselect6 it points at a record of the mask's address and
// size.
constexpr std::size_t mask_argument(std::uint64_t number) {
  switch (number) {
    case SYS_rt_sigsuspend: return 0;
    case SYS_ppoll: return 3;
    case SYS_pselect6: return 5;
    default: return 4;  // epoll_pwait, epoll_pwait2
  }
}

struct pselect_mask {
  std::uint64_t address;
  std::uint64_t bytes;
};

}  // namespace

std::int64_t set_signal_action(thread_state& thread, const std::uint64_t* x) {
  if (x[3] != mask_bytes || x[0] == 0 || x[0] > highest_signal) return -EINVAL;
  const int signal = static_cast<int>(x[0]);
  kernel_action wanted{};
  kernel_action previous = thread.signals->actions->get(signal);
  if (x[1] != 0) {
    if (!read_from_application(x[1], wanted)) return -EFAULT;
    if (signal == SIGKILL || signal == SIGSTOP) return -EINVAL;
    const std::int64_t error = thread.signals->actions->set(signal, wanted, previous);
    if (error < 0) return error;
  }
  if (x[2] != 0 && !write_to_application(x[2], previous)) return -EFAULT;
  return 0;
}

std::int64_t change_signal_mask(thread_state& thread, const std::uint64_t* x) {
  if (x[3] != mask_bytes) return -EINVAL;
  std::uint64_t set = 0;
  if (x[1] != 0 && !read_from_application(x[1], set)) return -EFAULT;
  if (x[1] != 0 && x[0] > SIG_SETMASK) return -EINVAL;
  const std::uint64_t old = block_signals(thread);
  set_application_mask(thread, x[1] != 0 ? changed_mask(x[0], old, set) : old);
  return x[2] == 0 || write_to_application(x[2], old) ? 0 : -EFAULT;
}

std::int64_t change_signal_stack(thread_state& thread, const std::uint64_t* x) {
  stack_t wanted{};
  if (x[0] != 0 && !read_from_application(x[0], wanted)) return -EFAULT;
  stack_t old = thread.signals->alternate_stack;
  old.ss_flags |= signal_stack_status(thread);
  if (x[0] != 0) {
    const int mode = wanted.ss_flags & ~stack_autodisarm;
    if (signal_stack_status(thread) == SS_ONSTACK) return -EPERM;
    if (mode != 0 && mode != SS_ONSTACK && mode != SS_DISABLE) return -EINVAL;
    if (mode == SS_DISABLE) {
      wanted.ss_sp = nullptr;
      wanted.ss_size = 0;
    } else if (wanted.ss_size < smallest_stack) {
      return -ENOMEM;
    }
    wanted.ss_flags &= stack_autodisarm;
    thread.signals->alternate_stack = wanted;
  }
  return x[1] == 0 || write_to_application(x[1], old) ? 0 : -EFAULT;
}

std::int64_t get_pending_signals(thread_state& thread, const std::uint64_t* x) {
  std::uint64_t mask = 0;
  if (x[1] > mask_bytes) return -EINVAL;
  kernel_call(SYS_rt_sigpending, address_of(&mask), mask_bytes);
  for (const pending_signal& sent : thread.signals->pending.sent_faults) {
    if (sent.signal != 0) mask |= signal_bit(sent.signal);
  }
  return guarded_copy(pointer_to(x[0]), &mask, x[1]) == 0 ? 0 : -EFAULT;
}

std::int64_t wait_for_signal(thread_state& thread, const std::uint64_t* x) {
  std::uint64_t wanted = 0;
  if (x[3] == mask_bytes && read_from_application(x[0], wanted)) {
    for (pending_signal& sent : thread.signals->pending.sent_faults) {
      if (sent.signal == 0 || (wanted & signal_bit(sent.signal)) == 0) continue;
      const pending_signal taken = std::exchange(sent, {});
      return x[1] == 0 || write_to_application(x[1], taken.info) ? taken.signal : -EFAULT;
    }
  }
  return application_call(x, &thread.context.attention);
}

std::int64_t wait_under_mask(thread_state& thread, const std::uint64_t* x) {
  std::uint64_t arguments[9];
  std::copy_n(x, std::size(arguments), arguments);
  std::uint64_t& pointer = arguments[mask_argument(x[8])];
  pselect_mask record{};
  std::uint64_t mask = 0;
  std::uint64_t mask_address = pointer;
  if (x[8] == SYS_pselect6 && pointer != 0) {
    if (!read_from_application(pointer, record)) return -EFAULT;
    mask_address = record.address;
  }
  if (mask_address != 0) {
    if (!read_from_application(mask_address, mask)) return -EFAULT;
    mask &= ~host_signal_mask();
    record.address = address_of(&mask);
    pointer = x[8] == SYS_pselect6 ? address_of(&record) : record.address;
  }
  return application_call(arguments, &thread.context.attention);
}

}  // namespace host
