// Counts at every vector length; the sums are compared with a processor, at the length of the
// build.
#include "sve/semantics/counts.h"

#include "tests/core/semantics/context.h"

namespace {

constexpr unsigned ALL = 31, VL256 = 13, MUL3 = 30;  // patterns

// A predicate whose first `count` elements of type T are true, with stray bits in the other lanes.
template <class T>
PredV first_true(unsigned count) {
  PredV p{};
  for (unsigned e = 0; e < 256 / sizeof(T); ++e) {
    for (unsigned i = 0; i < sizeof(T); ++i) p.set_lane(e * sizeof(T) + i, i != 0 || e < count);
  }
  return p;
}

TEST(Counts, FollowTheVectorLength) {
  for (const unsigned vl : lengths) {
    CpuContext ctx = context(vl);
    EXPECT_EQ(VecU8CountVLSI(ALL, 0, &ctx), U64{vl} * 8);
    EXPECT_EQ(VecU16CountVLSI(ALL, 15, &ctx), vl * 4 * 16) << "the field is the multiplier minus 1";
    EXPECT_EQ(VecU32CountVLSI(14, 15, &ctx), 0U);
    EXPECT_EQ(VecU64CountVLSI(MUL3, 1, &ctx), vl / 3 * 3 * 2);
    EXPECT_EQ(VecU8CountVLSI(VL256, 0, &ctx), vl == 32 ? 256U : 0U);
    EXPECT_EQ(VecU8SCountP(first_true<U8>(9), first_true<U8>(7), &ctx), 7U);
    EXPECT_EQ(VecU64SCountP(first_true<U64>(256), first_true<U64>(256), &ctx), vl)
        << "elements above the vector do not count";
    EXPECT_EQ(VecS64VLX(-32, &ctx), vl * -U64{256});
    EXPECT_EQ(VecS64AddVLX(5, 1, &ctx), 5 + vl * 8);
    EXPECT_EQ(VecS64AddPLX(0, -1, &ctx), U64{0} - vl);
    EXPECT_EQ(uniform<U16>(VecU16DecrVLVI(filled<U16>(1), ALL, 0, &ctx), vl),
              static_cast<U16>(1 - vl * 4));
    EXPECT_EQ(uniform<U16>(VecU16QDecrVLVI(filled<U16>(1), ALL, 0, &ctx), vl), 0U);
  }
}

}  // namespace
