// What varies with the vector length in the integer operations and compares: the shapes. What they
// compute is compared with a processor, at the length of the build.
#include "sve/semantics/integer.h"

#include <algorithm>

#include "sve/semantics/compares.h"
#include "tests/core/semantics/context.h"

namespace {

const auto u8 = filled<U8>;
const auto u16 = filled<U16>;
const auto u32 = filled<U32>;
const auto u64 = filled<U64>;

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
    PredV last_lane{};
    last_lane.set_lane(vl * 8 - 8, true);
    EXPECT_TRUE(std::ranges::equal(VecS64CmpFlgEQVVZ(g, last, last, &ctx).words, last_lane.words));
    EXPECT_EQ(flags(ctx), "Nzcv");
    for (unsigned e = 0; e < vl; ++e) {
      const bool is_last = e == vl - 1;
      EXPECT_EQ(last.get<U64>(e), is_last ? 8U : 1U) << e;
      EXPECT_EQ(halves.get<U32>(2 * e), is_last ? 0xffffffff : 5) << e;
      EXPECT_EQ(halves.get<U32>(2 * e + 1), 0xffffffff) << e;
      EXPECT_EQ(wide.get<U32>(2 * e + 1), is_last ? 256U : 2U) << e;
    }
  }
}

}  // namespace
