// Blocks in the code cache: linked, looked up, mapped back to the application, and run.
#include "host/code_cache.h"

#include <cstring>
#include <gtest/gtest.h>
#include <memory>

#include "host/context_switch.h"
#include "host/thread.h"

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
  const fragment& install(std::uint64_t pc, std::uint32_t straight, std::uint32_t branch) {
    block_code block;
    block.map.push_back({0, pc});
    emit_straight(straight, pc, false, block);
    block.map.push_back({static_cast<std::uint32_t>(block.code.size()), pc + 4});
    emit_control_flow(branch, pc + 4, block);
    return *cache().install(pc, block);
  }

  const exit_record& run(const fragment& from) {
    enter_cache(&context(), from.code);
    return *context().exit;
  }

  std::unique_ptr<thread_state> thread;
};

constexpr std::uint32_t add_x3_1 = 0x91000463;  // add x3, x3, #1
constexpr std::uint32_t b_8 = 0x14000002;       // b .+8
constexpr std::uint32_t br_x5 = 0xd61f00a0;     // br x5
constexpr std::uint32_t svc = 0xd4000001;       // svc #0

TEST_F(cache_test, leaves_by_a_direct_exit_until_it_is_linked) {
  const fragment& first = install(0x1000, add_x3_1, b_8);
  const fragment& second = install(0x100c, add_x3_1, svc);
  const exit_record& exit = run(first);
  EXPECT_EQ(exit.kind, exit_kind::direct);
  EXPECT_EQ(exit.target, 0x100cu);
  EXPECT_EQ(context().x[3], 1u);
  code_cache::link(exit, second);
  EXPECT_EQ(run(first).kind, exit_kind::supervisor_call);
  EXPECT_EQ(context().x[3], 3u);
}

TEST_F(cache_test, looks_indirect_targets_up_without_leaving) {
  const fragment& first = install(0x1000, add_x3_1, br_x5);
  const fragment& second = install(0x2000, add_x3_1, svc);
  context().x[5] = 0x2000;
  EXPECT_EQ(run(first).kind, exit_kind::indirect);
  EXPECT_EQ(context().pc, 0x2000u);
  cache().admit(second);
  EXPECT_EQ(run(first).kind, exit_kind::supervisor_call);
  cache().forget_branches();
  EXPECT_EQ(run(first).kind, exit_kind::indirect);
  EXPECT_EQ(context().x[3], 4u);
}

// Far more targets than the first table holds, many of them in one place of it.
TEST_F(cache_test, finds_every_target_as_the_table_grows) {
  const fragment& start = install(0x1000, add_x3_1, br_x5);
  constexpr std::uint64_t targets = 3000;
  const auto target = [](std::uint64_t i) { return 0x100000 + (i % 50) * 0x400000 + i * 8; };
  for (std::uint64_t i = 0; i < targets; i++) {
    cache().admit(install(target(i), add_x3_1, svc));
  }
  for (std::uint64_t i = 0; i < targets; i++) {
    context().x[5] = target(i);
    const exit_record& exit = run(start);
    ASSERT_EQ(exit.kind, exit_kind::supervisor_call) << i;
    ASSERT_EQ(exit.target, target(i) + 8);
  }
}

TEST_F(cache_test, keeps_every_register_through_entry_lookup_and_exit) {
  const fragment& first = install(0x1000, 0xd503201f, br_x5);  // nop
  cache().admit(install(0x2000, 0xd503201f, svc));
  for (unsigned i = 0; i < 31; i++) context().x[i] = 0x1111111111111111 * (i % 15) + i;
  for (unsigned i = 0; i < sizeof context().q; i++) {
    (&context().q[0][0])[i] = static_cast<std::uint8_t>(i * 7);
  }
  context().x[5] = 0x2000;
  context().sp = 0x7654'3210;
  context().nzcv = 0xa0000000;
  context().fpcr = 0x01c00000;
  context().fpsr = 0x0800001f;
  const thread_context before = context();
  ASSERT_EQ(run(first).kind, exit_kind::supervisor_call);
  const thread_context& after = context();
  for (unsigned i = 0; i < 31; i++) EXPECT_EQ(after.x[i], before.x[i]) << i;
  EXPECT_EQ(std::memcmp(after.q, before.q, sizeof before.q), 0);
  EXPECT_EQ(after.sp, before.sp);
  EXPECT_EQ(after.nzcv, before.nzcv);
  EXPECT_EQ(after.fpcr, before.fpcr);
  EXPECT_EQ(after.fpsr, before.fpsr);
  EXPECT_EQ(after.tpidr, before.tpidr);
}

TEST_F(cache_test, tells_the_application_address_of_each_word) {
  const fragment& first = install(0x1000, 0x8b010380, b_8);  // add x0, x28, x1: four words
  const fragment& second = install(0x2000, add_x3_1, svc);
  const auto address = [](const fragment& f, int word) {
    return reinterpret_cast<std::uint64_t>(f.code + word);
  };
  EXPECT_EQ(cache().application_pc(address(first, 0)), 0x1000u);  // the entry word
  EXPECT_EQ(cache().application_pc(address(first, 4)), 0x1000u);
  EXPECT_EQ(cache().application_pc(address(first, 5)), 0x1004u);
  EXPECT_EQ(cache().application_pc(address(second, 1)), 0x2000u);
  EXPECT_EQ(cache().application_pc(address(first, 0) - 4), 0u);  // the shared routines
}

TEST_F(cache_test, is_empty_after_a_flush_and_refuses_more_than_it_holds) {
  block_code large;
  large.code.assign(1 << 20, 0xd503201f);  // 4 MB
  std::uint64_t pc = 0x1000;
  int installed = 0;
  while (cache().install(pc += 4, large) != nullptr) installed++;
  EXPECT_EQ(installed, 15);
  EXPECT_NE(cache().find(0x1004), nullptr);
  cache().flush();
  EXPECT_EQ(cache().find(0x1004), nullptr);
  EXPECT_NE(cache().install(pc, large), nullptr);
}

}  // namespace
}  // namespace host
