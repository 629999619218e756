// The integer helpers at the limits of their widths, by table.
#include "sve/semantics/integer_helpers.h"

#include <cmath>
#include <gtest/gtest.h>
#include <string>

using namespace sve;
using namespace sve::semantics;

namespace sve {
void PrintTo(const Saturated& s, std::ostream* os) {
  *os << "(" << std::hex << s.value << ", " << s.flag << ")";
}
}  // namespace sve

namespace {

constexpr std::uint64_t all = ~std::uint64_t{0};
constexpr std::uint64_t top = std::uint64_t{1} << 63;
constexpr Int128 two64 = Int128{1} << 64;
constexpr Int128 min128 = Int128{1} << 126 << 1;

struct Row {
  std::string name;
  Saturated got;
  Saturated expected;
};

void check(const std::vector<Row>& rows) {
  for (const Row& row : rows) EXPECT_EQ(row.got, row.expected) << row.name;
}

TEST(IntegerHelpers, WidenAndCut) {
  EXPECT_TRUE(Int(0xff, 8, 0) == -1 && Int(0xff, 8, 1) == 255 && Int(0xabff, 8, 0) == -1);
  EXPECT_TRUE(Int(all, 64, 0) == -1 && Int(all, 64, 1) == two64 - 1);
  EXPECT_TRUE(Int(1, 1, 0) == -1 && Int(1, 1, 1) == 1);
  EXPECT_TRUE(Int(0x80000000, 32, 2) == -0x80000000LL) << "any u other than 1 is signed";
  EXPECT_TRUE(SInt(0x8000, 16) == -0x8000 && SInt(0x8000, 17) == 0);
  EXPECT_TRUE(UInt(0x1ff, 8) == 255);
  EXPECT_EQ(bits(-two64 - 2), all - 1);
  EXPECT_EQ(ones(64), all);
  EXPECT_EQ(ones(1), 1U);
  EXPECT_TRUE(AbsInt(-5) == 5 && AbsInt(5) == 5 && AbsInt(min128) == min128);
  EXPECT_TRUE(NegInt(min128) == min128 && AddInt(min128, min128) == 0 && SubInt(0, 1) == -1);
}

TEST(IntegerHelpers, ShiftsBeyondTheElement) {
  const struct {
    Int128 x, s, left;
  } lefts[] = {{1, 0, 1},    {1, 64, two64}, {1, 200, two64},          {1, two64 - 1, two64},
               {-8, -2, -2}, {-1, -200, -1}, {3, 63, Int128{3} << 63}, {min128, 1, 0}};
  for (const auto& [x, s, left] : lefts) {
    EXPECT_TRUE(ShiftLeftInt(x, s) == left) << bits(x) << " << " << bits(s);
  }
  const struct {
    Int128 x, s, right;
  } rights[] = {{-1, 200, -1},         {1, 200, 0},
                {-1, 64, -1},          {two64 - 1, 63, 1},
                {two64 - 1, 64, 0},    {-two64, 64, -1},
                {-1, 128, -1},         {min128, 128, 0},
                {min128 / 2, 128, -1}, {min128, 127, min128 >> 65}};
  for (const auto& [x, s, right] : rights) {
    EXPECT_TRUE(ShiftRightInt(x, s) == right) << bits(x) << " >> " << bits(s);
  }
  EXPECT_EQ(ShiftLeft(3, 65, 0), 6U);
}

TEST(IntegerHelpers, Saturation) {
  check({
      {"SatQ u8 256", SatQ(256, 8, 1), {255, 1}},
      {"SatQ u8 255", SatQ(255, 8, 1), {255, 0}},
      {"SatQ u8 -1", SatQ(-1, 8, 1), {0, 1}},
      {"SatQ s8 127", SatQ(127, 8, 0), {127, 0}},
      {"SatQ s8 128", SatQ(128, 8, 0), {127, 1}},
      {"SatQ s8 -128", SatQ(-128, 8, 0), {128, 0}},
      {"SatQ s8 -129", SatQ(-129, 8, 0), {128, 1}},
      {"SatQ u64 2^64", SatQ(two64, 64, 1), {all, 1}},
      {"SatQ u64 2^64-1", SatQ(two64 - 1, 64, 1), {all, 0}},
      {"SatQ s64 2^63", SatQ(two64 / 2, 64, 0), {top - 1, 1}},
      {"SatQ s64 -2^63", SatQ(-two64 / 2, 64, 0), {top, 0}},
      {"SatAdd s8", SatAdd(0x7f, 1, 8, 0), {127, 1}},
      {"SatAdd s8 is uncut", SatAdd(0xff, 0xff, 8, 0), {all - 1, 0}},
      {"SatAdd looks at w bits", SatAdd(0xff01, 0xff02, 8, 1), {3, 0}},
      {"SatAdd u64", SatAdd(all, 1, 64, 1), {all, 1}},
      {"SatSub u8", SatSub(0, 1, 8, 1), {0, 1}},
      {"SatSub s8 is cut", SatSub(0, 1, 8, 0), {0xff, 0}},
      {"SatSub s64", SatSub(top, 1, 64, 0), {top, 1}},
      {"SatMult s8", SatMult(0x80, 0x80, 8, 0), {127, 1}},
      {"SatMult s8 in range", SatMult(0xff, 0x80, 8, 0), {127, 1}},
      {"SatMult s8 negative", SatMult(0xff, 0x7f, 8, 0), {0x81, 0}},
      {"SatMult s64", SatMult(top, top, 64, 0), {top - 1, 1}},
      {"SatMult u64", SatMult(all, 2, 64, 1), {all, 1}},
      {"SatQShift in range is uncut", SatQShift(-2, 8, 0), {all - 1, 0}},
      {"SatQShift minimum is extended", SatQShift(-129, 8, 0), {all << 7, 1}},
      {"SatQShift maximum", SatQShift(128, 8, 0), {127, 1}},
      {"SatQShift unsigned", SatQShift(-1, 8, 1), {0, 1}},
      {"SatQUShift in range", SatQUShift(255, 8), {255, 0}},
      {"SatQUShift above", SatQUShift(256, 8), {255, 1}},
      {"SatQUShift far above", SatQUShift(0x10001, 8), {0, 1}},
      {"SatQUShift below", SatQUShift(-1, 8), {0, 1}},
      {"ShiftQLeftInt right", ShiftQLeftInt(-16, -2, 8, 0), {all - 3, 0}},
      {"ShiftQLeftInt fits", ShiftQLeftInt(-2, 3, 8, 0), {all - 15, 0}},
      {"ShiftQLeftInt over", ShiftQLeftInt(-2, 7, 8, 0), {all << 7, 1}},
      {"ShiftQLeftInt s = w", ShiftQLeftInt(1, 8, 8, 0), {127, 1}},
      {"ShiftQLeftInt s = w, negative", ShiftQLeftInt(-1, 8, 8, 0), {all << 7, 1}},
      {"ShiftQLeftInt s = w, unsigned", ShiftQLeftInt(1, 8, 8, 1), {255, 1}},
      {"ShiftQLeftInt of 0", ShiftQLeftInt(0, 100, 8, 1), {0, 0}},
      {"SatShiftLeft fits", SatShiftLeft(0x0f, 3, 8, 0), {0x78, 0}},
      {"SatShiftLeft over", SatShiftLeft(0x0f, 4, 8, 0), {127, 1}},
      {"SatShiftLeft under", SatShiftLeft(0x8f, 1, 8, 0), {128, 1}},
      {"SatShiftLeft unsigned", SatShiftLeft(0x8f, 200, 8, 1), {255, 1}},
      {"SatShiftLeftU fits", SatShiftLeftU(0x7f, 1, 8), {0xfe, 0}},
      {"SatShiftLeftU over", SatShiftLeftU(0x7f, 2, 8), {255, 1}},
      {"SatShiftLeftU negative", SatShiftLeftU(0xff, 0, 8), {0, 1}},
  });
}

TEST(IntegerHelpers, BitOperations) {
  const struct {
    std::uint64_t x;
    int w, highest, zeros, signs, count;
  } rows[] = {
      {0, 8, -1, 8, 7, 0},    {0xff, 8, 7, 0, 7, 8},           {0x1ff, 8, 7, 0, 7, 8},
      {0x40, 8, 6, 1, 0, 1},  {0x80, 8, 7, 0, 0, 1},           {0xc0, 8, 7, 0, 1, 2},
      {0, 32, -1, 32, 31, 0}, {0xffffffff, 32, 31, 0, 31, 32}, {all, 64, 63, 0, 63, 64},
      {0, 64, -1, 64, 63, 0}, {top, 64, 63, 0, 0, 1},          {top >> 1, 64, 62, 1, 0, 1},
  };
  for (const auto& r : rows) {
    EXPECT_EQ(HighestBitSet(r.x, r.w), r.highest) << r.x << " " << r.w;
    EXPECT_EQ(CountLeadingZeroBits(r.x, r.w), r.zeros) << r.x << " " << r.w;
    EXPECT_EQ(CountLeadingSignBits(r.x, r.w), r.signs) << r.x << " " << r.w;
    EXPECT_EQ(BitCount(r.x, r.w), r.count) << r.x << " " << r.w;
  }
  EXPECT_EQ(BitCount(all, 0), 0);
  EXPECT_EQ(BitReverse(0x1d, 8), 0xb8U);
  EXPECT_EQ(BitReverse(1, 64), top);
  EXPECT_EQ(BitReverse(all, 0), 0U);
}

TEST(IntegerHelpers, ReverseMaxMinAndProduct) {
  EXPECT_EQ(Reverse(0x11223344, 32, 1), 0x44332211U);
  EXPECT_EQ(Reverse(0x11223344, 32, 2), 0x33441122U);
  EXPECT_EQ(Reverse(0x1122334455667788, 64, 4), 0x5566778811223344U);
  EXPECT_EQ(Reverse(0x1122334455667788, 64, 1), 0x8877665544332211U);
  EXPECT_EQ(Reverse(0x1122, 8, 2), 0U) << "less than one group";
  EXPECT_EQ(Reverse(0x1122, 64, 8), 0U) << "no such group";

  EXPECT_EQ(Max(0x1ff, 0x02, 8, 1), 0x1ffU) << "the chosen argument comes whole";
  EXPECT_EQ(Max(0x1ff, 0x02, 8, 0), 0x02U);
  EXPECT_EQ(Min(0x1ff, 0x02, 8, 0), 0x1ffU);
  EXPECT_EQ(Min(0x105, 0x205, 8, 0), 0x105U) << "a tie gives the first argument";
  EXPECT_EQ(Max(0x105, 0x205, 8, 1), 0x105U);
  EXPECT_EQ(Max(3, 4, 24, 1), 0U);
  EXPECT_EQ(Min(all, 1, 64, 0), all);
  EXPECT_EQ(Min(all, 1, 64, 1), 1U);

  EXPECT_EQ(PolynomialMult(3, 7), (WordPair{9, 0}));
  EXPECT_EQ(PolynomialMult(top, 3), (WordPair{top, 1}));
  EXPECT_EQ(PolynomialMult(3, top), (WordPair{top, 1}));
  EXPECT_EQ(PolynomialMult(all, all), (WordPair{0x5555555555555555, 0x5555555555555555}));
}

TEST(IntegerHelpers, BigIntegers) {
  const BigInt minus_one = toBigInt(-1);
  EXPECT_EQ(minus_one, (BigInt{{all, all, all, all}}));
  EXPECT_EQ(toBigInt(two64 + 5), (BigInt{{5, 1, 0, 0}}));
  EXPECT_EQ(AddBigInt(minus_one, toBigInt(1)), (BigInt{{0, 0, 0, 0}}));
  EXPECT_EQ(AddBigInt({{all, all, 0, 0}}, toBigInt(1)), (BigInt{{0, 0, 1, 0}}));
  EXPECT_EQ(ShiftRightBigInt({{0, 0, 0, top}}, 127), (BigInt{{0, 0, all, all}}))
      << "shifts in the sign";
  EXPECT_EQ(ShiftRightBigInt({{1, 2, 4, 8}}, 0), (BigInt{{1, 2, 4, 8}}));
  EXPECT_EQ(ShiftRightBigInt({{1, 2, 4, 8}}, 64), (BigInt{{2, 4, 8, 0}}));
  EXPECT_EQ(ShiftRightBigInt({{0, 3, 5, 0}}, 1), (BigInt{{top, top | 1, 2, 0}}));
  check({
      {"u8 255", SatQBigInt(toBigInt(255), 8, 1), {255, 0}},
      {"u8 256", SatQBigInt(toBigInt(256), 8, 1), {255, 1}},
      {"u8 2^192", SatQBigInt({{0, 0, 0, 1}}, 8, 1), {255, 1}},
      {"u8 -1", SatQBigInt(minus_one, 8, 1), {0, 1}},
      {"s8 127", SatQBigInt(toBigInt(127), 8, 0), {127, 0}},
      {"s8 128", SatQBigInt(toBigInt(128), 8, 0), {127, 1}},
      {"s8 -128", SatQBigInt(toBigInt(-128), 8, 0), {128, 0}},
      {"s8 -129", SatQBigInt(toBigInt(-129), 8, 0), {128, 1}},
      {"s64 2^64", SatQBigInt(toBigInt(two64), 64, 0), {top - 1, 1}},
      {"s64 -2^63", SatQBigInt(toBigInt(-two64 / 2), 64, 0), {top, 0}},
      {"s64 -2^255", SatQBigInt({{0, 0, 0, top}}, 64, 0), {top, 1}},
  });
}

// An estimate is the reciprocal at the middle of the argument's step, rounded to 8 bits. Its error
// is at most half a step plus half a unit.
TEST(IntegerHelpers, EstimatesStayWithinTheirError) {
  for (int step = 256; step < 512; ++step) {
    const double a = step / 512.0;
    EXPECT_NEAR(recip_estimate(a), 1 / a, 1.0 / 170) << a;
    EXPECT_EQ(recip_estimate(a) * 256, std::floor(recip_estimate(a) * 256)) << a;
    EXPECT_EQ(recip_estimate(a), recip_estimate(a + 0.9 / 512)) << "one value for a step";
  }
  for (int step = 128; step < 512; ++step) {
    const double a = step / 512.0;
    EXPECT_NEAR(recip_sqrt_estimate(a), 1 / std::sqrt(a), 1.0 / 160) << a;
  }
  const struct {
    std::uint64_t x;
    std::uint32_t recip, rsqrt;
  } rows[] = {{0, 0xffffffff, 0xffffffff},          {0x3fffffff, 0xffffffff, 0xffffffff},
              {0x40000000, 0xffffffff, 0xff800000}, {0x7fffffff, 0xffffffff, 0xb5000000},
              {0x80000000, 0xff800000, 0xb4800000}, {0xffffffff, 0x80000000, 0x80000000},
              {0x1c0000000, 0xaa800000, 0x93800000}};
  for (const auto& [x, recip, rsqrt] : rows) {
    EXPECT_EQ(UnsignedRecipEstimate(x, 32), recip) << std::hex << x;
    EXPECT_EQ(UnsignedRSqrtEstimate(x, 32), rsqrt) << std::hex << x;
  }
}

}  // namespace
