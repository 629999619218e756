// The predicate functions, by table at 128 bits, where a predicate is readable as a string. At any
// length, the lanes above the vector must not count.
#include "sve/semantics/predicates.h"

#include "tests/sve/semantics/context.h"

namespace {

// Lane 0 is the leftmost character; spaces are for the reader.
PredV lanes(const std::string& text) {
  PredV p{};
  unsigned lane = 0;
  for (const char c : text) {
    if (c != ' ') p.set_lane(lane++, c == '1');
  }
  return p;
}

std::string text(const PredV& p, unsigned count) {
  std::string result;
  for (unsigned i = 0; i < count; ++i) result += p.lane(i) ? '1' : '0';
  return result;
}

using OfTwo = sve::semantics::governed_of_two*;

TEST(Predicates, FlagSetters) {
  const std::string none = "0000 0000 0000 0000", some = "1000 0000 1000 0000";
  const struct {
    const char* what;
    std::string g, r;
    int w;
    const char *nzcv, *nzc, *ncv, *nc;  // all start from NzcV
  } rows[] = {
      {"nothing active", none, some, 32, "nZCv", "nZCV", "nzCv", "NzcV"},
      {"nothing true", some, none, 32, "nZCv", "nZCV", "nzCv", "nzCV"},
      {"first true", some, "1000 0000 0000 0000", 32, "NzCv", "NzCV", "NzCv", "NzCV"},
      {"last true", some, "0000 0000 1000 0000", 32, "nzcv", "nzcV", "nzcv", "nzcV"},
      {"true where inactive", some, "0000 1000 0000 1000", 32, "nZCv", "nZCV", "nzCv", "nzCV"},
      {"non-first lane of the first", some, "0010 0000 0000 0000", 32, "nzCv", "nzCV", "nzCv",
       "nzCV"},
      {"non-first lane of the last", some, "0000 0000 0001 0000", 32, "nzcv", "nzcV", "nzcv",
       "nzcV"},
      {"active by a non-first lane only", "0100 0000 0000 0001", some, 32, "nZCv", "nZCV", "nzCv",
       "NzcV"},
      {"the same lanes as bytes", "0100 0000 0000 0001", "0100 0000 0000 0000", 8, "NzCv", "NzCV",
       "NzCv", "NzCV"},
  };
  for (const auto& row : rows) {
    const auto after = [&row](auto setter) {
      CpuContext ctx = context(2);
      ctx.nzcv = sve::flag_n | sve::flag_v | 0x5a5a5a;
      setter(lanes(row.g), lanes(row.r), row.w, &ctx);
      EXPECT_EQ(ctx.nzcv & 0x0fffffff, 0x5a5a5aU);
      return flags(ctx);
    };
    EXPECT_EQ(after(PredSetNZCV), row.nzcv) << row.what;
    EXPECT_EQ(after(PredSetNZC), row.nzc) << row.what;
    EXPECT_EQ(after(PredSetNCV), row.ncv) << row.what;
    EXPECT_EQ(after(PredSetNC), row.nc) << row.what;
  }
}

// Lanes above the vector are not elements, and they set no flag.
TEST(Predicates, LanesAboveTheVectorDoNotCount) {
  for (const unsigned vl : {2U, 8U, 30U}) {
    CpuContext ctx = context(vl);
    PredV above{};
    for (unsigned i = vl * 8; i < 256; ++i) above.set_lane(i, true);
    ctx.ffr = above;
    EXPECT_EQ(FindFirstActive(above, 8, &ctx), -1);
    EXPECT_EQ(FindLastActive(above, 64, &ctx), -1);
    for (const OfTwo f : {VecPOrNFlgPPZ, VecPNandFlgPPZ, VecPNorFlgPPZ, VecPBreakPrevAFlgPZ}) {
      EXPECT_EQ(text(f(above, above, above, &ctx), 256), std::string(256, '0'));
      EXPECT_EQ(flags(ctx), "nZCv");
    }
    EXPECT_EQ(text(VecPReadFFSRP(&ctx), 256), std::string(256, '0'));
    VecPClearFFSR(&ctx);
    EXPECT_EQ(text(ctx.ffr, 256),
              std::string(std::size_t{vl} * 8, '1') + std::string(256 - vl * 8, '0'));
  }
}

TEST(Predicates, Patterns) {
  EXPECT_EQ(VecTrueILength(29, 30), 28);
  CpuContext ctx = context(2);
  EXPECT_EQ(text(VecP32TrueI(3, &ctx), 16), "1000100010000000");
  EXPECT_EQ(text(VecP64TrueFlgI(31, &ctx), 16), "1000000010000000");
  EXPECT_EQ(flags(ctx), "Nzcv");
  EXPECT_EQ(text(VecP16TrueFlgI(9, &ctx), 16), std::string(16, '0'));
  EXPECT_EQ(flags(ctx), "nZCv");
}

}  // namespace
