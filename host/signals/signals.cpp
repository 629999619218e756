#include "host/signals/signals.h"

#include <algorithm>
#include <asm/sigcontext.h>
#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "host/include/dr_api.h"
#include "host/kernel/address.h"
#include "host/kernel/application_call.h"
#include "host/kernel/fatal.h"
#include "host/kernel/guarded_copy.h"
#include "host/kernel/kernel_action.h"
#include "host/kernel/kernel_call.h"
#include "host/signals/host_signals.h"
#include "host/signals/thread_signals.h"
#include "host/threads/thread.h"
#include "host/translation/context_switch.h"

constinit const host::exit_record interrupted_record = {.kind = host::exit_kind::interrupted};

namespace host {
namespace {

// A signal frame with long vectors takes 70 KB. The stack is aligned to its size, and its lowest
// word holds the address of the thread's record.
constexpr std::size_t signal_stack_bytes = 256u << 10;

// The actions that the client set, by signal. They need no lock: as in any program, an action is
// set before the fault that it is for.
struct sigaction client_actions[NSIG];

using sigaction_function = int (*)(int, const struct sigaction*, struct sigaction*);

sigaction_function c_library_sigaction() {
  static const auto function = reinterpret_cast<sigaction_function>(dlsym(RTLD_NEXT, "sigaction"));
  return function;
}

bool has_handler(const struct sigaction& action) {
  return action.sa_handler != SIG_DFL && action.sa_handler != SIG_IGN;
}

// The signals for which the client has ever set a handler. It then reports its own faults itself.
bool client_handled[NSIG];

// Returns false if the client has no handler for this signal.
bool call_client_handler(int signal, siginfo_t* info, void* context) {
  const struct sigaction action = client_actions[signal];
  if (!has_handler(action)) return false;
  if ((action.sa_flags & SA_SIGINFO) != 0) {
    action.sa_sigaction(signal, info, context);
  } else {
    action.sa_handler(signal);
  }
  return true;
}

const char* name_of(int signal) {
  switch (signal) {
    case SIGSEGV: return "SIGSEGV";
    case SIGBUS: return "SIGBUS";
    case SIGILL: return "SIGILL";
    case SIGFPE: return "SIGFPE";
    default: return "SIGTRAP";
  }
}

void report_application_fault(int signal, std::uint64_t pc, const void* address) {
  std::uint32_t word = 0;
  const bool is_fetch = address_of(address) == pc;
  if (is_fetch || !read_from_application(pc, word)) {
    print_line("%s at %#lx: there is no code to execute", name_of(signal), pc);
  } else if (signal == SIGSEGV || signal == SIGBUS) {
    print_line("%s at %#lx, instruction word 0x%08x, accessing %p", name_of(signal), pc, word,
               address);
  } else {
    print_line("%s at %#lx, instruction word 0x%08x", name_of(signal), pc, word);
  }
}

std::uint64_t exchange_tpidr(std::uint64_t value) {
  std::uint64_t old = 0;
  asm volatile("mrs %0, tpidr_el0\n\tmsr tpidr_el0, %1" : "=&r"(old) : "r"(value) : "memory");
  return old;
}

thread_state& thread_of_this_stack() {
  const std::uint64_t here = address_of(static_cast<char*>(__builtin_frame_address(0)));
  return **pointer_to<thread_state*>(here & ~(signal_stack_bytes - 1));
}

template <typename Function>
std::uint64_t place(Function function) {
  return address_of(function);
}

bool lies_between(std::uint64_t pc, std::uint64_t first, std::uint64_t last) {
  return pc >= first && pc < last;
}

// The syndrome of a fault (ESR_EL1). The kernel stores it among the records after the registers.
std::uint64_t syndrome_of(const mcontext_t& machine) {
  const unsigned char* at = machine.__reserved;
  const unsigned char* const end = at + sizeof machine.__reserved;
  while (at + sizeof(_aarch64_ctx) <= end) {
    _aarch64_ctx head{};
    std::memcpy(&head, at, sizeof head);
    if (head.magic == ESR_MAGIC) {
      esr_context esr{};
      std::memcpy(&esr, at, sizeof esr);
      return esr.esr;
    }
    if (head.size == 0) break;
    at += head.size;
  }
  return 0;
}

// One signal that the entry has received.
class arrival {
 public:
  arrival(thread_state& thread, int signal, siginfo_t& info, ucontext_t& context,
          std::uint64_t interrupted_tpidr)
      : thread_(thread),
        signal_(signal),
        info_(info),
        context_(context),
        interrupted_tpidr_(interrupted_tpidr) {}

