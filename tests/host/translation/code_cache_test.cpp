// Blocks in the code cache: linked, looked up, mapped back to the application, and run.
#include "host/translation/code_cache.h"

#include <gtest/gtest.h>
#include <memory>
#include <sys/syscall.h>
#include <ucontext.h>

#include "host/kernel/kernel_call.h"
#include "host/signals/signal_actions.h"
#include "host/threads/thread.h"
#include "host/translation/context_switch.h"

namespace host {
namespace {

class cache_test : public testing::Test {
 protected:
  cache_test() : thread(std::make_unique<thread_state>()) {
    std::uint64_t tpidr = 0;
    asm("mrs %0, tpidr_el0" : "=r"(tpidr));
    context().host_tpidr = tpidr;
    context().tpidr = tpidr;
    context().exit_entry = reinterpret_cast<std::uint64_t>(&leave_cache_with_record);
  }

  thread_context& context() { return thread->context; }
  code_cache& cache() { return thread->cache; }

  // A block of one instruction and its branch.
  const fragment& install(std::uint64_t pc, std::uint32_t straight, std::uint32_t branch,
                          const exit_record* came_from = nullptr) {
    block_code block;
    emit_straight(straight, pc, false, block);
    emit_control_flow(branch, pc + 4, block);
    return *cache().install(pc, block, came_from);
  }

  const exit_record& run(const fragment& from) {
    enter_cache(&context(), from.entry);
    cache().settle();
    return *context().exit;
  }

  std::unique_ptr<thread_state> thread;
};

constexpr std::uint32_t add_x3_1 = 0x91000463;  // add x3, x3, #1
constexpr std::uint32_t br_x5 = 0xd61f00a0;     // br x5
constexpr std::uint32_t svc = 0xd4000001;       // svc #0

// A signal does this when it finds the thread in a call from that block to the client.
TEST_F(cache_test, leaves_a_linked_loop_at_the_end_of_its_block) {
  const fragment& loop = install(0x1000, add_x3_1, 0x17ffffff);  // b .-4
  code_cache::link(run(loop), loop);
  cache().leave_soon_at(reinterpret_cast<std::uint64_t>(loop.code));
  EXPECT_EQ(run(loop).target, 0x1000u);
  EXPECT_EQ(context().x[3], 2u);
}

// Far more targets than the first table holds, many of them in the same slot.
TEST_F(cache_test, finds_every_target_as_the_table_grows) {
  const fragment& start = install(0x1000, add_x3_1, br_x5);
  constexpr std::uint64_t targets = 3000;
  const auto target = [](std::uint64_t i) { return 0x100000 + (i % 50) * 0x400000 + i * 8; };
  for (std::uint64_t i = 0; i < targets; i++) {
    cache().admit(install(target(i), add_x3_1, svc), 5);
  }
  for (std::uint64_t i = 0; i < targets; i++) {
    context().x[5] = target(i);
    const exit_record& exit = run(start);
    ASSERT_EQ(exit.kind, exit_kind::supervisor_call) << i;
    ASSERT_EQ(exit.target, target(i) + 8);
  }
}

// 1000: add x3, x3, #1; b 2000     2000: b 3000     3000: add x3, x3, #1; svc #0
//
// Each block leads to the next by its last branch. The next block takes the place of that branch
// where it can.
class dropping_test : public cache_test {
 protected:
  void build() {
    cache().flush();
    install(0x1000, add_x3_1, 0x140003ff);
    block_code branch;
    emit_control_flow(0x14000400, 0x2000, branch);
    cache().install(0x2000, branch, &run_at(0x1000));
    install(0x3000, add_x3_1, svc, &run_at(0x1000));
  }

