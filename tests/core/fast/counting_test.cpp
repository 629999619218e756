// Counting and loop control at the limits of their counters.
#include "sve/fast/counting.h"

#include <algorithm>

#include "tests/core/fast/machine.h"

namespace {

using sve::vector_bytes;

constexpr unsigned all = 31;
constexpr u64 vl = vector_bytes, pl = vector_bytes / 8;

class Counting : public RandomMachine {
 protected:
  Counting() { randomize(state); }

  // The fast path that gave `result` has turned the state into `expected`.
  void expect(const std::string& name, const cpu_state& expected, aarch64_decode_rc result) {
    EXPECT_EQ(result, aarch64_decode_ok);
    EXPECT_EQ(difference(expected, state), "") << name;
    state = expected;
  }
  cpu_state with_x(unsigned number, u64 value) const {
    cpu_state changed = state;
    (number < 31 ? changed.x[number] : changed.sp) = value;
    return changed;
  }

  cpu_state state;
};

TEST_F(Counting, SaturatingDecrementOfWAndX) {
  constexpr unsigned w = 2, x = 3;
  constexpr struct {
    unsigned width;
    u64 before, after;
  } cases[] = {{w, 0x100000000 + vl - 1, 0},
               {w, 0x100000000 + vl, 0},
               {w, 0x100000000 + vl + 1, 1},
               {w, 0xffffffffffffffff, 0xffffffff - vl},
               {x, vl, 0},
               {x, vl + 60, 60},
               {x, 0x100000000, 0x100000000 - vl},
               {x, 5, 0}};
  for (const auto& c : cases) {
    state.x[5] = c.before;
    const cpu_state expected = with_x(5, c.after);
    expect("uqdecb of " + std::to_string(c.before), expected,
           sve_uqdecb_rii(&state, x_both_ways(5, c.width), all, 1));
  }
  const cpu_state before = state;
  expect("uqdecb of XZR", before, sve_uqdecb_rii(&state, x_both_ways(31), all, 16));
}

TEST_F(Counting, VectorLengthArithmeticReachesSpButNotXzr) {
  constexpr struct {
    const char* name;
    sve::form::rri* function;
    unsigned d, n;
    int imm;
    u64 unit;
  } cases[] = {{"addpl sp, sp, #-1", sve_addpl_rri, 31, 31, -1, pl},
               {"addvl x30, sp, #-32", sve_addvl_rri, 30, 31, -32, vl},
               {"addvl sp, x30, #31", sve_addvl_rri, 31, 30, 31, vl}};
  for (const auto& c : cases) {
    const u64 n = c.n < 31 ? state.x[c.n] : state.sp;
    const cpu_state expected = with_x(c.d, n + static_cast<u64>(c.imm) * c.unit);
    expect(c.name, expected, c.function(&state, {c.d, 3}, {c.n, 3}, c.imm));
  }
  const cpu_state expected = with_x(2, -2 * vl);
  expect("rdvl x2, #-2", expected, sve_rdvl_ri(&state, x_one_way(2), -2));
  expect("rdvl xzr, #1", expected, sve_rdvl_ri(&state, x_one_way(31), 1));
}

TEST_F(Counting, WhileAtTheLimitsOfItsCounter) {
  constexpr unsigned w = 2, x = 3;
  constexpr u64 max = ~u64{0}, junk = 0xabcd00000000;
  constexpr u64 never_ends = 10000;  // more than the elements of any length
  static const struct {
    const char* name;
    sve::form::prr* function;
    unsigned width;
    u64 n, m, true_elements;
  } cases[] = {
      {"lt", sve_whilelt_prr, x, 0, 1, 1},
      {"lt", sve_whilelt_prr, x, max, 1, 2},
      {"lt to the end", sve_whilelt_prr, x, u64{1} << 63, INT64_MAX, never_ends},
      {"lt downward", sve_whilelt_prr, x, 1, max, 0},
      {"lt at the largest", sve_whilelt_prr, x, INT64_MAX - 1, INT64_MAX, 1},
      {"lt of words", sve_whilelt_prr, w, 0x7fffffff, 0x80000000, 0},
      {"lt of words", sve_whilelt_prr, w, junk | 0xffffffff, junk << 1 | 1, 2},
      {"lo", sve_whilelo_prr, x, 5, 5, 0},
      {"lo at the largest", sve_whilelo_prr, x, max - 1, max, 1},
      {"lo of words", sve_whilelo_prr, w, 0xfffffffe, 0xffffffff, 1},
      {"lo of words", sve_whilelo_prr, w, 0x7fffffff, junk | 0x80000000, 1},
      {"ls", sve_whilels_prr, x, 5, 5, 1},
      {"ls", sve_whilels_prr, x, 6, 5, 0},
      {"ls past the wrap", sve_whilels_prr, x, max, max, never_ends},
      {"ls past the wrap", sve_whilels_prr, w, 0xffffffff, junk | 0xffffffff, never_ends},
      {"ls up to the wrap", sve_whilels_prr, w, 0xffffffff, 0xfffffffe, 0},
  };
  for (const auto& c : cases) {
    for (unsigned size = 0; size < 4; ++size) {
      randomize(state);
      state.x[1] = c.n;
      state.x[2] = c.m;
      const unsigned bytes = 1U << size;
      byte every[vector_bytes];
      std::memset(every, 1, vector_bytes);
      cpu_state expected = state;
      std::memset(expected.p[14], 0, vector_bytes);
      for (unsigned i = 0; i < std::min<u64>(c.true_elements, vector_bytes / bytes); ++i) {
        put(expected.p[14], i, bytes, 1);
      }
      set_model_flags(expected, every, expected.p[14], bytes);
      expect(c.name, expected,
             c.function(&state, predicate(14, size), x_one_way(1, c.width), x_one_way(2, c.width)));
    }
  }
  state.x[2] = 0;
  cpu_state expected = state;
  std::memset(expected.p[0], 0, vector_bytes);
  expected.p[0][0] = 1;
  expected.nzcv = (state.nzcv & ~u64{0xf0000000}) | 0xa0000000;
  expect("ls of XZR and 0 at doublewords", expected,
         sve_whilels_prr(&state, predicate(0, 3), x_one_way(31), x_one_way(2)));
}

}  // namespace
