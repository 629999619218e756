// Floating-point vector functions at lengths that the comparison with a processor does not run at:
// the order of sums and the padding of reductions, and what inactive elements leave alone.
#include "sve/semantics/floating_point.h"

#include <utility>

#include "context.h"
#include "sve/fp/fpscr.h"

namespace {

constexpr U32 one = 0x3f800000, two_to_24 = 0x4b800000, two_to_24_plus_2 = 0x4b800001;
constexpr U32 signalling = 0x7fa00000, quieted = 0x7fe00000, quiet = 0x7fc00001;
// Element 0 is a signalling NaN in each format.
constexpr U64 signalling_in_all = 0x7ff400007fa07d00;
constexpr U32 all_controls =
    sve::FPSCR::AHP | sve::FPSCR::DN | sve::FPSCR::FZ | sve::FPSCR::RMode | sve::FPSCR::FZ16;

// Singles, of which the first n are the vector's. What lies above would show in any sum.
struct Singles {
  Singles(unsigned vl, U32 all) : ctx(context(vl)), n(ctx.elements<U32>()), v(filled(signalling)) {
    for (unsigned e = 0; e < n; ++e) v.set(e, all);
  }
  Singles& with(unsigned e, U32 value) {
    v.set(e, value);
    return *this;
  }
  static PredV all() { return {{~0UL, ~0UL, ~0UL, ~0UL}}; }
  static PredV only(unsigned e) {
    PredV g{};
    g.set_active<U32>(e, true);
    return g;
  }

