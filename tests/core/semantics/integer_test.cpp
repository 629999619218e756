// The integer operations and compares that no fast path serves: limits of the element types, wide
// and narrow operands, and every vector length. The others are compared with their fast paths.
#include "sve/semantics/integer.h"

#include "sve/semantics/compares.h"
#include "tests/core/semantics/context.h"

namespace {

constexpr U64 ones = ~U64{0};
constexpr PredV none{}, all{{ones, ones, ones, ones}};
const auto u8 = filled<U8>;
const auto u16 = filled<U16>;
const auto u32 = filled<U32>;
const auto u64 = filled<U64>;

// One element, spread over a 64-bit word.
constexpr U64 x8(U64 value) { return value * 0x0101010101010101; }
constexpr U64 x16(U64 value) { return value * 0x0001000100010001; }
constexpr U64 x32(U64 value) { return value * 0x0000000100000001; }

TEST(Integer, LimitsOfTheElement) {
  CpuContext c = context(2);
  const VecV m = u64(0x123456789abcdef0);  // the merge source
  const struct {
    const char* what;
    VecV got;
    U64 expected;
  } rows[] = {
      {"SABD", VecS8AbdVVM(u8(0x80), all, u8(0x7f), &c), ones},
      {"UABD", VecU64AbdVVM(u64(0), all, u64(ones), &c), ones},
      {"UMULH", VecU64MulHVVM(u64(ones), all, u64(ones), &c), ones - 1},
      {"SMULH", VecS64MulHVVM(u64(1ULL << 63), all, u64(1ULL << 63), &c), 1ULL << 62},
      {"SMULH of a small negative", VecS16MulHVVM(u16(0xffff), all, u16(1), &c), ones},
      {"ABS", VecS8AbsVM(m, all, u8(0x80), &c), x8(0x80)},
      {"CLZ of 0", VecU8ClzVM(m, all, u8(0), &c), x8(8)},
      {"CLS of 0", VecU32ClsVM(m, all, u32(0), &c), x32(31)},
      {"CLS of -1", VecU32ClsVM(m, all, u32(0xffffffff), &c), x32(31)},
      {"CNOT", VecU16NotVM(m, all, u16(0), &c), x16(1)},
      {"SMAX immediate", VecS8MaxVIX(u8(0x80), -1, &c), ones},
      {"LSR by the width", VecU8ShrVIX(u8(0xff), 8, &c), 0},
      {"LSR wide by 8", VecU8ShrVWX(u8(0xff), u64(8), &c), 0},
      {"ASR wide by 2^64-1", VecS8ShrVWX(u8(0x80), u64(ones), &c), ones},
      {"ASR wide by 128", VecS16ShrVWX(u16(0x8000), u64(128), &c), ones},
      {"LSL wide by 2^64-1", VecU8ShlVWX(u8(1), u64(ones), &c), 0},
      {"LSL wide by 2^63", VecU32ShlVWM(u32(1), all, u64(1ULL << 63), &c), 0},
      {"LSLR by 0xffff", VecU16ShlRVVM(u16(0xffff), all, u16(1), &c), 0},
      {"ASRR by 0x80", VecS8ShrRVVM(u8(0x80), all, u8(0x80), &c), ones},
      {"ASRD of -1 by 1", VecS8ShrDVIM(u8(0xff), all, 1, &c), 0},
      {"ASRD of -3 by 1", VecS8ShrDVIM(u8(0xfd), all, 1, &c), ones},
      {"ASRD by the width", VecS64ShrDVIM(u64(1ULL << 63), all, 64, &c), 0},
      {"ADR sxtw", VecU64LEA4XVV(u64(8), u64(0x1ffffffff), &c), 4},
      {"ADR uxtw", VecU64LEA4YVV(u64(8), u64(0x1ffffffff), &c), 0x400000004},
      {"SDOT", VecS32DotVVVX(u8(0xff), u8(0xff), u32(1), &c), x32(5)},
      {"SDOT of halfwords", VecS64DotVVVX(u16(0x8000), u16(0x7fff), u64(0), &c),
       U64{0} - 4 * 0x8000ULL * 0x7fff},
      {"nothing active keeps the merge source", VecU8CntVM(m, none, u8(0xff), &c), uniform<U64>(m)},
  };
  for (const auto& row : rows) EXPECT_EQ(uniform<U64>(row.got), row.expected) << row.what;
}

TEST(Integer, IndexedDotProductsTakeTheirSegmentsElement) {
  for (const unsigned vl : lengths) {
    CpuContext ctx = context(vl);
    VecV b;
    for (unsigned k = 0; k < vl * 8; ++k) b.set<U8>(k, static_cast<U8>(k / 4));
    const VecV words32 = VecU32DotVVVIX(u8(1), b, u32(0), 3, &ctx);
    for (unsigned e = 0; e < vl * 2; ++e) {
      EXPECT_EQ(words32.get<U32>(e), 4 * (e / 4 * 4 + 3)) << e;
    }
    for (unsigned k = 0; k < vl * 4; ++k) b.set<U16>(k, static_cast<U16>(k / 4));
    const VecV words64 = VecU64DotVVVIX(u16(1), b, u64(0), 1, &ctx);
    for (unsigned e = 0; e < vl; ++e) {
      EXPECT_EQ(words64.get<U64>(e), 4 * (e / 2 * 2 + 1)) << e;
    }
  }
}

// Elements are governed by their first lane, at every length up to the last element.
TEST(Integer, GovernedAtEveryLength) {
  for (const unsigned vl : lengths) {
    CpuContext ctx = context(vl);
    PredV g{};
    for (unsigned lane = 0; lane < vl * 8; ++lane) g.set_lane(lane, lane % 8 != 0);
    g.set_lane(vl * 8 - 8, true);
    const VecV last = VecU64SubRVVM(u64(1), g, u64(9), &ctx);
    const VecV halves = VecU32InvVM(u32(5), g, u32(0), &ctx);
    const VecV wide = VecU32ShlVWX(u32(1), last, &ctx);
    for (unsigned e = 0; e < vl; ++e) {
      const bool is_last = e == vl - 1;
      EXPECT_EQ(last.get<U64>(e), is_last ? 8U : 1U) << e;
      EXPECT_EQ(halves.get<U32>(2 * e), is_last ? 0xffffffff : 5) << e;
      EXPECT_EQ(halves.get<U32>(2 * e + 1), 0xffffffff) << e;
      EXPECT_EQ(wide.get<U32>(2 * e + 1), is_last ? 256U : 2U) << e;
    }
  }
}

TEST(Compares, LimitsAndFlags) {
  constexpr U32 n = sve::flag_n, zc = sve::flag_z | sve::flag_c;
  const PredV firsts{{0x0101, 0, 0, 0}};
  using C = CpuContext*;
  const struct {
    const char* what;
    PredV (*compare)(C c, const PredV& firsts);
    U64 lanes;
    U32 flags;
  } rows[] = {
      {"CMPHS 0", [](C c, auto& g) { return VecU8CmpFlgGEVIZ(g, u8(7), 0, c); }, 0x0101, n},
      {"none", [](C c, auto&) { return VecS64CmpFlgGEVIZ(none, u64(7), 0, c); }, 0, zc},
      {"CMPGE", [](C c, auto&) { return VecS16CmpFlgGEVIZ(all, u16(0xfff0), -16, c); }, 0x5555, n},
      {"CMPLS", [](C c, auto&) { return VecU64CmpFlgLEVIZ(all, u64(127), 127, c); }, 0x0101, n},
      {"CMPLT", [](C c, auto&) { return VecS8CmpFlgLTVWZ(all, u8(0xff), u64(0), c); }, 0xffff, n},
      {"CMPLO is not cut",
       [](C c, auto&) { return VecU8CmpFlgLTVWZ(all, u8(0xff), u64(0x100), c); }, 0xffff, n},
      {"CMPEQ looks at all 64 bits",
       [](C c, auto&) { return VecS16CmpFlgEQVWZ(all, u16(0xfffe), u64(0xfffe), c); }, 0, zc},
      {"CMPEQ extends the sign",
       [](C c, auto&) { return VecS16CmpFlgEQVWZ(all, u16(0xfffe), u64(ones - 1), c); }, 0x5555, n},
      {"CMPHI", [](C c, auto& g) { return VecU32CmpFlgGTVWZ(g, u32(6), u64(5), c); }, 0x0101, n},
  };
  for (const auto& row : rows) {
    CpuContext ctx = context(2);
    ctx.nzcv = sve::flag_v | 5;
    EXPECT_EQ(row.compare(&ctx, firsts).words[0], row.lanes) << row.what;
    EXPECT_EQ(ctx.nzcv, row.flags | 5) << row.what;
  }
}

TEST(Compares, LoopTermination) {
  constexpr U32 n = sve::flag_n, z = sve::flag_z, c = sve::flag_c, v = sve::flag_v;
  const auto after = [](U32 before, auto terminate) {
    CpuContext ctx = context(2);
    ctx.nzcv = before;
    terminate(&ctx);
    return ctx.nzcv;
  };
  const auto equal = [](CpuContext* ctx) { VecU32CTermEQ(7, 7, ctx); };
  const auto unequal = [](CpuContext* ctx) { VecU64CTermEQ(7, 7 + (1ULL << 32), ctx); };
  EXPECT_EQ(after(z | c | v, equal), n | z | c);
  EXPECT_EQ(after(0, equal), n);
  EXPECT_EQ(after(n | z | c | v, unequal), z | c);
  EXPECT_EQ(after(n | 3, unequal), v | 3);
  EXPECT_EQ(after(0, [](CpuContext* ctx) { VecU64CTermNE(1, 1ULL << 32 | 1, ctx); }), n);
  EXPECT_EQ(after(c, [](CpuContext* ctx) { VecU32CTermNE(1, 1, ctx); }), c);
}

}  // namespace
