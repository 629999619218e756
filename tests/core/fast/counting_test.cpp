// Counting and loop control: where operands are few, cases at the limits stand in tables; the
// predicates that are counted are random.
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

  // Runs `call` on the state of which `change` makes the expected outcome.
  template <class Change, class Call>
  void expect(const std::string& name, Change change, Call call) {
    cpu_state expected = state;
    change(expected);
    EXPECT_EQ(call(&state), aarch64_decode_ok);
    EXPECT_EQ(difference(expected, state), "") << name;
    state = expected;
  }

  cpu_state state;
};

TEST_F(Counting, SaturatingDecrementOfWAndX) {
  constexpr unsigned w = 2, x = 3;
  constexpr struct {
    unsigned width, number;
    u64 before, after;
  } cases[] = {{w, 5, 0x100000000 + vl - 1, 0},
               {w, 5, 0x100000000 + vl, 0},
               {w, 5, 0x100000000 + vl + 1, 1},
               {w, 5, 0xffffffffffffffff, 0xffffffff - vl},
               {x, 5, vl, 0},
               {x, 5, vl + 60, 60},
               {x, 5, 0x100000000, 0x100000000 - vl},
               {x, 5, 5, 0}};
  for (const auto& c : cases) {
    state.x[c.number] = c.before;
    expect(
        "uqdecb of " + std::to_string(c.before), [&](cpu_state& s) { s.x[c.number] = c.after; },
        [&](cpu_state* s) { return sve_uqdecb_rii(s, x_both_ways(c.number, c.width), all, 1); });
  }
  expect(
      "uqdecb of XZR", [](cpu_state&) {},
      [](cpu_state* s) { return sve_uqdecb_rii(s, x_both_ways(31), all, 16); });
}

TEST_F(Counting, VectorLengthArithmeticReachesSpButNotXzr) {
  expect(
      "addpl sp, sp, #-1", [](cpu_state& s) { s.sp -= pl; },
      [](cpu_state* s) {
        return sve_addpl_rri(s, {31, 3}, {31, 3}, -1);
      });
  expect(
      "addvl x30, sp, #-32", [](cpu_state& s) { s.x[30] = s.sp - 32 * vl; },
      [](cpu_state* s) {
        return sve_addvl_rri(s, {30, 3}, {31, 3}, -32);
      });
  expect(
      "addvl sp, x30, #31", [](cpu_state& s) { s.sp = s.x[30] + 31 * vl; },
      [](cpu_state* s) {
        return sve_addvl_rri(s, {31, 3}, {30, 3}, 31);
      });
  expect(
      "rdvl x2, #-2", [](cpu_state& s) { s.x[2] = -2 * vl; },
      [](cpu_state* s) { return sve_rdvl_ri(s, x_one_way(2), -2); });
  expect(
      "rdvl xzr, #1", [](cpu_state&) {},
      [](cpu_state* s) { return sve_rdvl_ri(s, x_one_way(31), 1); });
}

TEST_F(Counting, TrueElementsAreCountedAtTheirFirstByte) {
  for (unsigned size = 0; size < 4; ++size) {
    for (int round = 0; round < 50; ++round) {
      randomize(state);
      u64 active = 0, both = 0;
      for (unsigned i = 0; i < vector_bytes >> size; ++i) {
        active += bit(state.p[4], i, 1U << size);
        both += bit(state.p[4], i, 1U << size) && bit(state.p[15], i, 1U << size);
      }
      expect(
          "incp", [&](cpu_state& s) { s.x[3] += active; },
          [&](cpu_state* s) { return sve_incp_rp(s, x_both_ways(3), predicate(4, size)); });
      expect(
          "incp xzr", [](cpu_state&) {},
          [&](cpu_state* s) { return sve_incp_rp(s, x_both_ways(31), predicate(4, size)); });
      expect(
          "cntp", [&](cpu_state& s) { s.x[3] = both; },
          [&](cpu_state* s) {
            return sve_cntp_rpp(s, x_one_way(3), predicate(15, sve::unqualified),
                                predicate(4, size));
          });
    }
  }
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
      const auto change = [&](cpu_state& s) {
        std::memset(s.p[14], 0, vector_bytes);
        for (unsigned i = 0; i < std::min<u64>(c.true_elements, vector_bytes / bytes); ++i) {
          put(s.p[14], i, bytes, 1);
        }
        set_model_flags(s, every, s.p[14], bytes);
      };
      expect(c.name, change, [&](cpu_state* s) {
        return c.function(s, predicate(14, size), x_one_way(1, c.width), x_one_way(2, c.width));
      });
    }
  }
  state.x[2] = 0;
  expect(
      "ls of XZR and 0 at doublewords",
      [](cpu_state& s) {
        std::memset(s.p[0], 0, vector_bytes);
        s.p[0][0] = 1;
        s.nzcv = (s.nzcv & ~u64{0xf0000000}) | 0xa0000000;
      },
      [](cpu_state* s) {
        return sve_whilels_prr(s, predicate(0, 3), x_one_way(31), x_one_way(2));
      });
}

}  // namespace
