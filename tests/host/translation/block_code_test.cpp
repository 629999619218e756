// Single instructions and the words that replace them, with their disassembly. Until the block has
// an address, it is open what a word branches to or loads: the disassembly shows that after =>, and
// the word does not contain it. The instruction is at 0x412340. That the words do what they should,
// tests/fuzz/rewriter_fuzz.cpp finds out for all instructions; here are the sequences that are
// meant.
#include "host/translation/block_code.h"

#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>

namespace host {
namespace {

constexpr std::uint64_t at = 0x412340;
// What the open words of a block will branch to or load, by their indices.
using open_words = std::map<std::size_t, std::string>;

std::string name_of(exit_kind kind) {
  switch (kind) {
    case exit_kind::direct: return "direct";
    case exit_kind::supervisor_call: return "supervisor call";
    case exit_kind::invalidate: return "invalidate";
    case exit_kind::synchronize: return "synchronize";
    case exit_kind::refused: return "refused";
    default: return "another";
  }
}

// Gives targets as distances from the instruction in bytes.
open_words open_words_of(const block_code& block) {
  open_words open;
  for (const open_exit& exit : block.exits) {
    const auto distance = static_cast<std::int64_t>(exit.record.target - at);
    open[exit.index] += name_of(exit.record.kind) + " " + std::to_string(distance);
  }
  for (const open_literal& literal : block.literals) {
    std::ostringstream value;
    value << "=0x" << std::hex << literal.value;
    open[literal.index] += value.str();
  }
  for (const std::uint32_t index : block.reloads) open[index] += "the context";
  if (block.jump && block.jump->reg != no_table) {
    open[block.jump->index] += "x" + std::to_string(block.jump->reg);
  } else if (block.jump) {
    open[block.jump->index] += "the lookup";
  }
  return open;
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

// Checks a listing: an instruction at the margin and, indented, the words that replace it. An
// instruction without such words must stay as it is.
void check(const char* listing) {
  std::istringstream lines(listing);
  std::string line;
  while (lines >> std::ws && std::getline(lines, line)) {
    SCOPED_TRACE(line);
    const auto word = static_cast<std::uint32_t>(std::stoul(line, nullptr, 16));
    words expected;
    open_words open;
    while (lines.peek() == ' ' && std::getline(lines, line)) {
      expected.push_back(static_cast<std::uint32_t>(std::stoul(line, nullptr, 16)));
      const std::size_t arrow = line.find("=> ");
      if (arrow != std::string::npos) open[expected.size() - 1] = line.substr(arrow + 3);
    }
    if (expected.empty()) expected = {word};
    const block_code got = translate(word);
    EXPECT_EQ(got.code, expected);
    EXPECT_EQ(open_words_of(got), open);
  }
}

TEST(translation, computes_from_the_application_address) {
  check(R"(
10ffffe3  // adr x3, .-4
  58000023  // ldr x3, => =0x41233c
f0ffdf63  // adrp x3, .-0x411000: a constant of one word
  d2820003  // mov x3, #0x1000
1008003c  // adr x28, .+0x10004
  f9000380  // str x0, [x28]
  58000020  // ldr x0, => =0x422344
  f9007380  // str x0, [x28, #224]
  f9400380  // ldr x0, [x28]
58000103  // ldr x3, .+0x20
  58000023  // ldr x3, => =0x412360
  f9400063  // ldr x3, [x3]
58007fe5  // ldr x5, .+0xffc: in another page, which may be unmapped
  f9001785  // str x5, [x28, #40]
  58000025  // ldr x5, => =0x41333c
  f94000a5  // ldr x5, [x5]
5800005f  // ldr xzr, .+0x8
  5800003c  // ldr x28, => =0x412348
  f940039f  // ldr xzr, [x28]
  5800001c  // ldr x28, => the context
5800005c  // ldr x28, .+0x8
  f9000380  // str x0, [x28]
  58000020  // ldr x0, => =0x412348
  f9400000  // ldr x0, [x0]
  f9007380  // str x0, [x28, #224]
  f9400380  // ldr x0, [x28]
)");
}

TEST(translation, loads_x28_for_those_who_read_it) {
  check(R"(
8b010380  // add x0, x28, x1
  f940739c  // ldr x28, [x28, #224]
  8b010380  // add x0, x28, x1
  5800001c  // ldr x28, => the context
c8027f80  // stxr w2, x0, [x28]: with no store before it
  f940739c  // ldr  x28, [x28, #224]
  c8027f80  // stxr w2, x0, [x28]
  5800001c  // ldr  x28, => the context
)");
}

TEST(translation, puts_another_register_for_x28_where_it_is_written) {
  check(R"(
8b01001c  // add x28, x0, x1
  f9000b82  // str x2, [x28, #16]
  8b010002  // add x2, x0, x1
  f9007382  // str x2, [x28, #224]
  f9400b82  // ldr x2, [x28, #16]
f8408f80  // ldr x0, [x28, #8]!
  f9001384  // str x4, [x28, #32]
  f9407384  // ldr x4, [x28, #224]
  f8408c80  // ldr x0, [x4, #8]!
  f9007384  // str x4, [x28, #224]
  f9401384  // ldr x4, [x28, #32]
48227c1c  // casp x2, x3, x28, x29, [x0]
  a9021784  // stp  x4, x5, [x28, #32]
  f9407384  // ldr  x4, [x28, #224]
  aa1d03e5  // mov  x5, x29
  48227c04  // casp x2, x3, x4, x5, [x0]
  f9007384  // str  x4, [x28, #224]
  aa0503fd  // mov  x29, x5
  a9421784  // ldp  x4, x5, [x28, #32]
)");
}

// No access to memory may be added between the exclusive load and the exclusive store.
TEST(translation, keeps_the_context_out_of_exclusive_sequences) {
  const words code = {
      0xc85f7f80,  // ldxr x0, [x28]
      0x8b00039c,  // add  x28, x28, x0
      0xc8017f9c,  // stxr w1, x28, [x28]
  };
  block_code got;
  ASSERT_TRUE(emit_exclusive(code, at, got));
  const words expected = {
      0xf9000b82,  // str  x2, [x28, #16]
      0xf9407382,  // ldr  x2, [x28, #224]
      0xc85f7c40,  // ldxr x0, [x2]
      0x8b000042,  // add  x2, x2, x0
      0xc8017c42,  // stxr w1, x2, [x2]
      0xf9007382,  // str  x2, [x28, #224]
      0xf9400b82,  // ldr  x2, [x28, #16]
  };
  EXPECT_EQ(got.code, expected);
  for (const std::uint32_t other : {0xf94003a0u,     // ldr x0, [x29]: X28 is not named
                                    0x48227c1cu,     // casp x2, x3, x28, x29, [x0]
                                    0x1e2c039cu}) {  // unallocated
    EXPECT_FALSE(emit_exclusive({&other, 1}, at, got));
  }
}

TEST(translation, ends_the_block) {
  check(R"(
17ffffff  // b .-4
  14000000  // b => direct -4
54000800  // b.eq .+0x100
  54000000  // b.eq => direct 256
  14000000  // b => direct 4
b76fff09  // tbnz x9, #45, .-0x20
  b7680009  // tbnz x9, #45, => direct -32
  14000000  // b => direct 4
b400009c  // cbz x28, .+0x10
  f940739c  // ldr x28, [x28, #224]
  b400007c  // cbz x28, .+12
  5800001c  // ldr x28, => the context
  14000000  // b => direct 4
  5800001c  // ldr x28, => the context
  14000000  // b => direct 16
d4000001  // svc #0
  14000000  // b => supervisor call 4
d50b7523  // ic ivau, x3
  14000000  // b => invalidate 4
d5033fdf  // isb
  d5033fdf  // isb
  14000000  // b => synchronize 4
74000000  // cbgt w0, w0, .
  14000000  // b => refused 0
)");
}

TEST(translation, looks_indirect_targets_up) {
  check(R"(
d65f03c0  // ret: the first of the tables
  b37d3bdc  // bfi x28, x30, #3, #15
  f97fff9c  // ldr x28, [x28, #32760]
  d61f0380  // br  x28 => x30
d61f0220  // br x17
  9152039c  // add x28, x28, #0x480, lsl #12
  b37d3a3c  // bfi x28, x17, #3, #15
  f97fff9c  // ldr x28, [x28, #32760]
  d61f0380  // br  x28 => x17
d63f03c0  // blr x30: the target is read before the link is written
  a9000780  // stp x0, x1, [x28]
  aa1e03e0  // mov x0, x30
  5800003e  // ldr x30, => =0x412344
  14000000  // b => the lookup
d65f0fff  // retab
  a9000780  // stp   x0, x1, [x28]
  aa1e03e0  // mov   x0, x30
  dac117e0  // autib x0, sp
  14000000  // b => the lookup
)");
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