  // Links the exits on the way. Returns the first exit to code that is not translated.
  const exit_record& run_from(const fragment& first) {
    context().x[3] = 0;
    const exit_record* exit = &run(first);
    while (exit->kind == exit_kind::direct && cache().find(exit->target) != nullptr) {
      const fragment& next = *cache().find(exit->target);
      code_cache::link(*exit, next);
      exit = &run(next);
    }
    return *exit;
  }
  const exit_record& run_at(std::uint64_t pc) { return run_from(*cache().find(pc)); }
};

TEST_F(dropping_test, leaves_where_dropped_code_would_have_run) {
  for (const std::uint64_t stale : {0x1000, 0x2000, 0x3000}) {
    SCOPED_TRACE(testing::Message() << std::hex << stale);
    build();
    ASSERT_EQ(run_at(0x1000).kind, exit_kind::supervisor_call);
    EXPECT_EQ(context().x[3], 2u);
    const fragment& was = *cache().find(stale);
    ASSERT_TRUE(cache().drop(stale + 3, stale + 4));
    EXPECT_EQ(cache().find(stale), nullptr);
    for (const std::uint64_t pc : {0x1000, 0x2000, 0x3000}) {
      if (pc == stale) continue;
      EXPECT_EQ(run_at(pc).target, pc < stale ? stale : 0x3008) << std::hex << pc;
    }
    EXPECT_EQ(run_from(was).target, stale);
    install(stale, add_x3_1, svc);
    EXPECT_EQ(run_from(was).target, stale + 8);
    EXPECT_EQ(context().x[3], 1u);
  }
}

TEST_F(dropping_test, drops_all_that_a_range_touches_and_no_more) {
  build();
  ASSERT_TRUE(cache().drop(0x1008, 0x2000));
  EXPECT_EQ(run_at(0x1000).kind, exit_kind::supervisor_call);
  ASSERT_TRUE(cache().drop(0x1007, 0x2001));
  EXPECT_EQ(cache().find(0x1000), nullptr);
  EXPECT_EQ(cache().find(0x2000), nullptr);
  EXPECT_EQ(run_at(0x3000).kind, exit_kind::supervisor_call);
}

// Faults take the thread out of the cache's code through `recover`, as the signal entry does.
class interrupted_test : public cache_test {
 protected:
  interrupted_test() {
    test = this;
    signal_stack.resize(256 << 10);
    const stack_t stack = {.ss_sp = signal_stack.data(), .ss_flags = 0, .ss_size = 256 << 10};
    sigaltstack(&stack, nullptr);
    for (const std::uint64_t signal : faults) set_handler(signal, take);
    for (unsigned i = 0; i < 31; i++) context().x[i] = 0x10 + i;
    context().x[9] = context().x[28] = unmapped;
    context().sp = 0x5550;
    context().nzcv = 0x60000000;
  }

  ~interrupted_test() override {
    for (const std::uint64_t signal : faults) set_handler(signal, nullptr);
    const stack_t none = {.ss_sp = nullptr, .ss_flags = SS_DISABLE, .ss_size = 0};
    sigaltstack(&none, nullptr);
  }

  // Calls the kernel, because the engine's sigaction keeps the actions of faults to itself.
  static void set_handler(std::uint64_t signal, void (*handler)(int, siginfo_t*, void*)) {
    const kernel_action action = {.handler = reinterpret_cast<std::uint64_t>(handler),
                                  .flags = SA_SIGINFO | SA_ONSTACK,
                                  .restorer = 0,
                                  .mask = 0};
    kernel_call(SYS_rt_sigaction, signal, reinterpret_cast<std::uint64_t>(&action), 0,
                sizeof action.mask);
  }

  static void take(int, siginfo_t*, void* raw) {
    mcontext_t& machine = static_cast<ucontext_t*>(raw)->uc_mcontext;
    test->cache().recover(machine, test->context());
    test->context().exit = &recovered_record;
    machine.regs[28] = reinterpret_cast<std::uint64_t>(&test->context());
    machine.pc = reinterpret_cast<std::uint64_t>(&leave_cache);
  }

