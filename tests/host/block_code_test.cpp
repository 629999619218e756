// Single instructions and what takes their place, as words with their disassembly. Where a word
// branches to is open until the block has an address, so it stands as B with the exit for a
// disassembly. The instruction is at 0x412340.
#include "host/block_code.h"

#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>

namespace host {
namespace {

constexpr std::uint64_t at = 0x412340;
constexpr std::uint32_t open = 0x14000000;  // b .

// What the words of a block that are open branch to, by their indices.
using open_branches = std::map<std::size_t, std::string>;

std::string name_of(exit_kind kind) {
  switch (kind) {
    case exit_kind::direct: return "direct";
    case exit_kind::supervisor_call: return "supervisor call";
    case exit_kind::invalidate: return "invalidate";
    case exit_kind::refused: return "refused";
    default: return "another";
  }
}

// Targets as bytes from the instruction.
open_branches branches_of(const block_code& block) {
  open_branches branches;
  for (const open_exit& exit : block.exits) {
    const auto distance = static_cast<std::int64_t>(exit.record.target - at);
    branches[exit.index] += name_of(exit.record.kind) + " " + std::to_string(distance);
  }
  for (const std::uint32_t index : block.lookups) branches[index] += "lookup";
  return branches;
}

block_code translate(std::uint32_t word) {
  block_code out;
  if (decode_control_flow(word, at).kind == flow::none) {
    emit_straight(word, at, true, out);
  } else {
    emit_control_flow(word, at, out);
  }
  return out;
}

// Checks a listing: an instruction at the margin and, indented, the words that take its place. An
// instruction without any stays as it is.
void check(const char* listing) {
  std::istringstream lines(listing);
  std::string line;
  while (lines >> std::ws && std::getline(lines, line)) {
    SCOPED_TRACE(line);
    const auto word = static_cast<std::uint32_t>(std::stoul(line, nullptr, 16));
    words expected;
    open_branches branches;
    while (lines.peek() == ' ' && std::getline(lines, line)) {
      expected.push_back(static_cast<std::uint32_t>(std::stoul(line, nullptr, 16)));
      if (expected.back() == open) branches[expected.size() - 1] = line.substr(line.find("//") + 3);
    }
    if (expected.empty()) expected = {word};
    const block_code got = translate(word);
    EXPECT_EQ(got.code, expected);
    EXPECT_EQ(branches_of(got), branches);
  }
}

TEST(translation, copies_what_does_not_name_x28) {
  check(R"(
8b020020  // add x0, x1, x2
1f5c739c  // fmadd d28, d28, d28, d28
4cdf703c  // ld1 {v28.16b}, [x1], #16
8b02701f  // add xzr, x0, x2, lsl #28
0000001c  // udf #28
0480039c  // add z28.s, p0/m, z28.s, z28.s
)");
}

TEST(translation, computes_from_the_application_address) {
  check(R"(
10ffffe3  // adr x3, .-4
  d2846783  // mov  x3, #0x233c
  f2a00823  // movk x3, #0x41, lsl #16
b0001a23  // adrp x3, .+0x345000
  d28e0003  // mov  x3, #0x7000
  f2a00ea3  // movk x3, #0x75, lsl #16
90ffd803  // adrp x3, .-0x500000
  929bffe3  // mov  x3, #0xffffffffffff2000
  f2bffe23  // movk x3, #0xfff1, lsl #16
1008003c  // adr x28, .+0x10004
  f9000380  // str  x0, [x28]
  d2846880  // mov  x0, #0x2344
  f2a00840  // movk x0, #0x42, lsl #16
  f9007380  // str  x0, [x28, #224]
  f9400380  // ldr  x0, [x28]
58000103  // ldr x3, .+0x20
  d2846c03  // mov  x3, #0x2360
  f2a00823  // movk x3, #0x41, lsl #16
  f9400063  // ldr  x3, [x3]
58007fe5  // ldr x5, .+0xffc: in another page, which may be unmapped
  f9001785  // str  x5, [x28, #40]
  d2866785  // mov  x5, #0x333c
  f2a00825  // movk x5, #0x41, lsl #16
  f94000a5  // ldr  x5, [x5]
98ffff84  // ldrsw x4, .-0x10
  d2846604  // mov   x4, #0x2330
  f2a00824  // movk  x4, #0x41, lsl #16
  b9800084  // ldrsw x4, [x4]
5800005f  // ldr xzr, .+0x8
  f9000380  // str  x0, [x28]
  d2846900  // mov  x0, #0x2348
  f2a00820  // movk x0, #0x41, lsl #16
  f940001f  // ldr  xzr, [x0]
  f9400380  // ldr  x0, [x28]
d8000040  // prfm pldl1keep, .+0x8
  f9000380  // str  x0, [x28]
  d2846900  // mov  x0, #0x2348
  f2a00820  // movk x0, #0x41, lsl #16
  f9800000  // prfm pldl1keep, [x0]
  f9400380  // ldr  x0, [x28]
)");
}

TEST(translation, puts_another_register_for_x28) {
  check(R"(
8b010380  // add x0, x28, x1
  f9000b82  // str x2, [x28, #16]
  f9407382  // ldr x2, [x28, #224]
  8b010040  // add x0, x2, x1
  f9400b82  // ldr x2, [x28, #16]
8b01001c  // add x28, x0, x1
  f9000b82  // str x2, [x28, #16]
  8b010002  // add x2, x0, x1
  f9007382  // str x2, [x28, #224]
  f9400b82  // ldr x2, [x28, #16]
9b1c739c  // madd x28, x28, x28, x28
  f9000380  // str  x0, [x28]
  f9407380  // ldr  x0, [x28, #224]
  9b000000  // madd x0, x0, x0, x0
  f9007380  // str  x0, [x28, #224]
  f9400380  // ldr  x0, [x28]
48227c1c  // casp x2, x3, x28, x29, [x0]
  a9021784  // stp  x4, x5, [x28, #32]
  f9407384  // ldr  x4, [x28, #224]
  aa1d03e5  // mov  x5, x29
  48227c04  // casp x2, x3, x4, x5, [x0]
  f9007384  // str  x4, [x28, #224]
  aa0503fd  // mov  x29, x5
  a9421784  // ldp  x4, x5, [x28, #32]
e401439c  // st1b {z28.b}, p0, [x28, x1]
  f9000b82  // str  x2, [x28, #16]
  f9407382  // ldr  x2, [x28, #224]
  e401405c  // st1b {z28.b}, p0, [x2, x1]
  f9400b82  // ldr  x2, [x28, #16]
)");
}

// Bit 29 of CTR_EL0 would tell the program that it need not invalidate instructions.
TEST(translation, hides_that_instructions_need_no_invalidation) {
  check(R"(
d53b0025  // mrs x5, ctr_el0
  d53b0025  // mrs x5, ctr_el0
  9262f8a5  // and x5, x5, #0xffffffffdfffffff
d53b003c  // mrs x28, ctr_el0
  f9000b82  // str x2, [x28, #16]
  d53b0022  // mrs x2, ctr_el0
  9262f842  // and x2, x2, #0xffffffffdfffffff
  f9007382  // str x2, [x28, #224]
  f9400b82  // ldr x2, [x28, #16]
)");
}

TEST(translation, refuses_what_may_use_x28_unseen) {
  check(R"(
f83fd016  // ld64b x22, [x0]: X22 to X29
  14000000  // refused 0
e01c0da6  // ld1b {za0h.b[w12, 6]}, p3/z, [x13, x28]
  14000000  // refused 0
1e2c039c  // unallocated, in the group of conversions
  14000000  // refused 0
)");
}

TEST(translation, ends_the_block) {
  check(R"(
17ffffff  // b .-4
  14000000  // direct -4
94000400  // bl .+0x1000
  d284689e  // mov  x30, #0x2344
  f2a0083e  // movk x30, #0x41, lsl #16
  14000000  // direct 4096
54000800  // b.eq .+0x100
  54000040  // b.eq .+8
  14000000  // direct 4
  14000000  // direct 256
b76fff09  // tbnz x9, #45, .-0x20
  b7680049  // tbnz x9, #45, .+8
  14000000  // direct 4
  14000000  // direct -32
b400009c  // cbz x28, .+0x10
  f9000380  // str x0, [x28]
  f9407380  // ldr x0, [x28, #224]
  b4000060  // cbz x0, .+12
  f9400380  // ldr x0, [x28]
  14000000  // direct 4
  f9400380  // ldr x0, [x28]
  14000000  // direct 16
d61f0220  // br x17
  a9000780  // stp x0, x1, [x28]
  aa1103e0  // mov x0, x17
  14000000  // lookup
d61f0000  // br x0
  a9000780  // stp x0, x1, [x28]
  14000000  // lookup
d65f03c0  // ret
  a9000780  // stp x0, x1, [x28]
  aa1e03e0  // mov x0, x30
  14000000  // lookup
d63f03c0  // blr x30: the target is read before the link is written
  a9000780  // stp  x0, x1, [x28]
  aa1e03e0  // mov  x0, x30
  d284689e  // mov  x30, #0x2344
  f2a0083e  // movk x30, #0x41, lsl #16
  14000000  // lookup
d63f0380  // blr x28
  a9000780  // stp  x0, x1, [x28]
  f9407380  // ldr  x0, [x28, #224]
  d284689e  // mov  x30, #0x2344
  f2a0083e  // movk x30, #0x41, lsl #16
  14000000  // lookup
d65f0fff  // retab
  a9000780  // stp   x0, x1, [x28]
  aa1e03e0  // mov   x0, x30
  dac117e0  // autib x0, sp
  14000000  // lookup
d71f0820  // braa x1, x0
  a9000780  // stp   x0, x1, [x28]
  aa0103e0  // mov   x0, x1
  f9400381  // ldr   x1, [x28]
  dac11020  // autia x0, x1
  14000000  // lookup
d61f087f  // braaz x3
  a9000780  // stp    x0, x1, [x28]
  aa0303e0  // mov    x0, x3
  dac133e0  // autiza x0
  14000000  // lookup
d4000001  // svc #0
  14000000  // supervisor call 4
d50b7523  // ic ivau, x3
  14000000  // invalidate 4
74000000  // cbgt w0, w0, .
  14000000  // refused 0
)");
}

TEST(translation, leaves_sve_alone_where_it_traps) {
  constexpr std::uint32_t cntb_x28 = 0x0420e3fc;  // cntb x28
  block_code trapping;
  emit_straight(cntb_x28, at, false, trapping);
  EXPECT_EQ(trapping.code, words{cntb_x28});
}

TEST(mov_constant, loads_the_value_in_as_few_words_as_it_has_parts) {
  using a64::movk, a64::movn, a64::movz;
  struct {
    std::uint64_t value;
    words code;
  } const cases[] = {
      {0, {movz(7, 0, 0)}},
      {~0ull, {movn(7, 0, 0)}},
      {0x10000, {movz(7, 1, 1)}},
      {0xffff, {movz(7, 0xffff, 0)}},
      {~0x1234ull, {movn(7, 0x1234, 0)}},
      {0x0000'1234'0000'5678, {movz(7, 0x5678, 0), movk(7, 0x1234, 2)}},
      {0xffff'0000'ffff'5678, {movn(7, 0xa987, 0), movk(7, 0, 2)}},
      {0x0000'ffff'0000'ffff, {movz(7, 0xffff, 0), movk(7, 0xffff, 2)}},
      {0xffff'1234'5678'9abc, {movn(7, 0x6543, 0), movk(7, 0x5678, 1), movk(7, 0x1234, 2)}},
      {0x1234'5678'9abc'def0,
       {movz(7, 0xdef0, 0), movk(7, 0x9abc, 1), movk(7, 0x5678, 2), movk(7, 0x1234, 3)}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(a64::mov_constant(7, c.value), c.code) << std::hex << c.value;
  }
}

}  // namespace
}  // namespace host
