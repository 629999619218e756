// Straight-line instructions before and after, as words with their disassembly. The instruction
// stands at 0x412340.
#include "host/mangle.h"

#include <gtest/gtest.h>

namespace host {
namespace {

constexpr std::uint64_t at = 0x412340;

struct mangling {
  const char* name;
  std::uint32_t before;
  words after;
};

void PrintTo(const mangling& m, std::ostream* out) { *out << m.name; }

class mangle_each : public testing::TestWithParam<mangling> {};

TEST_P(mangle_each, gives_the_listed_words) {
  words out;
  ASSERT_TRUE(mangle(GetParam().before, at, out));
  EXPECT_EQ(out, GetParam().after);
}

const mangling copied[] = {
    {"add", 0x8b020020, {0x8b020020}},            // add x0, x1, x2
    {"vector_28", 0x1f5c739c, {0x1f5c739c}},      // fmadd d28, d28, d28, d28
    {"vector_load", 0x4cdf703c, {0x4cdf703c}},    // ld1 {v28.16b}, [x1], #16
    {"shift_of_28", 0x8b02701f, {0x8b02701f}},    // add xzr, x0, x2, lsl #28
    {"undefined_28", 0x0000001c, {0x0000001c}},   // udf #28
    {"sve_vector_28", 0x0480039c, {0x0480039c}},  // add z28.s, p0/m, z28.s, z28.s
};

const mangling from_own_address[] = {
    {"adr",  // adr x3, .-4
     0x10ffffe3,
     {
         0xd2846783,  // mov  x3, #0x233c
         0xf2a00823,  // movk x3, #0x41, lsl #16
     }},
    {"adrp",  // adrp x3, .+0x345000
     0xb0001a23,
     {
         0xd28e0003,  // mov  x3, #0x7000
         0xf2a00ea3,  // movk x3, #0x75, lsl #16
     }},
    {"adrp_below_zero",  // adrp x3, .-0x500000
     0x90ffd803,
     {
         0x929bffe3,  // mov  x3, #0xffffffffffff2000
         0xf2bffe23,  // movk x3, #0xfff1, lsl #16
     }},
    {"adr_x28",  // adr x28, .+0x10004
     0x1008003c,
     {
         0xf9000380,  // str  x0, [x28]
         0xd2846880,  // mov  x0, #0x2344
         0xf2a00840,  // movk x0, #0x42, lsl #16
         0xf9007380,  // str  x0, [x28, #224]
         0xf9400380,  // ldr  x0, [x28]
     }},
    {"ldr",  // ldr x3, .+0x20
     0x58000103,
     {
         0xd2846c03,  // mov  x3, #0x2360
         0xf2a00823,  // movk x3, #0x41, lsl #16
         0xf9400063,  // ldr  x3, [x3]
     }},
    {"ldrsw",  // ldrsw x4, .-0x10
     0x98ffff84,
     {
         0xd2846604,  // mov   x4, #0x2330
         0xf2a00824,  // movk  x4, #0x41, lsl #16
         0xb9800084,  // ldrsw x4, [x4]
     }},
    {"ldr_q28",  // ldr q28, .+0x40
     0x9c00021c,
     {
         0xf9000380,  // str  x0, [x28]
         0xd2847000,  // mov  x0, #0x2380
         0xf2a00820,  // movk x0, #0x41, lsl #16
         0x3dc0001c,  // ldr  q28, [x0]
         0xf9400380,  // ldr  x0, [x28]
     }},
    {"ldr_w28",  // ldr w28, .+0x8
     0x1800005c,
     {
         0xf9000380,  // str  x0, [x28]
         0xd2846900,  // mov  x0, #0x2348
         0xf2a00820,  // movk x0, #0x41, lsl #16
         0xb9400000,  // ldr  w0, [x0]
         0xf9007380,  // str  x0, [x28, #224]
         0xf9400380,  // ldr  x0, [x28]
     }},
    {"ldr_xzr",  // ldr xzr, .+0x8
     0x5800005f,
     {
         0xf9000380,  // str  x0, [x28]
         0xd2846900,  // mov  x0, #0x2348
         0xf2a00820,  // movk x0, #0x41, lsl #16
         0xf940001f,  // ldr  xzr, [x0]
         0xf9400380,  // ldr  x0, [x28]
     }},
    {"prfm",  // prfm pldl1keep, .+0x8
     0xd8000040,
     {
         0xf9000380,  // str  x0, [x28]
         0xd2846900,  // mov  x0, #0x2348
         0xf2a00820,  // movk x0, #0x41, lsl #16
         0xf9800000,  // prfm pldl1keep, [x0]
         0xf9400380,  // ldr  x0, [x28]
     }},
};

const mangling naming_x28[] = {
    {"read",  // add x0, x28, x1
     0x8b010380,
     {
         0xf9000b82,  // str x2, [x28, #16]
         0xf9407382,  // ldr x2, [x28, #224]
         0x8b010040,  // add x0, x2, x1
         0xf9400b82,  // ldr x2, [x28, #16]
     }},
    {"written",  // add x28, x0, x1
     0x8b01001c,
     {
         0xf9000b82,  // str x2, [x28, #16]
         0x8b010002,  // add x2, x0, x1
         0xf9007382,  // str x2, [x28, #224]
         0xf9400b82,  // ldr x2, [x28, #16]
     }},
    {"changed",  // movk x28, #7
     0xf28000fc,
     {
         0xf9000b82,  // str  x2, [x28, #16]
         0xf9407382,  // ldr  x2, [x28, #224]
         0xf28000e2,  // movk x2, #0x7
         0xf9007382,  // str  x2, [x28, #224]
         0xf9400b82,  // ldr  x2, [x28, #16]
     }},
    {"everywhere",  // madd x28, x28, x28, x28
     0x9b1c739c,
     {
         0xf9000380,  // str  x0, [x28]
         0xf9407380,  // ldr  x0, [x28, #224]
         0x9b000000,  // madd x0, x0, x0, x0
         0xf9007380,  // str  x0, [x28, #224]
         0xf9400380,  // ldr  x0, [x28]
     }},
    {"stored",  // str x28, [x0, x2]
     0xf822681c,
     {
         0xf9001384,  // str x4, [x28, #32]
         0xf9407384,  // ldr x4, [x28, #224]
         0xf8226804,  // str x4, [x0, x2]
         0xf9401384,  // ldr x4, [x28, #32]
     }},
    {"beside_vector_28",  // dup v28.4s, w28
     0x4e040f9c,
     {
         0xf9000380,  // str x0, [x28]
         0xf9407380,  // ldr x0, [x28, #224]
         0x4e040c1c,  // dup v28.4s, w0
         0xf9400380,  // ldr x0, [x28]
     }},
    {"pair",  // casp x2, x3, x28, x29, [x0]
     0x48227c1c,
     {
         0xa9021784,  // stp  x4, x5, [x28, #32]
         0xf9407384,  // ldr  x4, [x28, #224]
         0xaa1d03e5,  // mov  x5, x29
         0x48227c04,  // casp x2, x3, x4, x5, [x0]
         0xf9007384,  // str  x4, [x28, #224]
         0xaa0503fd,  // mov  x29, x5
         0xa9421784,  // ldp  x4, x5, [x28, #32]
     }},
    {"sve_base",  // st1b {z28.b}, p0, [x28, x1]
     0xe401439c,
     {
         0xf9000b82,  // str  x2, [x28, #16]
         0xf9407382,  // ldr  x2, [x28, #224]
         0xe401405c,  // st1b {z28.b}, p0, [x2, x1]
         0xf9400b82,  // ldr  x2, [x28, #16]
     }},
};

// Bit 29 of CTR_EL0 would tell the program that it need not invalidate instructions.
const mangling cache_type[] = {
    {"mrs",  // mrs x5, ctr_el0
     0xd53b0025,
     {
         0xd53b0025,  // mrs x5, ctr_el0
         0x9262f8a5,  // and x5, x5, #0xffffffffdfffffff
     }},
    {"mrs_x28",  // mrs x28, ctr_el0
     0xd53b003c,
     {
         0xf9000b82,  // str x2, [x28, #16]
         0xd53b0022,  // mrs x2, ctr_el0
         0x9262f842,  // and x2, x2, #0xffffffffdfffffff
         0xf9007382,  // str x2, [x28, #224]
         0xf9400b82,  // ldr x2, [x28, #16]
     }},
};

constexpr auto name_of = [](const auto& info) { return std::string(info.param.name); };
INSTANTIATE_TEST_SUITE_P(copied, mangle_each, testing::ValuesIn(copied), name_of);
INSTANTIATE_TEST_SUITE_P(address, mangle_each, testing::ValuesIn(from_own_address), name_of);
INSTANTIATE_TEST_SUITE_P(x28, mangle_each, testing::ValuesIn(naming_x28), name_of);
INSTANTIATE_TEST_SUITE_P(cache_type, mangle_each, testing::ValuesIn(cache_type), name_of);

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
