// Reductions against a scalar model from random states: all sizes, register numbers so close
// together that operands coincide, predicate bytes of every kind. The whole state is compared, so
// nothing else may change.
#include <functional>

#include "sve/fast/immediates_shifts_moves.h"
#include "sve/fast/permutes_reductions.h"
#include "tests/core/fast/machine.h"

namespace {

using sve::vector_bytes;

// Register numbers of one random instruction.
struct Operands {
  unsigned d, n, g, xn, size;
};

// What a model sees: element i of an instruction's operands as they were before it ran.
struct Element {
  Element(const cpu_state& state, const Operands& operands, unsigned index)
      : s(state), o(operands), i(index) {}

  u64 nth_n(u64 k) const { return get(s.z[o.n], k, bytes); }

  const cpu_state& s;
  const Operands& o;
  unsigned i, bytes = 1U << o.size, count = vector_bytes / bytes;
  u64 n = nth_n(i);
  bool active = bit(s.p[o.g], i, bytes);
  u64 xn = o.xn < 31 ? s.x[o.xn] : 0;
};

using Call = std::function<aarch64_decode_rc(cpu_state*, const Operands&)>;
using E = const Element&;
using O = const Operands&;

// What handlers make of the operands for a fast path, by role.
constexpr auto n = [](O o) { return z_one_way(o.n, o.size); };
constexpr auto gu = [](O o) { return predicate(o.g, sve::unqualified); };
constexpr auto vd = [](O o) { return o.d; };
constexpr auto xn = [](O o) { return x_one_way(o.xn, o.size); };
constexpr auto xdn = [](O o) { return x_both_ways(o.xn, o.size); };

struct ReductionCase {
  const char* name;
  Call call;
  u64 (*start)(E e);          // the result if no element is active
  u64 (*next)(u64 sum, E e);  // the low bits of sum count
  enum { element_0, doubleword_0, general } destination;
};

const ReductionCase reduction_cases[] = {
    {"andv", with(sve_andv_vpz, vd, gu, n), [](E) { return ~u64{0}; },
     [](u64 sum, E e) { return sum & e.n; }, ReductionCase::element_0},
    {"uaddv", with(sve_uaddv_vpz, vd, gu, n), [](E) { return u64{0}; },
     [](u64 sum, E e) { return sum + e.n; }, ReductionCase::doubleword_0},
    {"lastb_vpz", with(sve_lastb_vpz, vd, gu, n), [](E e) { return e.nth_n(e.count - 1); },
     [](u64, E e) { return e.n; }, ReductionCase::element_0},
    {"lastb_rpz", with(sve_lastb_rpz, xn, gu, n), [](E e) { return e.nth_n(e.count - 1); },
     [](u64, E e) { return e.n; }, ReductionCase::general},
    {"clastb_rpz", with(sve_clastb_rpz, xdn, gu, n), [](E e) { return e.xn; },
     [](u64, E e) { return e.n; }, ReductionCase::general},
};

class Reductions : public RandomMachine {
 protected:
  // Random operands at a size; the numbers of the two registers often coincide.
  void draw(unsigned size) {
    randomize(state);
    const auto near = [this] { return static_cast<unsigned>(29 + number(3)); };
    const auto scalar = static_cast<unsigned>(number(3) == 0 ? 31 : number(31));
    o = {near(), near(), static_cast<unsigned>(number(3)), scalar, size};
  }

  cpu_state expected(const ReductionCase& c) const {
    cpu_state s = state;
    u64 sum = c.start({state, o, 0});
    for (unsigned i = 0; i < vector_bytes >> o.size; ++i) {
      const Element e{state, o, i};
      if (e.active) sum = c.next(sum, e);
    }
    if (c.destination != ReductionCase::doubleword_0) sum = low_bits(sum, 8U << o.size);
    if (c.destination == ReductionCase::general) {
      if (o.xn < 31) s.x[o.xn] = sum;
    } else {
      std::memset(s.z[o.d], 0, vector_bytes);
      put(s.z[o.d], 0, 8, sum);
    }
    return s;
  }

  cpu_state state;
  Operands o;
};

TEST_F(Reductions, AgreeWithTheScalarModel) {
  for (const ReductionCase& c : reduction_cases) {
    for (int round = 0; round < 100 && !HasFailure(); ++round) {
      draw(round % 4);
      cpu_state actual = state;
      EXPECT_EQ(c.call(&actual, o), aarch64_decode_ok);
      EXPECT_EQ(difference(expected(c), actual), "") << c.name << " at " << size_names[o.size];
    }
  }
}

TEST_F(Reductions, QuadwordsAreBroadcastByDup) {
  constexpr std::size_t quadwords = vector_bytes / 16;
  for (std::size_t index : {std::size_t{0}, quadwords - 1, quadwords}) {
    randomize(state);
    byte value[16] = {};
    if (index < quadwords) std::memcpy(value, state.z[3] + 16 * index, 16);
    sve_dup_zzi(&state, {3, 4, 5, 5}, {3, 4, 5, 5}, static_cast<unsigned>(index));
    for (std::size_t i = 0; i < quadwords; ++i) {
      EXPECT_EQ(std::memcmp(state.z[3] + 16 * i, value, 16), 0) << index << " in " << i;
    }
  }
}

}  // namespace