  void take() {
    if (is_fault_signal(signal_) && info_.si_code > 0) {
      take_fault();
    } else if (signal_ == stop_signal) {
      if (thread_.context.attention != 0) come_to_dispatcher();
    } else {
      take_sent_signal();
    }
  }

  // Whether the thread will continue in the host's code, and so with the host's TPIDR_EL0.
  [[nodiscard]] bool has_left() const { return has_left_; }

 private:
  mcontext_t& machine() { return context_.uc_mcontext; }

  std::uint64_t mask() const {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &context_.uc_sigmask, sizeof bits);
    return bits;
  }

  [[nodiscard]] pending_signal as_pending() {
    return {.signal = signal_,
            .info = info_,
            .mask = mask(),
            .fault_address = machine().fault_address,
            .syndrome = syndrome_of(machine())};
  }

  void take_fault() {
    const std::uint64_t pc = machine().pc;
    if (lies_between(pc, place(guarded_copy), place(guarded_copy_failed))) {
      machine().pc = place(guarded_copy_failed);
    } else if (thread_.cache.contains(pc)) {
      thread_.cache.recover(machine(), thread_.context);
      thread_.context.tpidr = interrupted_tpidr_;
      thread_.signals->pending.fault = as_pending();
      thread_.signals->pending.fault.block = thread_.cache.block_of(pc);
      thread_.context.attention = 1;
      leave();
    } else if (thread_.signals->client_fault = as_pending();
               !call_client_handler(signal_, &info_, &context_)) {
      end_by_own_fault();
    }
  }

  // The fault happens again when the entry returns, and then the default action ends the process.
  void end_by_own_fault() {
    if (!client_handled[signal_]) {
      print_line("%s in the launcher or its client, at %#llx, accessing %p", name_of(signal_),
                 machine().pc, info_.si_addr);
    }
    set_action_in_kernel(signal_, kernel_action{});
  }

  void take_sent_signal() {
    const auto* const own = std::ranges::find(fault_signals, signal_);
    if (own != fault_signals.end()) {
      const auto index = static_cast<std::size_t>(own - fault_signals.begin());
      pending_signal& pending = thread_.signals->pending.sent_faults[index];
      if (pending.signal == 0) pending = as_pending();
    } else {
      // Another signal can arrive here: client code that leaves its fault handler by longjmp
      // restores the mask it had before.
      if (thread_.signals->pending.other.signal == 0) {
        thread_.signals->pending.other = as_pending();
      } else {
        send_again(signal_, info_);
      }
      const std::uint64_t all_but_own = ~host_signal_mask();
      std::memcpy(&context_.uc_sigmask, &all_but_own, sizeof all_but_own);
    }
    thread_.context.attention = 1;
    come_to_dispatcher();
  }

  // If the signal interrupted the host or the client, nothing is done here: that code will check
  // the attention word itself.
  void come_to_dispatcher() {
    const std::uint64_t pc = machine().pc;
    if (thread_.cache.contains(pc)) {
      thread_.cache.leave_soon(machine());
    } else if (lies_between(pc, place(call_client_checked), place(call_client_end))) {
      thread_.cache.leave_soon_at(machine().regs[19]);
    } else if (lies_between(pc, place(enter_cache_prepared), place(enter_cache_end))) {
      leave();
    } else if (lies_between(pc, place(application_call_checked), place(application_call_made))) {
      machine().pc = place(application_call_not_started);
    }
  }

