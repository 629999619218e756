#include "host/signals.h"

#include <cstring>
#include <dlfcn.h>
#include <sys/mman.h>
#include <ucontext.h>

#include "host/address.h"
#include "host/context_switch.h"
#include "host/fatal.h"
#include "host/include/dr_api.h"
#include "host/thread.h"

namespace host {
namespace {

constexpr int fault_signals[] = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP};
constexpr std::size_t signal_stack_bytes = 256u << 10;  // a frame alone is 70 KB with long vectors

// What the client asked for, by signal. Plain memory: actions are set as in any program, before
// the fault that they are for.
struct sigaction client_actions[NSIG];

bool is_fault_signal(int signal) {
  for (const int fault : fault_signals) {
    if (signal == fault) return true;
  }
  return false;
}

using sigaction_function = int (*)(int, const struct sigaction*, struct sigaction*);

sigaction_function c_library_sigaction() {
  static const auto function = reinterpret_cast<sigaction_function>(dlsym(RTLD_NEXT, "sigaction"));
  return function;
}

bool has_handler(const struct sigaction& action) {
  return action.sa_handler != SIG_DFL && action.sa_handler != SIG_IGN;
}

// Signals that the client has ever asked for. It then tells of its own faults itself.
bool client_handled[NSIG];

// False: the client has no handler for this signal.
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

// The fault repeats once the entry has returned; then the default action ends the process.
void end_by_repeated_fault(int signal) { restore_default_action(signal); }

void report_application_fault(int signal, std::uint64_t pc, const void* address) {
  std::uint32_t word = 0;
  std::memcpy(&word, pointer_to<const void>(pc), sizeof word);
  if (signal == SIGSEGV || signal == SIGBUS) {
    print_line("%s at %#lx, instruction word 0x%08x, accessing %p", name_of(signal), pc, word,
               address);
  } else {
    print_line("%s at %#lx, instruction word 0x%08x", name_of(signal), pc, word);
  }
}

// In the thread's own TPIDR_EL0 from here on.
[[gnu::noinline]] void take_application_fault(thread_state& thread, int signal, siginfo_t* info,
                                              ucontext_t* context) {
  report_application_fault(signal, thread.cache.application_pc(context->uc_mcontext.pc),
                           info->si_addr);
  call_client_handler(signal, info, context);
  end_by_repeated_fault(signal);
}

std::uint64_t exchange_tpidr(std::uint64_t value) {
  std::uint64_t old = 0;
  asm volatile("mrs %0, tpidr_el0\n\tmsr tpidr_el0, %1" : "=&r"(old) : "r"(value) : "memory");
  return old;
}

void fault_entry(int signal, siginfo_t* info, void* raw_context) {
  auto* const context = static_cast<ucontext_t*>(raw_context);
  thread_state* const thread = thread_of_cache_address(context->uc_mcontext.pc);
  if (thread != nullptr) {
    const std::uint64_t application_tpidr = exchange_tpidr(thread->context.host_tpidr);
    take_application_fault(*thread, signal, info, context);
    exchange_tpidr(application_tpidr);
  } else if (!call_client_handler(signal, info, context)) {
    if (!client_handled[signal]) {
      print_line("%s in the launcher or its client, at %#llx, accessing %p", name_of(signal),
                 context->uc_mcontext.pc, info->si_addr);
    }
    end_by_repeated_fault(signal);
  }
}

// Takes a thread out of the cache for good, if it is there. Code of the host and the client is let
// run on: it finds the request when it is done.
void stop_entry(int /*signal*/, siginfo_t* /*info*/, void* raw_context) {
  auto* const context = static_cast<ucontext_t*>(raw_context);
  thread_state* const thread = thread_of_cache_address(context->uc_mcontext.pc);
  if (thread == nullptr || thread->context.stop_requested == 0) return;
  exchange_tpidr(thread->context.host_tpidr);
  thread->context.exit = &stop_record;
  context->uc_mcontext.regs[context_register] = address_of(&thread->context);
  context->uc_mcontext.pc = address_of(&leave_cache);
}

void install(int signal, void (*entry)(int, siginfo_t*, void*), int flags) {
  struct sigaction action = {};
  action.sa_sigaction = entry;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK | flags;
  sigemptyset(&action.sa_mask);
  c_library_sigaction()(signal, &action, nullptr);
}

}  // namespace

void restore_default_action(int signal) {
  struct sigaction action = {};
  action.sa_handler = SIG_DFL;
  c_library_sigaction()(signal, &action, nullptr);
}

void install_signal_handlers() {
  for (const int signal : fault_signals) install(signal, fault_entry, SA_NODEFER);
  install(stop_signal, stop_entry, 0);
}

void install_signal_stack() {
  static thread_local bool installed = false;
  if (installed) return;
  void* const memory =
      mmap(nullptr, signal_stack_bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) fatal("cannot map a signal stack");
  const stack_t stack = {.ss_sp = memory, .ss_flags = 0, .ss_size = signal_stack_bytes};
  sigaltstack(&stack, nullptr);
  installed = true;
}

void raise_fetch_fault(int signal, std::uint64_t pc) {
  print_line("%s at %#lx: there is no code to execute", name_of(signal), pc);
  siginfo_t info = {};
  info.si_signo = signal;
  info.si_addr = pointer_to(pc);
  ucontext_t context = {};
  context.uc_mcontext.pc = pc;
  call_client_handler(signal, &info, &context);
  die_by_signal(signal);
}

bool is_host_signal(int signal) { return is_fault_signal(signal) || signal == stop_signal; }

}  // namespace host

// The client library's calls arrive here, since the launcher comes first among the libraries of
// the process. An action for a fault is kept for the host's own entry to call.
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
