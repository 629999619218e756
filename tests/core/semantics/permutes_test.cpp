// Permutes on numbered elements: words of a are 10, 11, ..., those of b 20, 21, ..., and the result
// is written as it should be, at every vector length.
#include "sve/semantics/permutes.h"

#include <functional>
#include <vector>

#include "context.h"

namespace {

using Words = std::vector<std::uint64_t>;

struct Machine {
  explicit Machine(unsigned vl) : ctx(context(vl)), n(ctx.elements<U32>()) {
    for (unsigned e = 0; e < n; ++e) {
      a.set<U32>(e, 10 + e);
      b.set<U32>(e, 20 + e);
      indices.set<U32>(e, e == 1 ? n : n - 1 - e);  // one is out of range
    }
  }
  // Active: the words from `first` to `last`, but for `gap`; lanes that are not an element's first
  // are set everywhere.
  PredV active(unsigned first, unsigned last, unsigned gap = 99) const {
    PredV g{};
    for (unsigned lane = 0; lane < 4 * n; ++lane) g.set_lane(lane, lane % 4 != 0);
    for (unsigned e = first; e <= last && e < n; ++e) g.set_lane(4 * e, e != gap);
    return g;
  }
  PredV none() const { return active(1, 0); }
  PredV all() const { return active(0, n - 1); }

  Words words(const VecV& v) const {
    Words result;
    for (unsigned e = 0; e < n; ++e) result.push_back(v.get<U32>(e));
    return result;
  }
  // An element e of the result is rule(e).
  Words expected(const std::function<std::uint64_t(unsigned)>& rule) const {
    Words result;
    for (unsigned e = 0; e < n; ++e) result.push_back(rule(e));
    return result;
  }

  CpuContext ctx;
  unsigned n;
  VecV a{}, b{}, indices{};
};

class Permutes : public testing::TestWithParam<unsigned> {
 protected:
  void expect(const VecV& result, const std::function<std::uint64_t(unsigned)>& rule) const {
    EXPECT_EQ(m.words(result), m.expected(rule));
  }

