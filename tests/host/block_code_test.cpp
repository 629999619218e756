// The instructions that end a block, as words with their disassembly; where the words branch to is
// open until the block has an address, so they stand as B with the exit for a disassembly. The
// instruction is at 0x412340.
#include "host/block_code.h"

#include <gtest/gtest.h>
#include <map>

#include "tests/host/listing.h"

namespace host {
namespace {

constexpr std::uint64_t at = 0x412340;
constexpr std::uint32_t open = 0x14000000;  // b .

std::string name_of(exit_kind kind) {
  switch (kind) {
    case exit_kind::direct: return "direct";
    case exit_kind::supervisor_call: return "supervisor call";
    case exit_kind::invalidate: return "invalidate";
    case exit_kind::refused: return "refused";
    default: return "another";
  }
}

// Where the words of a block branch to that are open; targets as bytes from the instruction.
std::map<std::size_t, std::string> open_branches(const block_code& block) {
  std::map<std::size_t, std::string> branches;
  for (const open_exit& exit : block.exits) {
    const auto distance = static_cast<std::int64_t>(exit.record.target - at);
    branches[exit.index] += name_of(exit.record.kind) + " " + std::to_string(distance);
  }
  for (const std::uint32_t index : block.lookups) branches[index] += "lookup";
  return branches;
}

TEST(emit_control_flow, gives_the_listed_words) {
  for (const listed_translation& t : read_listing(R"(
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
)")) {
    SCOPED_TRACE(t.line);
    block_code out;
    emit_control_flow(t.before, at, out);
    EXPECT_EQ(out.code, t.after);
    std::map<std::size_t, std::string> expected;
    for (std::size_t i = 0; i < t.after.size(); i++) {
      if (t.after[i] == open) expected[i] = t.notes[i];
    }
    EXPECT_EQ(open_branches(out), expected);
  }
}

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
