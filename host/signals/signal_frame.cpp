#include "host/signals/signal_frame.h"

#include <algorithm>
#include <asm/sigcontext.h>
#include <cstring>
#include <sys/mman.h>

#include "host/kernel/address.h"
#include "host/kernel/fatal.h"
#include "host/kernel/guarded_copy.h"
#include "host/kernel/kernel_action.h"
#include "host/signals/thread_signals.h"
#include "host/threads/thread.h"

namespace host {
namespace {

struct frame {
  siginfo_t info;
  ucontext_t context;
};
static_assert(sizeof(siginfo_t) == 128 && offsetof(ucontext_t, uc_sigmask) == 40 &&
                  offsetof(ucontext_t, uc_mcontext) == 176,
              "the C library's types match the kernel's, except for the space after the mask");

// The frame record that x29 points at in a handler. It holds the interrupted function's x29 and
// x30, so that a debugger can walk the stack.
struct frame_record {
  std::uint64_t fp;
  std::uint64_t lr;
};

constexpr std::uint64_t stack_alignment = 16;
constexpr std::uint64_t condition_flags = 0xf0000000;

std::uint64_t align_down(std::uint64_t address) { return address & ~(stack_alignment - 1); }

bool is_on(const stack_t& stack, std::uint64_t sp) {
  const std::uint64_t start = address_of(stack.ss_sp);
  return sp > start && sp - start <= stack.ss_size;
}

template <typename Record>
unsigned char* append(unsigned char* at, const Record& record) {
  std::memcpy(at, &record, sizeof record);
  return at + sizeof record;
}

void write_vectors(const thread_context& from, fpsimd_context& to) {
  to.head = {.magic = FPSIMD_MAGIC, .size = sizeof to};
  to.fpsr = static_cast<std::uint32_t>(from.fpsr);
  to.fpcr = static_cast<std::uint32_t>(from.fpcr);
  std::memcpy(to.vregs, from.q, sizeof to.vregs);
}

void write_registers(const thread_context& from, const pending_signal& arrived, mcontext_t& to) {
  std::ranges::copy(from.x, std::begin(to.regs));
  to.sp = from.sp;
  to.pc = from.pc;
  to.pstate = from.nzcv & condition_flags;
  to.fault_address = arrived.fault_address;
  fpsimd_context vectors{};
  write_vectors(from, vectors);
  unsigned char* at = append(to.__reserved, vectors);
  if (arrived.syndrome == 0) return;
  append(at, esr_context{.head = {.magic = ESR_MAGIC, .size = sizeof(esr_context)},
                         .esr = arrived.syndrome});
}

// The address below which the frame goes: the top of the alternate stack if the action asks for
// that stack and it is not in use.
std::uint64_t top_of_stack(const thread_state& thread, const kernel_action& action) {
  const bool alternate = (action.flags & SA_ONSTACK) != 0 && signal_stack_status(thread) == 0;
  if (!alternate) return thread.context.sp;
  return address_of(thread.signals->alternate_stack.ss_sp) +
         thread.signals->alternate_stack.ss_size;
}

// The frame of a program that is on its alternate stack must fit on that stack.
bool overflows(const thread_state& thread, std::uint64_t sp) {
  return signal_stack_status(thread) == SS_ONSTACK && !is_on(thread.signals->alternate_stack, sp);
}

// C libraries and unwinders recognise the return from a handler by these two instructions:
// mov x8, #139 (rt_sigreturn); svc #0. The kernel keeps them in the vdso. This page is the host's,
// but the application may read and run it in the same way.
std::uint64_t return_code() {
  static const std::uint64_t code = [] {
    constexpr std::uint32_t words[] = {0xd2801168, 0xd4000001};
    void* const page =
        mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED) fatal("cannot map a page for the return from signal handlers");
    std::memcpy(page, words, sizeof words);
    mprotect(page, 4096, PROT_READ | PROT_EXEC);
    return address_of(page);
  }();
  return code;
}

void enter_handler(thread_context& context, const kernel_action& action, int signal,
                   std::uint64_t sp, std::uint64_t record) {
  context.x[0] = static_cast<std::uint64_t>(signal);
  if ((action.flags & SA_SIGINFO) != 0) {
    context.x[1] = sp + offsetof(frame, info);
    context.x[2] = sp + offsetof(frame, context);
  }
  constexpr std::uint64_t has_restorer = 0x04000000;
  context.x[29] = record;
  context.x[30] = (action.flags & has_restorer) != 0 ? action.restorer : return_code();
  context.sp = sp;
  context.pc = action.handler;
}

void read_vectors(const fpsimd_context& from, thread_context& to) {
  to.fpsr = from.fpsr;
  to.fpcr = from.fpcr;
  std::memcpy(to.q, from.vregs, sizeof to.q);
}

// A handler may have moved the records. Like the kernel, this finds them by their headers.
void read_records(const mcontext_t& from, thread_context& to) {
  std::size_t at = 0;
  while (at + sizeof(fpsimd_context) <= sizeof from.__reserved) {
    fpsimd_context record{};
    std::memcpy(&record, from.__reserved + at, sizeof record);
    if (record.head.magic == FPSIMD_MAGIC) return read_vectors(record, to);
    if (record.head.size == 0) return;
    at += record.head.size;
  }
}

}  // namespace