  void leave() {
    thread_.context.exit = &interrupted_record;
    machine().regs[context_register] = address_of(&thread_.context);
    machine().pc = place(leave_cache);
    has_left_ = true;
  }

  thread_state& thread_;
  int signal_;
  siginfo_t& info_;
  ucontext_t& context_;
  std::uint64_t interrupted_tpidr_;
  bool has_left_ = false;
};

void install(int signal) {
  constexpr std::uint64_t all_signals = ~std::uint64_t{0};
  const kernel_action action = {.handler = place(signal_entry),
                                .flags = SA_SIGINFO | SA_ONSTACK | SA_RESTART | SA_NODEFER,
                                .restorer = 0,
                                .mask = all_signals & ~host_signal_mask()};
  set_action_in_kernel(signal, action);
}

void* map_aligned(std::size_t bytes) {
  auto* const memory = static_cast<char*>(mmap(nullptr, 2 * bytes, PROT_READ | PROT_WRITE,
                                               MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
  if (memory == MAP_FAILED) fatal("cannot map a signal stack");
  const std::size_t before = -address_of(memory) & (bytes - 1);
  if (before != 0) munmap(memory, before);
  munmap(memory + before + bytes, bytes - before);
  return memory + before;
}

}  // namespace

void send_again(int signal, const siginfo_t& info) {
  kernel_call(SYS_rt_tgsigqueueinfo, static_cast<std::uint64_t>(getpid()),
              static_cast<std::uint64_t>(kernel_call(SYS_gettid)),
              static_cast<std::uint64_t>(signal), address_of(&info));
}

void install_signal_handlers() {
  for (const int signal : fault_signals) install(signal);
  install(stop_signal);
}

void install_signal_stack(thread_state& thread) {
  void*& memory = thread.signals->entry_stack;
  if (memory == nullptr) memory = map_aligned(signal_stack_bytes);
  *static_cast<thread_state**>(memory) = &thread;
  const stack_t stack = {.ss_sp = memory, .ss_flags = 0, .ss_size = signal_stack_bytes};
  sigaltstack(&stack, nullptr);
}

extern "C" void signal_entry(int signal, siginfo_t* info, void* context) {
  thread_state& thread = thread_of_this_stack();
  const std::uint64_t interrupted_tpidr = exchange_tpidr(thread.context.host_tpidr);
  const int interrupted_errno = errno;
  arrival arriving(thread, signal, *info, *static_cast<ucontext_t*>(context), interrupted_tpidr);
  arriving.take();
  errno = interrupted_errno;
  if (!arriving.has_left()) exchange_tpidr(interrupted_tpidr);
}

void end_by_fault(thread_state& thread, const pending_signal& fault) {
  siginfo_t info = fault.info;
  ucontext_t context{};
  std::ranges::copy(thread.context.x, std::begin(context.uc_mcontext.regs));
  context.uc_mcontext.pc = thread.context.pc;
  context.uc_mcontext.sp = thread.context.sp;
  context.uc_mcontext.fault_address = fault.fault_address;
  report_application_fault(fault.signal, thread.context.pc, info.si_addr);
  call_client_handler(fault.signal, &info, &context);
  die_by_signal(fault.signal);
}

}  // namespace host

extern "C" void leave_after_call(host::thread_context* context, std::uint64_t return_address) {
  // X28 points at the start of the thread's record.
  reinterpret_cast<host::thread_state*>(context)->cache.leave_soon_at(return_address);
}

// The client library's calls of sigaction arrive here, because the launcher comes first in the
// process's search order. The host's entry calls the handlers for faults that it stores.
DR_EXPORT int sigaction(int signal, const struct sigaction* action,
                        struct sigaction* old) noexcept {
  if (!host::is_fault_signal(signal)) {
    return host::c_library_sigaction()(signal, action, old);
  }
  const struct sigaction previous = host::client_actions[signal];
  if (action != nullptr) {
    host::client_actions[signal] = *action;
    host::client_handled[signal] |= host::has_handler(*action);
  }
  if (old != nullptr) *old = previous;
  return 0;
}
