// Counts and saturating sums: the clamps, the extension of results, and the vector length.
#include "sve/semantics/counts.h"

#include "tests/core/semantics/context.h"

namespace {

constexpr U64 all = ~U64{0};
constexpr U64 top = U64{1} << 63;
constexpr unsigned ALL = 31, POW2 = 0, VL256 = 13, MUL3 = 30;  // patterns

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

struct Row {
  const char* what;
  U64 got, expected;
};

void check(std::initializer_list<Row> rows) {
  for (const Row& row : rows) EXPECT_EQ(row.got, row.expected) << row.what;
}

TEST(Counts, SaturatingScalars) {
  CpuContext ctx = context(30);
  const U32 min32 = 0x80000000, max32 = 0x7fffffff;
  check({
      {"u32 clamps at the top", VecU32QIncrVL4SI(0xffffffff, ALL, 0, &ctx), 0xffffffff},
      {"u32 reaches the top", VecU32QIncrVL4SI(0xffffffff - 60, ALL, 0, &ctx), 0xffffffff},
      {"u32 is zero-extended", VecU8QIncrVL4SI(min32, POW2, 0, &ctx), 0x80000080},
      {"u32 clamps at 0", VecU8QDecrVL4SI(100, ALL, 0, &ctx), 0},
      {"s32 clamps at the top", VecS8QIncrVL4SI(max32, ALL, 0, &ctx), max32},
      {"s32 top by a negative operand", VecS8QIncrVL4SI(0xffffffff, ALL, 0, &ctx), 239},
      {"s32 stays below", VecS8QDecrVL4SI(min32, ALL, 0, &ctx), 0xffffffff80000000},
      {"s32 is sign-extended", VecS16QDecrVL4SI(0, ALL, 1, &ctx), all - 239},
      {"u64 clamps at 0", VecU16QDecrVL8SI(5, ALL, 0, &ctx), 0},
      {"u64 clamps at the top", VecU16QIncrVL8SI(all - 119, ALL, 0, &ctx), all},
      {"s64 clamps at the top", VecS64QIncrVL8SI(top - 1, ALL, 15, &ctx), top - 1},
      {"s64 clamps at the bottom", VecS64QDecrVL8SI(top + 3, ALL, 15, &ctx), top},
      {"s64 passes 0", VecS8QIncrVL8SI(all, 1, 0, &ctx), 0},
      {"an unallocated pattern adds nothing", VecS8QIncrVL8SI(7, 20, 9, &ctx), 7},
      {"INCB wraps", VecU8IncrVLSI(all, ALL, 0, &ctx), 239},
      {"DECD wraps", VecU64DecrVLSI(0, ALL, 0, &ctx), all - 29},
  });
}

TEST(Counts, SaturatingSumsOfActiveElements) {
  CpuContext ctx = context(30);
  const PredV halves = first_true<U16>(100), bytes = first_true<U8>(200);
  check({
      {"s32 up", VecS16QIncrSCount4PS(halves, 0x7fffffff, &ctx), 0x7fffffff},
      {"s32 down", VecS16QDecrSCount4PS(halves, 0x80000010, &ctx), 0xffffffff80000000},
      {"u32 down", VecU8QDecrSCount4PS(bytes, 199, &ctx), 0},
      {"u32 up", VecU8QIncrSCount4PS(bytes, 0xffffff00, &ctx), 0xffffffc8},
      {"s64 up", VecS8QIncrSCount8PS(bytes, top - 200, &ctx), top - 1},
      {"u64 down", VecU16QDecrSCount8PS(halves, 101, &ctx), 1},
      {"DECP wraps", VecU16DecrSCountPS(halves, 99, &ctx), all},
      {"INCP wraps", VecU8IncrSCountPS(bytes, all, &ctx), 199},
  });

  const VecV top16 = filled<U16>(0xfff0), low16 = filled<U16>(0x8010);
  EXPECT_EQ(uniform<U16>(VecU16QIncrCountPV(halves, top16, &ctx), 30), 0xffff);
  EXPECT_EQ(uniform<U16>(VecU16IncrCountPV(halves, top16, &ctx), 30), 0x54);
  EXPECT_EQ(uniform<U16>(VecS16QDecrCountPV(halves, low16, &ctx), 30), 0x8000);
  EXPECT_EQ(uniform<U16>(VecS16QIncrCountPV(halves, top16, &ctx), 30), 0x54);
  const PredV doubles = first_true<U64>(3);
  EXPECT_EQ(uniform<U64>(VecU64QIncrCountPV(doubles, filled(all - 1), &ctx), 30), all);
  EXPECT_EQ(uniform<U64>(VecU64QDecrCountPV(doubles, filled(all - 1), &ctx), 30), all - 4);
}

TEST(Counts, SaturatingVectors) {
  CpuContext ctx = context(2);
  ctx.fpsr = 0x123;
  const auto bytes = [](U8 value) { return filled<U8>(value); };
  const auto words = [](U64 value) { return filled<U64>(value); };
  check({
      {"s8 immediate is unsigned", VecS8QAddVIX(bytes(100), 200, &ctx).bytes[15], 127},
      {"s8 minus an unsigned immediate", VecS8QSubVIX(bytes(0x9c), 255, &ctx).bytes[15], 0x80},
      {"s8 in range", VecS8QAddVIX(bytes(0x80), 255, &ctx).bytes[15], 127},
      {"u8 immediate", VecU8QSubVIX(bytes(3), 4, &ctx).bytes[15], 0},
      {"u8 sum", VecU8QAddVVX(bytes(200), bytes(56), &ctx).bytes[15], 255},
      {"s8 sum", VecS8QAddVVX(bytes(0x80), bytes(0xff), &ctx).bytes[15], 0x80},
      {"s8 difference", VecS8QSubVVX(bytes(0x7f), bytes(0xff), &ctx).bytes[15], 0x7f},
      {"u8 difference", VecU8QSubVVX(bytes(1), bytes(255), &ctx).bytes[15], 0},
  });
  EXPECT_EQ(uniform<U64>(VecU64QAddVIX(words(all - 1), 0xff00, &ctx), 2), all);
  EXPECT_EQ(uniform<U64>(VecS64QSubVVX(words(top), words(1), &ctx), 2), top);
  EXPECT_EQ(uniform<U64>(VecS64QSubVVX(words(0), words(top), &ctx), 2), top - 1);
  EXPECT_EQ(uniform<U64>(VecU64QSubVVX(words(top), words(1), &ctx), 2), top - 1);
  EXPECT_EQ(ctx.fpsr, 0x123U) << "saturation is not cumulative";
}

}  // namespace