int signal_stack_status(const thread_state& thread) {
  if (thread.signals->alternate_stack.ss_size == 0) return SS_DISABLE;
  return is_on(thread.signals->alternate_stack, thread.context.sp) ? SS_ONSTACK : 0;
}

bool push_signal_frame(thread_state& thread, const pending_signal& arrived,
                       const kernel_action& action, std::uint64_t mask) {
  const std::uint64_t record = align_down(top_of_stack(thread, action) - sizeof(frame_record));
  const std::uint64_t sp = align_down(record - sizeof(frame));
  if (overflows(thread, sp)) return false;
  frame made{.info = arrived.info, .context = {}};
  made.context.uc_stack = thread.signals->alternate_stack;
  // As in the kernel, the frame does not say whether the stack is in use.
  if (signal_stack_status(thread) == SS_DISABLE) made.context.uc_stack.ss_flags |= SS_DISABLE;
  std::memcpy(&made.context.uc_sigmask, &mask, sizeof mask);
  write_registers(thread.context, arrived, made.context.uc_mcontext);
  const frame_record interrupted = {thread.context.x[29], thread.context.x[30]};
  if (!write_to_application(record, interrupted) || !write_to_application(sp, made)) return false;
  if ((thread.signals->alternate_stack.ss_flags & stack_autodisarm) != 0) {
    thread.signals->alternate_stack = {.ss_sp = nullptr, .ss_flags = 0, .ss_size = 0};
  }
  enter_handler(thread.context, action, arrived.signal, sp, record);
  return true;
}

bool pop_signal_frame(thread_state& thread, std::uint64_t& mask) {
  frame found{};
  thread_context& context = thread.context;
  if (context.sp % stack_alignment != 0 || !read_from_application(context.sp, found)) return false;
  const mcontext_t& machine = found.context.uc_mcontext;
  std::ranges::copy(machine.regs, context.x);
  context.sp = machine.sp;
  context.pc = machine.pc;
  context.nzcv = machine.pstate & condition_flags;
  read_records(machine, context);
  std::memcpy(&mask, &found.context.uc_sigmask, sizeof mask);
  const stack_t& stack = found.context.uc_stack;
  if (signal_stack_status(thread) != SS_ONSTACK) {
    const bool disabled = (stack.ss_flags & SS_DISABLE) != 0;
    thread.signals->alternate_stack = {.ss_sp = disabled ? nullptr : stack.ss_sp,
                                       .ss_flags = stack.ss_flags & stack_autodisarm,
                                       .ss_size = disabled ? 0 : stack.ss_size};
  }
  return true;
}

}  // namespace host