  Machine m{GetParam()};
  CpuContext* c = &m.ctx;
  const unsigned n = m.n;
  const VecV &a = m.a, &b = m.b;
};

INSTANTIATE_TEST_SUITE_P(AtLength, Permutes, testing::ValuesIn(lengths));

TEST_P(Permutes, PackAndSplice) {
  expect(VecU32CompressVV(m.all(), a, c), [](unsigned e) { return 10 + e; });
  expect(VecU32CompressVV(m.active(1, n - 1, 2), a, c), [&](unsigned e) {
    return e == 0 ? 11 : e < n - 2 ? 12 + e : 0;
  });
  expect(VecU32SpliceVV(m.none(), a, b, c), [](unsigned e) { return 20 + e; });
  expect(VecU32SpliceVV(m.all(), a, b, c), [](unsigned e) { return 10 + e; });
  expect(VecU32SpliceVV(m.active(1, 3, 2), a, b, c),
         [](unsigned e) { return e < 3 ? 11 + e : 20 + e - 3; });
  expect(VecU32SpliceVV(m.active(n - 1, n - 1), a, b, c),
         [&](unsigned e) { return e == 0 ? 10 + n - 1 : 20 + e - 1; });
}

TEST_P(Permutes, MoveElements) {
  expect(VecU32InsertS(a, 0xabcd00000063, c), [](unsigned e) { return e == 0 ? 99 : 9 + e; });
  expect(VecU32Trn1VV(a, b, c), [](unsigned e) { return e % 2 == 0 ? 10 + e : 20 + e - 1; });
  expect(VecU32Trn2VV(a, b, c), [](unsigned e) { return e % 2 == 0 ? 11 + e : 20 + e; });
  expect(VecU32Zip2VV(a, b, c), [&](unsigned e) { return (e % 2 == 0 ? 10 : 20) + n / 2 + e / 2; });
  expect(VecU32Uzp2VV(a, b, c),
         [&](unsigned e) { return e < n / 2 ? 11 + 2 * e : 21 + 2 * e - n; });
  expect(VecU32ReverseV(a, c), [&](unsigned e) { return 10 + n - 1 - e; });
  expect(VecU32TblVV(a, m.indices, c), [&](unsigned e) { return e == 1 ? 0 : 10 + n - 1 - e; });
  expect(VecU32ExtDupVI(a, n - 1, c), [&](unsigned) { return 10 + n - 1; });
  expect(VecU32ExtDupVI(a, n, c), [](unsigned) { return 0; });
  expect(VecU8SlideVI(a, b, 4 * (n - 1), c),
         [&](unsigned e) { return e == 0 ? 10 + n - 1 : 20 + e - 1; });
  expect(VecU8SlideVI(a, b, 4 * n, c), [](unsigned e) { return 10 + e; });
}

TEST_P(Permutes, ExtractElements) {
  const PredV middle = m.active(0, 2, 1), last = m.active(n - 1, n - 1);
  const std::uint64_t end = 10 + n - 1;
  const struct {
    const PredV& g;
    std::uint64_t after, found, conditional_after, conditional;
  } cases[] = {{middle, 13, 12, 13, 12}, {last, 10, end, 10, end}, {m.none(), 10, end, ~0UL, ~0UL}};
  for (const auto& [g, after, found, conditional_after, conditional] : cases) {
    EXPECT_EQ(VecU32LastAV(g, a, c), after);
    EXPECT_EQ(VecU32LastBV(g, a, c), found);
    EXPECT_EQ(VecU32CondXASV(g, ~0UL, a, c), conditional_after);
    EXPECT_EQ(VecF32CondXBSV(g, ~0UL, a, c), conditional);
    expect(VecU32VCondXAVV(g, b, a, c),
           [old = conditional == ~0UL, x = after](unsigned e) { return old ? 20 + e : x; });
    expect(VecU32VCondXBVV(g, b, a, c),
           [old = conditional == ~0UL, x = found](unsigned e) { return old ? 20 + e : x; });
  }
}

TEST_P(Permutes, ReduceActiveElements) {
  const VecV minus_one = filled<S8>(-1);
  const std::uint64_t bytes = 4UL * n;
  PredV every_byte;
  std::fill_n(every_byte.words, 4, ~0UL);
  EXPECT_EQ(VecS8AddReduceV(every_byte, minus_one, c), 0 - bytes);
  EXPECT_EQ(VecU8AddReduceV(every_byte, minus_one, c), 255 * bytes);
  EXPECT_EQ(VecS16AddReduceV(m.none(), minus_one, c), 0 - bytes / 4)
      << "lanes 1 and 3 of a word are active, and lane 2 is the first of a halfword";
  EXPECT_EQ(VecS32AddReduceV(m.none(), minus_one, c), 0U);
  EXPECT_EQ(VecU32MaxReduceV(m.active(0, 2, 2), a, c), 11U);
  EXPECT_EQ(VecS32MinReduceV(m.active(1, 2), a, c), 11U);
  EXPECT_EQ(VecS32MinReduceV(m.none(), a, c), 0x7fffffffU);
  EXPECT_EQ(VecS32MaxReduceV(m.none(), a, c), 0xffffffff80000000U);
  EXPECT_EQ(VecU32AndReduceV(m.none(), a, c), 0xffffffffU);
  EXPECT_EQ(VecU32XorReduceV(m.active(0, 1), a, c), 1U);
}

TEST_P(Permutes, WidenHalves) {
  const VecV mixed = [&] {
    VecV v;
    for (unsigned i = 0; i < 8 * n; ++i) v.set<U8>(i % 256, static_cast<U8>(i * 37));
    return v;
  }();
  for (unsigned e = 0; e < 2 * n; ++e) {
    EXPECT_EQ(VecS16UnpackLoV(mixed, c).get<S16>(e), mixed.get<S8>(e));
    EXPECT_EQ(VecS16UnpackHiV(mixed, c).get<S16>(e), mixed.get<S8>(2 * n + e));
    EXPECT_EQ(VecU16UnpackHiV(mixed, c).get<U16>(e), mixed.get<U8>(2 * n + e));
  }
}

}  // namespace
