#include "host/signals/signal_frame.h"

#include <algorithm>
#include <cstring>
#include <sys/mman.h>
#include <vector>

#include "host/kernel/address.h"
#include "host/kernel/fatal.h"
#include "host/kernel/guarded_copy.h"
#include "host/kernel/kernel_action.h"
#include "host/signals/frame_records.h"
#include "host/signals/thread_signals.h"
#include "host/threads/thread.h"

namespace host {
namespace {

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

void write_registers(const thread_context& from, const pending_signal& arrived, mcontext_t& to) {
  std::ranges::copy(from.x, std::begin(to.regs));
  to.sp = from.sp;
  to.pc = from.pc;
  to.pstate = from.nzcv & condition_flags;
  to.fault_address = arrived.fault_address;
}

// The frame as it will lie at `sp`.
std::vector<unsigned char> build_frame(thread_state& thread, const pending_signal& arrived,
                                       std::uint64_t mask, const frame_layout& layout,
                                       std::uint64_t sp) {
  signal_frame fixed{.info = arrived.info, .context = {}};
  fixed.context.uc_stack = thread.signals->alternate_stack;
  // As in the kernel, the frame does not say whether the stack is in use.
  if (signal_stack_status(thread) == SS_DISABLE) fixed.context.uc_stack.ss_flags |= SS_DISABLE;
  std::memcpy(&fixed.context.uc_sigmask, &mask, sizeof mask);
  write_registers(thread.context, arrived, fixed.context.uc_mcontext);
  std::vector<unsigned char> made(layout.size);
  std::memcpy(made.data(), &fixed, sizeof fixed);
  write_frame_records(thread, arrived, layout, sp, made);
  return made;
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
    context.x[1] = sp + offsetof(signal_frame, info);
    context.x[2] = sp + offsetof(signal_frame, context);
  }
  constexpr std::uint64_t has_restorer = 0x04000000;
  context.x[29] = record;
  context.x[30] = (action.flags & has_restorer) != 0 ? action.restorer : return_code();
  context.sp = sp;
  context.pc = action.handler;
}

void read_registers(const mcontext_t& from, thread_context& to) {
  std::ranges::copy(from.regs, to.x);
  to.sp = from.sp;
  to.pc = from.pc;
  to.nzcv = from.pstate & condition_flags;
}

void restore_alternate_stack(thread_state& thread, const ucontext_t& from) {
  const stack_t& stack = from.uc_stack;
  const bool disabled = (stack.ss_flags & SS_DISABLE) != 0;
  thread.signals->alternate_stack = {.ss_sp = disabled ? nullptr : stack.ss_sp,
                                     .ss_flags = stack.ss_flags & stack_autodisarm,
                                     .ss_size = disabled ? 0 : stack.ss_size};
}

}  // namespace

int signal_stack_status(const thread_state& thread) {
  if (thread.signals->alternate_stack.ss_size == 0) return SS_DISABLE;
  return is_on(thread.signals->alternate_stack, thread.context.sp) ? SS_ONSTACK : 0;
}

bool push_signal_frame(thread_state& thread, pending_signal arrived, const kernel_action& action,
                       std::uint64_t mask) {
  const frame_layout layout = frame_layout_for(thread, arrived);
  const std::uint64_t record = align_down(top_of_stack(thread, action) - sizeof(frame_record));
  const std::uint64_t sp = align_down(record - layout.size);
  if (overflows(thread, sp)) return false;
  const std::vector<unsigned char> made = build_frame(thread, arrived, mask, layout, sp);
  const frame_record interrupted = {thread.context.x[29], thread.context.x[30]};
  if (!write_to_application(record, interrupted)) return false;
  if (guarded_copy(pointer_to(sp), made.data(), made.size()) != 0) return false;
  if ((thread.signals->alternate_stack.ss_flags & stack_autodisarm) != 0) {
    thread.signals->alternate_stack = {.ss_sp = nullptr, .ss_flags = 0, .ss_size = 0};
  }
  enter_handler(thread.context, action, arrived.signal, sp, record);
  return true;
}

frame_state pop_signal_frame(thread_state& thread, std::uint64_t& mask) {
  signal_frame found{};
  const std::uint64_t address = thread.context.sp;
  if (address % stack_alignment != 0 || !read_from_application(address, found)) {
    return frame_state::missing;
  }
  std::memcpy(&mask, &found.context.uc_sigmask, sizeof mask);
  read_registers(found.context.uc_mcontext, thread.context);
  if (!read_frame_records(thread, address, found)) return frame_state::bad;
  if (signal_stack_status(thread) != SS_ONSTACK) restore_alternate_stack(thread, found.context);
  return frame_state::good;
}

}  // namespace host