  CpuContext ctx;
  unsigned n;
  VecV v;
};

class FloatingPoint : public testing::TestWithParam<unsigned> {
 protected:
  const unsigned vl = GetParam();
};

INSTANTIATE_TEST_SUITE_P(AtLength, FloatingPoint, testing::ValuesIn(lengths));

TEST_P(FloatingPoint, SumsDependOnTheirOrder) {
  Singles s(vl, 0);
  s.with(0, two_to_24).with(1, one).with(2, one).with(3, one);
  EXPECT_EQ(VecF32AddReduceAV(s.all(), 0, s.v, &s.ctx), two_to_24);
  EXPECT_EQ(VecF32AddReduceFV(s.all(), s.v, &s.ctx), two_to_24_plus_2);
  EXPECT_EQ(s.ctx.fpsr, static_cast<U32>(sve::FPSCR::IXC));
}

// 2^24 swallows a 1, but not the sum of two. Wherever they lie, two elements are added before that
// only if a subtree without element 0 holds both.
TEST_P(FloatingPoint, TreesCombineNeighbours) {
  for (unsigned high = 2; high < Singles(vl, 0).n; ++high) {
    for (unsigned low = 1; low < high; ++low) {
      Singles s(vl, 0);
      s.with(0, two_to_24).with(low, one).with(high, one);
      unsigned levels = 0;  // up to the subtree of `low` that has element 0 as well
      while (low >> levels != 0) ++levels;
      const bool together = high >> levels == 0;
      const U64 sum = VecF32AddReduceFV(s.all(), s.v, &s.ctx);
      EXPECT_EQ(sum, together ? two_to_24_plus_2 : two_to_24) << low << " " << high;
    }
  }
}

// Where the number of elements is no power of two, +0 takes part in a sum of -0.
TEST_P(FloatingPoint, PaddingIsTheIdentity) {
  Singles s(vl, 0x80000000);
  EXPECT_EQ(VecF32AddReduceFV(s.all(), s.v, &s.ctx), vl == 30 ? 0 : 0x80000000);
  EXPECT_EQ(VecF32AddReduceAV(s.all(), 0x80000000, s.v, &s.ctx), 0x80000000);
  for (unsigned e = 0; e < s.n; e += s.n - 1) {
    s.with(e, one);
    EXPECT_EQ(VecF32MaxReduceFV(s.only(e), s.v, &s.ctx), one);
    EXPECT_EQ(VecF32MinReduceFV(s.only(e), s.v, &s.ctx), one);
    s.with(1, quiet);
    EXPECT_EQ(VecF32MaxNumReduceFV(s.all(), s.v, &s.ctx), one);
    EXPECT_EQ(VecF32MinNumReduceFV(s.only(e), s.v, &s.ctx), one);
  }
  EXPECT_EQ(s.ctx.fpsr, 0U);
  s.with(s.n - 1, signalling);
  EXPECT_EQ(VecF32MaxReduceFV(s.only(s.n - 1), s.v, &s.ctx), quieted);
  EXPECT_EQ(s.ctx.fpsr, static_cast<U32>(sve::FPSCR::IOC));
}

TEST_P(FloatingPoint, ReductionsOfNothing) {
  CpuContext ctx = context(vl);
  const VecV v = filled(signalling_in_all);
  const PredV none{};
  constexpr std::pair<sve::semantics::floating_point::reduction*, U64> cases[] = {
      {VecF16AddReduceFV, 0},
      {VecF16MaxReduceFV, 0xfc00},
      {VecF32AddReduceFV, 0},
      {VecF32MaxReduceFV, 0xff800000},
      {VecD64AddReduceFV, 0},
      {VecD64MaxReduceFV, 0xfff0000000000000},
      {VecF16MinReduceFV, 0x7c00},
      {VecF32MinReduceFV, 0x7f800000},
      {VecF16MaxNumReduceFV, 0x7e00},
      {VecD64MinReduceFV, 0x7ff0000000000000},
      {VecF16MinNumReduceFV, 0x7e00},
      {VecF32MaxNumReduceFV, 0x7fc00000},
      {VecD64MaxNumReduceFV, 0x7ff8000000000000}};
  for (const auto& [reduce, identity] : cases) EXPECT_EQ(reduce(none, v, &ctx), identity);
  EXPECT_EQ(VecF16AddReduceAV(none, 0x1234567d01, v, &ctx), 0x7d01U) << "the initial scalar";
  EXPECT_EQ(ctx.fpsr, 0U);
}

// The status word keeps its flags and those of computed elements; no control gets into it.
TEST_P(FloatingPoint, StatusIsThatOfComputedElements) {
  const VecV v = filled(signalling_in_all);
  const PredV none{}, lane_0{{1}}, lane_1{{2}};
  const auto status = [&](auto function, U32 before) {
    CpuContext ctx = context(vl);
    ctx.fpcr = all_controls;
    ctx.fpsr = before;
    function(&ctx);
    return ctx.fpsr;
  };
  const auto add = [&](const PredV& g) {
    return [&](CpuContext* c) { return VecF16AddVVM(v, g, v, c); };
  };
  EXPECT_EQ(status(add(none), ~0U), ~0U);
  EXPECT_EQ(status(add(lane_1), 0), 0U) << "no first lane of an element";
  EXPECT_EQ(status(add(lane_0), 0), 1U);
  EXPECT_EQ(status(add(lane_0), ~1U), 0xf800009f);
  const auto any = [&](const PredV& g) {
    return [&](CpuContext* c) {
      VecF32FMAVVVM(v, g, v, v, c);
      VecF32CmpGEVVZ(g, v, v, c);
      VecF32FCMLAVVVM(v, g, v, v, 1, c);
      VecF64TruncDVM(v, g, v, c);
      VecD64AddReduceAV(g, 0, v, c);
      VecD64MaxVIM(v, g, true, c);
      VecD64SqrtVM(v, g, v, c);
    };
  };
  EXPECT_EQ(status(any(none), 0x40), 0x40U);
  EXPECT_EQ(status(any(lane_0), 0x40), 1U);
  EXPECT_EQ(status([&](CpuContext* c) { VecF16AbsVM(v, lane_0, v, c); }, 0x40), 0x40U);
  EXPECT_EQ(status([&](CpuContext* c) { VecF16AddVIM(v, none, true, c); }, 0x40), 0U)
      << "the immediate is converted for inactive elements too";
}

}  // namespace
