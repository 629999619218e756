// What a comparison with a processor or with the reference functions cannot show: how fast paths
// that look at whole bytes treat predicate bytes other than 0 and 1, and other vector lengths. The
// conformance test compares everything else with the processor, and agreement_test compares it with
// the reference functions.
#include <algorithm>
#include <functional>
#include <type_traits>

#include "sve/fast/immediates_shifts_moves.h"
#include "sve/fast/permutes_reductions.h"
#include "sve/fast/predicates.h"
#include "sve/state/predicate_pattern.h"
#include "tests/sve/fast/machine.h"

namespace {

using sve::vector_bytes;

class FastPaths : public RandomMachine {
 protected:
  cpu_state odd_, plain_;
};

// A predicate byte of an operand is true unless it is zero. In governing predicates and in the last
// operand of the breaks, only the lowest bit counts.
TEST_F(FastPaths, LookAtWholePredicateBytes) {
  constexpr aarch64_p_reg d = predicate(0, 0), g = predicate(1, sve::zeroing), n = predicate(2, 0),
                          m = predicate(3, 0);
  const struct {
    const char* name;
    sve::form::pppp* fast_path;
    bool all_of_m;
  } cases[] = {
      {"and", sve_and_pppp, true},
      {"orr", sve_orr_pppp, true},
      {"eor", sve_eor_pppp, true},
      {"nor", sve_nor_pppp, true},
      {"brkns", [](auto* s, auto d, auto g, auto n, auto) { return sve_brkns_ppp(s, d, g, n); },
       false},
      {"brkpbs", sve_brkpbs_pppp, false},
  };
  for (const auto& c : cases) {
    std::string differs;
    for (int round = 0; round < 200 && differs.empty(); ++round) {
      randomize(odd_);
      plain_ = odd_;
      for (unsigned k = 0; k < vector_bytes; ++k) {
        plain_.p[g.num][k] &= 1;
        plain_.p[n.num][k] = plain_.p[n.num][k] != 0;
        plain_.p[m.num][k] = c.all_of_m ? plain_.p[m.num][k] != 0 : plain_.p[m.num][k] & 1;
      }
      const cpu_state before = odd_;
      c.fast_path(&odd_, d, g, n, m);
      c.fast_path(&plain_, d, g, n, m);
      for (const auto& operand : {g, n, m}) {
        std::memcpy(plain_.p[operand.num], before.p[operand.num], vector_bytes);
      }
      differs = difference(plain_, odd_);
    }
    EXPECT_EQ(differs, "") << c.name;
  }
}

TEST_F(FastPaths, BrknsKeepsTheBytesOfItsDestination) {
  randomize(plain_);
  std::memset(plain_.p[1], 1, vector_bytes);
  odd_ = plain_;
  sve_brkns_ppp(&odd_, predicate(0, 0), predicate(1, sve::zeroing), predicate(1, 0));
  EXPECT_EQ(std::memcmp(odd_.p[0], plain_.p[0], vector_bytes), 0);
}

TEST_F(FastPaths, DupOfAnElementBeyondTheVectorGivesZeros) {
  constexpr unsigned quadwords = vector_bytes / 16;
  for (const unsigned index : {0U, quadwords - 1, quadwords}) {
    randomize(odd_);
    byte value[16] = {};
    if (index < quadwords) std::memcpy(value, odd_.z[3] + std::size_t{16} * index, 16);
    sve_dup_zzi(&odd_, {3, 4, 5, 5}, {3, 4, 5, 5}, index);
    for (std::size_t i = 0; i < quadwords; ++i) {
      EXPECT_EQ(std::memcmp(odd_.z[3] + 16 * i, value, 16), 0) << index << " in " << i;
    }
  }
}

// Shifts of z0 by counts that no instruction has; only direct callers pass them.
template <auto* Shift>
void shift_zzi(cpu_state* s, unsigned code, unsigned count) {
  Shift(s, {0, code, 5, 5}, {0, code, 5, 5}, count);
}

template <auto* Shift>
void shift_zpi(cpu_state* s, unsigned code, unsigned count) {
  Shift(s, {0, 5, code, code}, predicate(1, sve::merging), count);
}

constexpr struct {
  const char* name;
  void (*run)(cpu_state*, unsigned code, unsigned count);
  bool right;
} immediate_shifts[] = {
    {"asr_zzi", shift_zzi<sve_asr_zzi>, true},
    {"asr_zpi", shift_zpi<sve_asr_zpi>, true},
    {"lsl_zzi", shift_zzi<sve_lsl_zzi>, false},
    {"lsl_zpi", shift_zpi<sve_lsl_zpi>, false},
};

// A right shift clamps the count. A left shift uses only the low bits of the count, as many as the
// element has.
template <class T>
T shifted(T x, unsigned shift, bool right) {
  constexpr unsigned width = 8 * sizeof(T);
  if (right) return static_cast<T>(x >> std::min(shift, width - 1));
  const unsigned count = width < 32 ? shift % (1U << width) : shift;
  return count < width ? static_cast<T>(static_cast<std::make_unsigned_t<T>>(x) << count) : T{0};
}

template <class T>
void expect_shifts(const cpu_state& before, unsigned code) {
  for (const unsigned shift : {1U, 7U, 8U, 63U, 64U, 0x100U, 0x10000U, 0x10001U, ~0U}) {
    for (const auto& c : immediate_shifts) {
      cpu_state expected = before, actual = before;
      for (unsigned i = 0; i < sve::elements<T>; ++i) {
        const T x = sve::element<T>(before.z[0], i);
        sve::set_element(expected.z[0], i, shifted(x, shift, c.right));
      }
      c.run(&actual, code, shift);
      EXPECT_EQ(difference(expected, actual), "") << c.name << ", code " << code << ", " << shift;
    }
  }
}

TEST_F(FastPaths, ShiftByImmediatesBeyondTheElement) {
  randomize(plain_);
  std::memset(plain_.p[1], 1, vector_bytes);
  expect_shifts<std::int8_t>(plain_, sve::B);
  expect_shifts<std::int16_t>(plain_, sve::H);
  expect_shifts<std::int32_t>(plain_, sve::S);
  expect_shifts<std::int64_t>(plain_, sve::D);
}

// No instruction has such codes; only direct callers pass them.
TEST_F(FastPaths, TakeUnexpectedSizeCodesAsBytes) {
  const auto z = [](unsigned num, unsigned code) { return aarch64_z_reg{num, code, 5, 5}; };
  const auto zzz = [z](sve::form::zzz* path) {
    return [=](cpu_state* s, unsigned code) { path(s, z(0, code), z(1, code), z(2, code)); };
  };
  const auto ppp = [](sve::form::ppp* path) {
    return [=](cpu_state* s, unsigned code) {
      path(s, predicate(0, code), predicate(1, code), predicate(2, code));
    };
  };
  const struct {
    const char* name;
    std::function<void(cpu_state*, unsigned code)> run;
  } cases[] = {
      {"zip1", zzz(sve_zip1_zzz)},
      {"zip2", zzz(sve_zip2_zzz)},
      {"uzp1", zzz(sve_uzp1_zzz)},
      {"uzp2", zzz(sve_uzp2_zzz)},
      {"trn2", zzz(sve_trn2_zzz)},
      {"tbl", zzz(sve_tbl_zzz)},
      {"zip1_ppp", ppp(sve_zip1_ppp)},
      {"uzp1_ppp", ppp(sve_uzp1_ppp)},
      {"rev", [z](auto* s, unsigned code) { sve_rev_zz(s, z(0, code), z(1, code)); }},
      {"asr", [z](auto* s, unsigned code) { sve_asr_zzi(s, z(0, code), z(1, code), 9); }},
      {"lsl", [z](auto* s, unsigned code) { sve_lsl_zzi(s, z(0, code), z(1, code), 3); }},
      {"lastb", [z](auto* s, unsigned code) { sve_lastb_vpz(s, 0, predicate(1, 6), z(1, code)); }},
  };
  randomize(plain_);
  for (const auto& c : cases) {
    cpu_state expected = plain_;
    c.run(&expected, sve::B);
    for (const unsigned code : {sve::Q + 0U, sve::z_none + 0U, 6U, 7U, 31U, ~0U}) {
      cpu_state actual = plain_;
      c.run(&actual, code);
      EXPECT_EQ(difference(expected, actual), "") << c.name << " with size code " << code;
    }
  }
}

TEST(PredicatePattern, CountsAtManyLengths) {
  constexpr struct {
    unsigned pattern, n, count;
  } cases[] = {{0, 240, 128}, {0, 30, 16},  {0, 2, 2},      {1, 2, 1},    {8, 8, 8},
               {8, 6, 0},     {9, 16, 16},  {9, 15, 0},     {10, 30, 0},  {12, 240, 128},
               {12, 120, 0},  {13, 240, 0}, {13, 256, 256}, {14, 240, 0}, {28, 240, 0},
               {29, 30, 28},  {29, 2, 0},   {30, 32, 30},   {30, 2, 0},   {31, 30, 30},
               {11, 60, 0},   {31, 1, 1},   {0, 1, 1},      {28, 60, 0}};
  for (const auto& [pattern, n, count] : cases) {
    EXPECT_EQ(sve::pattern_count(pattern, n), count) << pattern << " of " << n;
  }
}

}  // namespace
