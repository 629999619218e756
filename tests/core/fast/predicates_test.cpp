// The predicate fast paths that look at whole bytes, on predicates whose bytes are not only 0 and
// 1: what a processor cannot show. All others look at the lowest bits alone.
#include "sve/fast/predicates.h"

#include <functional>

#include "sve/state/predicate_pattern.h"
#include "tests/core/fast/machine.h"

namespace {

using sve::vector_bytes;

struct Operands {
  unsigned d, g, n, m;
};
using O = const Operands&;
using Call = std::function<aarch64_decode_rc(cpu_state*, O)>;
// Changes `s`, a copy of what was before, to what should be after.
using Model = void (*)(cpu_state& s, const cpu_state& before, O o);

constexpr auto d = [](O o) { return predicate(o.d, 0); };
constexpr auto g = [](O o) { return predicate(o.g, sve::zeroing); };
constexpr auto n = [](O o) { return predicate(o.n, 0); };
constexpr auto m = [](O o) { return predicate(o.m, 0); };

// Byte k of pd where pg is true, else 0.
template <byte (*value)(byte n, byte m)>
void bytewise(cpu_state& s, const cpu_state& b, O o) {
  for (unsigned k = 0; k < vector_bytes; ++k) {
    s.p[o.d][k] = (b.p[o.g][k] & 1) != 0 ? value(b.p[o.n][k], b.p[o.m][k]) : 0;
  }
}

bool last_active(const cpu_state& b, O o) {
  bool last = false;
  for (unsigned k = 0; k < vector_bytes; ++k) {
    if (bit(b.p[o.g], k, 1)) last = b.p[o.n][k] != 0;
  }
  return last;
}

void brkns(cpu_state& s, const cpu_state& b, O o) {
  if (!last_active(b, o)) std::memset(s.p[o.d], 0, vector_bytes);
  byte all[vector_bytes];
  std::memset(all, 1, vector_bytes);
  set_model_flags(s, all, s.p[o.d], 1);
}

void brkpbs(cpu_state& s, const cpu_state& b, O o) {
  bool before = last_active(b, o);
  for (unsigned k = 0; k < vector_bytes; ++k) {
    const bool active = bit(b.p[o.g], k, 1);
    before = before && !(active && bit(b.p[o.m], k, 1));
    s.p[o.d][k] = active && before;
  }
  set_model_flags(s, b.p[o.g], s.p[o.d], 1);
}

const struct {
  const char* name;
  Call call;
  Model model;
} predicate_cases[] = {
    {"and", with(sve_and_pppp, d, g, n, m),
     bytewise<[](byte n, byte m) -> byte { return n && m; }>},
    {"orr", with(sve_orr_pppp, d, g, n, m),
     bytewise<[](byte n, byte m) -> byte { return n || m; }>},
    {"eor", with(sve_eor_pppp, d, g, n, m),
     bytewise<[](byte n, byte m) -> byte { return !n != !m; }>},
    {"nor", with(sve_nor_pppp, d, g, n, m),
     bytewise<[](byte n, byte m) -> byte { return !n && !m; }>},
    {"brkns", with(sve_brkns_ppp, d, g, n), brkns},
    {"brkpbs", with(sve_brkpbs_pppp, d, g, n, m), brkpbs},
};

class Predicates : public RandomMachine {};

TEST_F(Predicates, AgreeWithTheModelOfBytes) {
  cpu_state before;
  for (const auto& c : predicate_cases) {
    for (int round = 0; round < 200 && !HasFailure(); ++round) {
      randomize(before);
      const auto near = [this] { return static_cast<unsigned>(12 + number(4)); };
      const Operands o{near(), near(), near(), near()};
      cpu_state expected = before, actual = before;
      c.model(expected, before, o);
      EXPECT_EQ(c.call(&actual, o), aarch64_decode_ok);
      EXPECT_EQ(difference(expected, actual), "") << c.name;
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
