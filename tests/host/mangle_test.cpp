// Straight-line instructions before and after, as words with their disassembly. The instruction
// stands at 0x412340.
#include "host/mangle.h"

#include <gtest/gtest.h>

#include "tests/host/listing.h"

namespace host {
namespace {

constexpr std::uint64_t at = 0x412340;

void check(const char* listing) {
  for (const listed_translation& t : read_listing(listing)) {
    SCOPED_TRACE(t.line);
    words out;
    EXPECT_TRUE(mangle(t.before, at, out));
    EXPECT_EQ(out, t.after);
  }
}

TEST(mangle, copies_what_does_not_name_x28) {
  constexpr std::uint32_t copied[] = {
      0x8b020020,  // add x0, x1, x2
      0x1f5c739c,  // fmadd d28, d28, d28, d28
      0x4cdf703c,  // ld1 {v28.16b}, [x1], #16
      0x8b02701f,  // add xzr, x0, x2, lsl #28
      0x0000001c,  // udf #28
      0x0480039c,  // add z28.s, p0/m, z28.s, z28.s
  };
  for (const std::uint32_t word : copied) {
    words out;
    EXPECT_TRUE(mangle(word, at, out));
    EXPECT_EQ(out, words{word});
  }
}

TEST(mangle, computes_from_the_application_address) {
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
98ffff84  // ldrsw x4, .-0x10
  d2846604  // mov   x4, #0x2330
  f2a00824  // movk  x4, #0x41, lsl #16
  b9800084  // ldrsw x4, [x4]
9c00021c  // ldr q28, .+0x40
  f9000380  // str  x0, [x28]
  d2847000  // mov  x0, #0x2380
  f2a00820  // movk x0, #0x41, lsl #16
  3dc0001c  // ldr  q28, [x0]
  f9400380  // ldr  x0, [x28]
1800005c  // ldr w28, .+0x8
  f9000380  // str  x0, [x28]
  d2846900  // mov  x0, #0x2348
  f2a00820  // movk x0, #0x41, lsl #16
  b9400000  // ldr  w0, [x0]
  f9007380  // str  x0, [x28, #224]
  f9400380  // ldr  x0, [x28]
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

TEST(mangle, puts_another_register_for_x28) {
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
f28000fc  // movk x28, #7
  f9000b82  // str  x2, [x28, #16]
  f9407382  // ldr  x2, [x28, #224]
  f28000e2  // movk x2, #0x7
  f9007382  // str  x2, [x28, #224]
  f9400b82  // ldr  x2, [x28, #16]
9b1c739c  // madd x28, x28, x28, x28
  f9000380  // str  x0, [x28]
  f9407380  // ldr  x0, [x28, #224]
  9b000000  // madd x0, x0, x0, x0
  f9007380  // str  x0, [x28, #224]
  f9400380  // ldr  x0, [x28]
f822681c  // str x28, [x0, x2]
  f9001384  // str x4, [x28, #32]
  f9407384  // ldr x4, [x28, #224]
  f8226804  // str x4, [x0, x2]
  f9401384  // ldr x4, [x28, #32]
4e040f9c  // dup v28.4s, w28
  f9000380  // str x0, [x28]
  f9407380  // ldr x0, [x28, #224]
  4e040c1c  // dup v28.4s, w0
  f9400380  // ldr x0, [x28]
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
TEST(mangle, hides_that_instructions_need_no_invalidation) {
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

TEST(mangle, refuses_what_may_use_x28_unseen) {
  constexpr std::uint32_t refused[] = {
      0xf83fd016,  // ld64b x22, [x0]: X22 to X29
      0xe01c0da6,  // ld1b {za0h.b[w12, 6]}, p3/z, [x13, x28]
      0x1e2c039c,  // unallocated, in the group of conversions
  };
  for (const std::uint32_t word : refused) {
    words out;
    EXPECT_FALSE(mangle(word, at, out)) << std::hex << word;
    EXPECT_TRUE(out.empty());
  }
}

// What a sequence of MOVZ, MOVN and MOVK loads.
std::uint64_t loaded_by(const words& code) {
  std::uint64_t value = 0;
  for (const std::uint32_t word : code) {
    const unsigned shift = 16 * field(word, 22, 21);
    const std::uint64_t half = static_cast<std::uint64_t>(field(word, 20, 5)) << shift;
    switch (field(word, 30, 29)) {
      case 0: value = ~half; break;
      case 2: value = half; break;
      default: value = (value & ~(0xffffull << shift)) | half;
    }
  }
  return value;
}

TEST(mov_constant, loads_the_value_in_as_few_words_as_it_has_parts) {
  struct {
    std::uint64_t value;
    std::size_t words;
  } constexpr cases[] = {
      {0, 1},
      {~0ull, 1},
      {0x10000, 1},
      {0xffff, 1},
      {~0x1234ull, 1},
      {0x0000'1234'0000'5678, 2},
      {0xffff'0000'ffff'5678, 2},
      {0x0000'ffff'0000'ffff, 2},
      {0xffff'1234'5678'9abc, 3},
      {0x1234'5678'9abc'def0, 4},
  };
  for (const auto& c : cases) {
    const words code = a64::mov_constant(7, c.value);
    EXPECT_EQ(code.size(), c.words) << std::hex << c.value;
    EXPECT_EQ(loaded_by(code), c.value);
    for (const std::uint32_t word : code) EXPECT_EQ(field(word, 4, 0), 7u);
  }
}

}  // namespace
}  // namespace host
