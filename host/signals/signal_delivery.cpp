#include "host/signals/signal_delivery.h"

#include <csignal>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

#include "host/client/events.h"
#include "host/kernel/address.h"
#include "host/kernel/fatal.h"
#include "host/kernel/guarded_copy.h"
#include "host/kernel/kernel_action.h"
#include "host/kernel/kernel_call.h"
#include "host/signals/host_signals.h"
#include "host/signals/signal_actions.h"
#include "host/signals/signal_frame.h"
#include "host/signals/signals.h"
#include "host/signals/thread_signals.h"
#include "host/threads/thread.h"

namespace host {
namespace {

constexpr std::uint64_t never_blocked = signal_bit(SIGKILL) | signal_bit(SIGSTOP);

// Returns the previous mask.
std::uint64_t set_kernel_mask(std::uint64_t mask) {
  std::uint64_t old = 0;
  kernel_call(SYS_rt_sigprocmask, SIG_SETMASK, address_of(&mask), address_of(&old), sizeof mask);
  return old;
}

bool is_ignored_by_default(int signal) {
  return signal == SIGCHLD || signal == SIGURG || signal == SIGWINCH || signal == SIGCONT;
}

// The kernel would not have let a signal with a default action through. So either the action has
// changed since the signal was taken, or this is one of the host's own signals.
void act_by_default(const pending_signal& arrived) {
  if (is_ignored_by_default(arrived.signal)) return;
  die_by_signal(arrived.signal);
}

// Sends the context to the handler. `mask` comes in as the interrupted code's mask and goes out as
// the handler's.
void enter_handler(thread_state& thread, const pending_signal& arrived, const kernel_action& action,
                   std::uint64_t& mask) {
  const std::uint64_t interrupted_pc = thread.context.pc;
  if (!push_signal_frame(thread, arrived, action, mask)) {
    print_line("signal %d at %#lx: there is no room for it on the stack at %#lx", arrived.signal,
               interrupted_pc, thread.context.sp);
    die_by_signal(SIGSEGV);
  }
  mask |= action.mask;
  if ((action.flags & SA_NODEFER) == 0) mask |= signal_bit(arrived.signal);
  run_signal_delivery_events(thread, arrived.signal);
}

void deliver_fault(thread_state& thread, const pending_signal& fault, std::uint64_t& mask) {
  const bool blocked = (mask & signal_bit(fault.signal)) != 0;
  const kernel_action action =
      blocked ? kernel_action{} : thread.signals->actions->take(fault.signal);
  if (!action.has_handler()) end_by_fault(thread, fault);
  if (fault.block != 0) run_restore_state_events(thread, fault.block);
  enter_handler(thread, fault, action, mask);
}

void deliver_sent(thread_state& thread, const pending_signal& arrived, std::uint64_t& mask) {
  const kernel_action action = thread.signals->actions->take(arrived.signal);
  if (action.has_handler()) {
    enter_handler(thread, arrived, action, mask);
  } else if (action.is_default()) {
    act_by_default(arrived);
  }
}

// As in the kernel, the signal comes from the stack pointer that the frame had.
void raise_bad_frame(thread_state& thread) {
  pending_signal& fault = thread.signals->pending.fault;
  fault = {.signal = SIGSEGV};
  fault.info.si_signo = SIGSEGV;
  fault.info.si_code = SEGV_ACCERR;
  fault.info.si_addr = pointer_to(thread.context.sp);
  fault.syndrome = thread.signals->last_syndrome;
  fault.fault_address = thread.signals->last_fault_address;
  thread.context.attention = 1;
}

pending_signal take(pending_signal& pending) { return std::exchange(pending, pending_signal{}); }

}  // namespace

std::uint64_t block_signals(thread_state& thread) {
  const std::uint64_t old = set_kernel_mask(~host_signal_mask());
  const pending_signal& other = thread.signals->pending.other;
  const std::uint64_t mask = other.signal != 0 ? other.mask : old;
  return (mask & ~host_signal_mask()) | thread.signals->blocked_host_signals;
}

// While a signal is pending, all signals stay blocked, and the mask is kept in its record.
void set_application_mask(thread_state& thread, std::uint64_t mask) {
  mask &= ~never_blocked;
  thread.signals->blocked_host_signals = mask & host_signal_mask();
  if (thread.signals->pending.other.signal != 0) {
    thread.signals->pending.other.mask = mask;
  } else {
    set_kernel_mask(mask & ~host_signal_mask());
  }
  for (const pending_signal& sent : thread.signals->pending.sent_faults) {
    if (sent.signal != 0 && (mask & signal_bit(sent.signal)) == 0) thread.context.attention = 1;
  }
}

void deliver_signals(thread_state& thread) {
  pending_signals& pending = thread.signals->pending;
  const std::uint64_t interrupted_mask = block_signals(thread);
  std::uint64_t mask = interrupted_mask;
  if (pending.fault.signal != 0) deliver_fault(thread, take(pending.fault), mask);
  for (pending_signal& sent : pending.sent_faults) {
    if (sent.signal == 0 || (mask & signal_bit(sent.signal)) != 0) continue;
    deliver_sent(thread, take(sent), mask);
  }
  if (pending.other.signal != 0) {
    // The kernel let this signal through. The mask that sigsuspend brings back does not matter;
    // only a handler entered above can have blocked it since.
    const pending_signal other = take(pending.other);
    if ((mask & ~interrupted_mask & signal_bit(other.signal)) != 0) {
      send_again(other.signal, other.info);
    } else {
      deliver_sent(thread, other, mask);
    }
  }
  set_application_mask(thread, mask);
}

void raise_fetch_fault(thread_state& thread, int signal) {
  pending_signal& fault = thread.signals->pending.fault;
  fault = {.signal = signal, .fault_address = thread.context.pc};
  fault.info.si_signo = signal;
  fault.info.si_code = SEGV_MAPERR;
  if (signal == SIGBUS) fault.info.si_code = BUS_ADRALN;
  std::uint32_t word = 0;
  if (signal == SIGSEGV && read_from_application(thread.context.pc, word)) {
    fault.info.si_code = SEGV_ACCERR;
  }
  fault.info.si_addr = pointer_to(thread.context.pc);
  thread.context.attention = 1;
}

void return_from_signal(thread_state& thread) {
  const std::uint64_t frame = thread.context.sp;
  std::uint64_t mask = 0;
  switch (pop_signal_frame(thread, mask)) {
    case frame_state::good: run_signal_return_events(thread, frame); break;
    case frame_state::bad: raise_bad_frame(thread); break;
    case frame_state::missing:
      print_line("rt_sigreturn: there is no signal frame at %#lx", frame);
      die_by_signal(SIGSEGV);
  }
  block_signals(thread);
  set_application_mask(thread, mask);
}

void stop_taking_signals(thread_state& thread) {
  set_kernel_mask(~host_signal_mask());
  const pending_signal other = take(thread.signals->pending.other);
  if (other.signal == 0 || other.info.si_code == SI_TKILL) return;
  kernel_call(SYS_rt_sigqueueinfo, static_cast<std::uint64_t>(getpid()),
              static_cast<std::uint64_t>(other.signal), address_of(&other.info));
}

}  // namespace host