  static constexpr std::uint64_t faults[] = {SIGSEGV, SIGBUS, SIGILL, SIGTRAP};
  static constexpr std::uint64_t unmapped = 0x1008;
  static constexpr exit_record recovered_record = {.kind = exit_kind::interrupted};
  static inline interrupted_test* test = nullptr;
  std::vector<char> signal_stack;
};

TEST_F(interrupted_test, recovers_what_another_register_held_for_x28) {
  context().x[28] = 0x77;
  block_code block;
  const words code = {
      0xc85f7fe0,  // ldxr x0, [sp]
      0x9100079c,  // add  x28, x28, #1
      0xf9400121,  // ldr  x1, [x9]
      0xc8017fe0,  // stxr w1, x0, [sp]
  };
  ASSERT_TRUE(emit_exclusive(code, 0x1000, block));
  alignas(16) std::uint64_t memory = 5;
  context().sp = reinterpret_cast<std::uint64_t>(&memory);
  ASSERT_EQ(run(*cache().install(0x1000, block)).kind, exit_kind::interrupted);
  EXPECT_EQ(context().pc, 0x1008u);
  EXPECT_EQ(context().x[0], 5u);
  EXPECT_EQ(context().x[2], 0x12u);
  EXPECT_EQ(context().x[28], 0x78u);
}

constexpr std::uint32_t brk = 0xd4200000;  // brk #0: the moment at which a signal arrives

// A loop that calls two functions in turn. Their addresses share a slot of the branch table:
//
//   1000: add x3, x3, #1; blr x5     2000: add x4, x4, #1; ret      a000: add x7, x7, #1; ret
//   1008: eor x5, x5, #0x8000; sub x6, x6, #1 (by b .+4); cbnz x6, 1000; svc #0
class calling_test : public interrupted_test {
 protected:
  calling_test() {
    test_ = this;
    set_handler(SIGTRAP, interrupt);
  }

  struct two_words {
    std::uint64_t pc;
    std::uint32_t straight;
    std::uint32_t branch;
  };
  static constexpr two_words program[] = {
      {0x1000, add_x3_1, 0xd63f00a0},    // blr x5
      {0x2000, 0x91000484, 0xd65f03c0},  // add x4, x4, #1; ret
      {0xa000, 0x910004e7, 0xd65f03c0},  // add x7, x7, #1; ret
      {0x1008, 0xd27100a5, 0x14000001},  // eor x5, x5, #0x8000; b .+4
      {0x1010, 0xd10004c6, 0xb5ffff66},  // sub x6, x6, #1; cbnz x6, .-20
      {0x1018, 0xd503201f, svc},         // nop
  };

  const fragment& block_at(std::uint64_t pc, const exit_record* came_from) {
    if (const fragment* known = cache().find(pc)) return *known;
    for (const two_words& each : program) {
      if (each.pc == pc) return install(pc, each.straight, each.branch, came_from);
    }
    ADD_FAILURE() << "a branch to " << std::hex << pc;
    return block_at(0x1018, nullptr);
  }

  // Runs the loop as the dispatcher does. Returns how often the cache was left.
  int run_loop(std::uint64_t rounds) {
    context().x[3] = context().x[4] = context().x[7] = 0;
    context().x[5] = 0x2000;
    context().x[6] = rounds;
    context().pc = 0x1000;
    const exit_record* came_from = nullptr;
    for (int exits = 1;; exits++) {
      const fragment& next = block_at(context().pc, came_from);
      if (came_from != nullptr && came_from->kind == exit_kind::direct) {
        code_cache::link(*came_from, next);
      }
      if (came_from != nullptr && came_from->kind == exit_kind::indirect) {
        cache().admit(next, came_from->reg);
      }
      came_from = &run(next);
      if (came_from->kind == exit_kind::supervisor_call) return exits;
      if (came_from->kind == exit_kind::direct) context().pc = came_from->target;
    }
  }

  void write(std::uint32_t word) {
    *interrupted_at = word;
    __builtin___clear_cache(reinterpret_cast<char*>(interrupted_at),
                            reinterpret_cast<char*>(interrupted_at + 1));
  }

