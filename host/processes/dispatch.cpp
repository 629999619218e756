#include "host/processes/dispatch.h"

#include <csignal>

#include "host/client/block_builder.h"
#include "host/client/events.h"
#include "host/kernel/fatal.h"
#include "host/memory/memory_map.h"
#include "host/signals/signal_delivery.h"
#include "host/translation/context_switch.h"

namespace host {
namespace {

system_call_handler handle_system_call = nullptr;

constexpr std::uint64_t instruction_cache_line = 64;  // at least; CTR_EL0.IminLine may say less

// Returns null if there is no code at pc. The fault is then pending.
const fragment* translate(thread_state& thread, std::uint64_t pc, const exit_record*& came_from) {
  if (const fragment* known = thread.cache.find(pc)) return known;
  const auto block = pc % 4 == 0 ? build_block(thread, pc) : std::nullopt;
  if (!block) {
    raise_fetch_fault(thread, pc % 4 == 0 ? SIGSEGV : SIGBUS);
    return nullptr;
  }
  const fragment* made = thread.cache.install(pc, *block, came_from);
  if (made == nullptr) {
    thread.cache.flush();
    came_from = nullptr;
    made = thread.cache.install(pc, *block);
  }
  if (made == nullptr) fatal("the block at %#lx is larger than the code cache", pc);
  return made;
}

void invalidate_line(const thread_state& thread, unsigned reg) {
  const std::uint64_t address = reg == zero_register ? 0 : thread.context.x[reg];
  const std::uint64_t line = address & ~(instruction_cache_line - 1);
  note_rewritten(line, line + instruction_cache_line);
}

[[noreturn]] void refuse(const exit_record& exit) {
  fatal(
      "the instruction word 0x%08x at %#lx is not supported: it may use X28 in a way that is not "
      "known",
      exit.word, exit.target);
}

class dispatcher {
 public:
  explicit dispatcher(thread_state& thread) : thread_(thread) {}

  void run() {
    while (!ended_ && !thread_.stop_requested) {
      if (std::atomic_ref(thread_.context.attention).exchange(0) != 0) {
        deliver_signals(thread_);
        came_from_ = nullptr;
      } else {
        run_block();
      }
    }
  }

 private:
  void run_block() {
    if (thread_.stale.any()) drop_stale_code();
    const fragment* const next = translate(thread_, thread_.context.pc, came_from_);
    if (next == nullptr) return;
    if (came_from_ != nullptr && came_from_->kind == exit_kind::direct) {
      code_cache::link(*came_from_, *next);
    }
    if (came_from_ != nullptr && came_from_->kind == exit_kind::indirect) {
      thread_.cache.admit(*next, came_from_->reg);
    }
    run_in_cache(*next);
  }

  void drop_stale_code() {
    for (const auto& [start, end] : thread_.stale.take()) {
      if (thread_.cache.drop(start, end)) continue;
      thread_.cache.flush();
      came_from_ = nullptr;
    }
  }

  // A thread that reports stale code checks in_cache afterwards, and this thread checks for stale
  // code after it has set in_cache. So at least one of the two sees what the other did.
  void run_in_cache(const fragment& next) {
    thread_.in_cache = true;
    if (!thread_.stale.any()) {
      enter_cache(&thread_.context, next.entry);
      thread_.cache.settle();
      thread_.in_cache = false;
      leave(*thread_.context.exit);
    }
    thread_.in_cache = false;
  }

  void leave(const exit_record& exit) {
    came_from_ = &exit;
    switch (exit.kind) {
      case exit_kind::indirect: return;  // thread_context::pc is set
      case exit_kind::direct:
      case exit_kind::synchronize: break;
      case exit_kind::interrupted: came_from_ = nullptr; return;
      case exit_kind::refused: refuse(exit);
      case exit_kind::invalidate: invalidate_line(thread_, exit.reg); break;
      case exit_kind::supervisor_call:
        thread_.context.pc = exit.target;
        ended_ = handle_system_call(thread_) == after_call::end_thread;
        came_from_ = nullptr;  // a vforked child has used this thread's cache
        return;
    }
    thread_.context.pc = exit.target;
  }

  thread_state& thread_;
  const exit_record* came_from_ = nullptr;  // the exit taken last, if it still exists
  bool ended_ = false;
};

}  // namespace

void set_system_call_handler(system_call_handler handler) { handle_system_call = handler; }

void run_thread(thread_state& thread) {
  run_thread_init_events(thread);
  run_blocks(thread);
  run_thread_exit_events(thread);
}

void run_blocks(thread_state& thread) { dispatcher(thread).run(); }

}  // namespace host
