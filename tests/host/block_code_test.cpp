// The instructions that end a block, as words with their disassembly; where the words branch to is
// open until the block has an address, and stands in the list of exits. The instruction is at
// 0x412340.
#include "host/block_code.h"

#include <gtest/gtest.h>

namespace host {
namespace {

constexpr std::uint64_t at = 0x412340;

struct expected_exit {
  std::uint32_t index;
  exit_kind kind;
  std::uint64_t target;
};

struct ending {
  const char* name;
  std::uint32_t before;
  words after;
  std::vector<expected_exit> exits;
  std::vector<std::uint32_t> lookups;
};

void PrintTo(const ending& e, std::ostream* out) { *out << e.name; }

class ends_block : public testing::TestWithParam<ending> {};

TEST_P(ends_block, with_the_listed_words) {
  block_code out;
  emit_control_flow(GetParam().before, at, out);
  EXPECT_EQ(out.code, GetParam().after);
  EXPECT_EQ(out.lookups, GetParam().lookups);
  ASSERT_EQ(out.exits.size(), GetParam().exits.size());
  for (std::size_t i = 0; i < out.exits.size(); i++) {
    EXPECT_EQ(out.exits[i].index, GetParam().exits[i].index);
    EXPECT_EQ(out.exits[i].record.kind, GetParam().exits[i].kind);
    EXPECT_EQ(out.exits[i].record.target, GetParam().exits[i].target);
  }
}

constexpr std::uint32_t open = 0x14000000;  // b .
constexpr auto direct = exit_kind::direct;

const ending direct_branches[] = {
    {"b", 0x17ffffff, {open}, {{0, direct, at - 4}}, {}},  // b .-4
    {"bl",                                                 // bl .+0x1000
     0x94000400,
     {
         0xd284689e,  // mov  x30, #0x2344
         0xf2a0083e,  // movk x30, #0x41, lsl #16
         open,
     },
     {{2, direct, at + 0x1000}},
     {}},
};

const ending conditional_branches[] = {
    {"b_eq",  // b.eq .+0x100
     0x54000800,
     {
         0x54000040,  // b.eq .+8
         open,
         open,
     },
     {{1, direct, at + 4}, {2, direct, at + 0x100}},
     {}},
    {"tbnz_backward",  // tbnz x9, #45, .-0x20
     0xb76fff09,
     {
         0xb7680049,  // tbnz x9, #45, .+8
         open,
         open,
     },
     {{1, direct, at + 4}, {2, direct, at - 0x20}},
     {}},
    {"cbz_x28",  // cbz x28, .+0x10
     0xb400009c,
     {
         0xf9000380,  // str x0, [x28]
         0xf9407380,  // ldr x0, [x28, #224]
         0xb4000060,  // cbz x0, .+12
         0xf9400380,  // ldr x0, [x28]
         open,
         0xf9400380,  // ldr x0, [x28]
         open,
     },
     {{4, direct, at + 4}, {6, direct, at + 0x10}},
     {}},
};

const ending indirect_branches[] = {
    {"br",  // br x17
     0xd61f0220,
     {
         0xa9000780,  // stp x0, x1, [x28]
         0xaa1103e0,  // mov x0, x17
         open,
     },
     {},
     {2}},
    {"br_x0", 0xd61f0000, {0xa9000780, open}, {}, {1}},            // stp x0, x1, [x28]
    {"ret", 0xd65f03c0, {0xa9000780, 0xaa1e03e0, open}, {}, {2}},  // mov x0, x30
    {"blr_x30",  // blr x30: the target is read before the link is written
     0xd63f03c0,
     {
         0xa9000780,  // stp  x0, x1, [x28]
         0xaa1e03e0,  // mov  x0, x30
         0xd284689e,  // mov  x30, #0x2344
         0xf2a0083e,  // movk x30, #0x41, lsl #16
         open,
     },
     {},
     {4}},
    {"blr_x28",  // blr x28
     0xd63f0380,
     {
         0xa9000780,  // stp  x0, x1, [x28]
         0xf9407380,  // ldr  x0, [x28, #224]
         0xd284689e,  // mov  x30, #0x2344
         0xf2a0083e,  // movk x30, #0x41, lsl #16
         open,
     },
     {},
     {4}},
    {"retab",  // retab
     0xd65f0fff,
     {
         0xa9000780,  // stp   x0, x1, [x28]
         0xaa1e03e0,  // mov   x0, x30
         0xdac117e0,  // autib x0, sp
         open,
     },
     {},
     {3}},
    {"braa_modifier_x0",  // braa x1, x0
     0xd71f0820,
     {
         0xa9000780,  // stp   x0, x1, [x28]
         0xaa0103e0,  // mov   x0, x1
         0xf9400381,  // ldr   x1, [x28]
         0xdac11020,  // autia x0, x1
         open,
     },
     {},
     {4}},
    {"braaz",  // braaz x3
     0xd61f087f,
     {
         0xa9000780,  // stp    x0, x1, [x28]
         0xaa0303e0,  // mov    x0, x3
         0xdac133e0,  // autiza x0
         open,
     },
     {},
     {3}},
};

const ending calls_of_the_translator[] = {
    {"svc", 0xd4000001, {open}, {{0, exit_kind::supervisor_call, at + 4}}, {}},  // svc #0
    {"ic", 0xd50b7523, {open}, {{0, exit_kind::invalidate, at + 4}}, {}},        // ic ivau, x3
    {"later_branch", 0x74000000, {open}, {{0, exit_kind::refused, at}}, {}},     // cbgt w0, w0, .
};

constexpr auto name_of = [](const auto& info) { return std::string(info.param.name); };
INSTANTIATE_TEST_SUITE_P(direct, ends_block, testing::ValuesIn(direct_branches), name_of);
INSTANTIATE_TEST_SUITE_P(conditional, ends_block, testing::ValuesIn(conditional_branches), name_of);
INSTANTIATE_TEST_SUITE_P(indirect, ends_block, testing::ValuesIn(indirect_branches), name_of);
INSTANTIATE_TEST_SUITE_P(others, ends_block, testing::ValuesIn(calls_of_the_translator), name_of);

TEST(emit_straight, leaves_sve_alone_where_it_traps_and_mangles_it_where_it_runs) {
  constexpr std::uint32_t cntb_x28 = 0x0420e3fc;  // cntb x28
  block_code trapping;
  emit_straight(cntb_x28, at, false, trapping);
  EXPECT_EQ(trapping.code, words{cntb_x28});
  block_code running;
  emit_straight(cntb_x28, at, true, running);
  EXPECT_EQ(running.code.size(), 4u);
}

}  // namespace
}  // namespace host