  // Constants are addresses. Their upper halves are small numbers, and no instruction is so small.
  static bool is_code(std::uint32_t word) { return word > 0xffff; }

  bool may_be_run(std::uint32_t* word, const std::uint32_t* end) {
    const bool in_arena = cache().contains(reinterpret_cast<std::uint64_t>(word)) && word + 1 < end;
    return in_arena && is_code(word[0]) && is_code(word[1]);
  }

  // After six rounds.
  void expect_the_loops_results() {
    EXPECT_EQ(context().x[3], 6u);
    EXPECT_EQ(context().x[4], 3u);
    EXPECT_EQ(context().x[7], 3u);
    EXPECT_EQ(context().x[5], 0x2000u);
    for (const unsigned untouched : {0, 1, 2, 8}) {
      EXPECT_EQ(context().x[untouched], 0x10 + untouched);
    }
    EXPECT_EQ(context().x[28], unmapped);
    EXPECT_EQ(context().x[30], 0x1008u);
  }

  // A signal arrives before this word is run.
  void interrupt_at(std::uint32_t* word) {
    interrupted_at = word;
    was_interrupted = false;
    replaced = *word;
    write(brk);
  }

  static void interrupt(int, siginfo_t*, void* raw) {
    mcontext_t& machine = static_cast<ucontext_t*>(raw)->uc_mcontext;
    test_->write(test_->replaced);
    test_->was_interrupted = true;
    test_->rounds_left = machine.regs[6];
    test_->cache().leave_soon(machine);
  }

  static inline calling_test* test_ = nullptr;
  std::uint32_t* interrupted_at = nullptr;
  std::uint32_t replaced = 0;
  bool was_interrupted = false;
  std::uint64_t rounds_left = 0;
};

// The signal may find the thread in a block, an entry, a stub or the lookup. Nothing is lost in any
// of them: the thread leaves before the next round, and then runs as before.
TEST_F(calling_test, leaves_wherever_it_is_interrupted) {
  run_loop(6);
  std::uint32_t* const start = block_at(0x1000, nullptr).code;
  std::uint32_t* const end = start + (32 << 10) / 4;
  int places = 0;
  for (std::uint32_t* word = start - 600; word < end; word++) {
    if (!may_be_run(word, end)) continue;
    SCOPED_TRACE(testing::Message() << word - start << ", word " << std::hex << *word);
    interrupt_at(word);
    const int exits = run_loop(6);
    if (was_interrupted) places++;
    EXPECT_TRUE(exits > 1 || !was_interrupted || rounds_left == 0);
    if (!was_interrupted) write(replaced);
    expect_the_loops_results();
    run_loop(6);
    ASSERT_EQ(run_loop(6), 1);
  }
  EXPECT_GT(places, 50);
}

// Interrupts the shared routines before the lookup has found anything.
TEST_F(calling_test, leaves_wherever_a_new_cache_is_interrupted) {
  std::uint32_t* const start = block_at(0x1000, nullptr).code;
  int places = 0;
  for (std::uint32_t* word = start - 600; word < start; word++) {
    if (!may_be_run(word, start)) continue;
    SCOPED_TRACE(testing::Message() << word - start << ", word " << std::hex << *word);
    cache().flush();
    interrupt_at(word);
    run_loop(6);
    if (was_interrupted) places++;
    expect_the_loops_results();
  }
  EXPECT_GT(places, 10);
}

TEST_F(cache_test, is_empty_after_a_flush_and_refuses_more_than_it_holds) {
  block_code large;
  large.code.assign(250'000, 0xd503201f);  // 1 MB, nearly
  std::uint64_t pc = 0x1000;
  int installed = 0;
  while (cache().install(pc += 4, large) != nullptr) installed++;
  EXPECT_EQ(installed, 67);
  EXPECT_NE(cache().find(0x1004), nullptr);
  cache().flush();
  EXPECT_EQ(cache().find(0x1004), nullptr);
  EXPECT_NE(cache().install(pc, large), nullptr);
}

}  // namespace
}  // namespace host
