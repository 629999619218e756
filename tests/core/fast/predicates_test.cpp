// Predicate fast paths against models written from the architecture's pseudocode, on predicates
// whose bytes are not only 0 and 1 and whose elements have stale bytes behind the first: what a
// processor cannot show.
#include "sve/fast/predicates.h"

#include <functional>

#include "sve/state/predicate_pattern.h"
#include "tests/core/fast/machine.h"

namespace {

using sve::vector_bytes;

struct Operands {
  unsigned d, g, n, m, size;

  unsigned bytes() const { return 1U << size; }
  unsigned count() const { return vector_bytes >> size; }
};
using O = const Operands&;
using Call = std::function<aarch64_decode_rc(cpu_state*, O)>;
// Changes `s`, a copy of what was before, to what should be after.
using Model = void (*)(cpu_state& s, const cpu_state& before, const Operands& o);

constexpr auto d = [](O o) { return predicate(o.d, o.size); };
constexpr auto dn = [](O o) { return aarch64_p_reg{o.d, sve::p_none, o.size, o.size}; };
constexpr auto gm = [](O o) { return predicate(o.g, sve::merging); };
constexpr auto g = [](O o) { return predicate(o.g, sve::zeroing); };
constexpr auto n = [](O o) { return predicate(o.n, o.size); };
constexpr auto m = [](O o) { return predicate(o.m, o.size); };

// Byte k of pd where pg is true, else 0.
template <byte (*value)(byte n, byte m)>
void bytewise(cpu_state& s, const cpu_state& b, O o) {
  for (unsigned k = 0; k < vector_bytes; ++k) {
    s.p[o.d][k] = (b.p[o.g][k] & 1) != 0 ? value(b.p[o.n][k], b.p[o.m][k]) : 0;
  }
}

// BRKA and BRKB: the element at which pn is true belongs to the first part (`after`) or not.
template <bool after, bool merging>
void break_at(cpu_state& s, const cpu_state& b, const byte* n, O o) {
  bool broken = false;
  for (unsigned k = 0; k < vector_bytes; ++k) {
    const bool active = bit(b.p[o.g], k, 1), here = active && bit(n, k, 1);
    if (active) {
      s.p[o.d][k] = !broken && (after || !here);
    } else if (!merging) {
      s.p[o.d][k] = 0;
    }
    broken |= here;
  }
}
template <bool after, bool merging>
void break_at(cpu_state& s, const cpu_state& b, O o) {
  break_at<after, merging>(s, b, b.p[o.n], o);
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
  if (last_active(b, o)) {
    break_at<false, false>(s, b, b.p[o.m], o);
  } else {
    std::memset(s.p[o.d], 0, vector_bytes);
  }
  set_model_flags(s, b.p[o.g], s.p[o.d], 1);
}

void pnext(cpu_state& s, const cpu_state& b, O o) {
  unsigned next = 0;
  for (unsigned i = 0; i < o.count(); ++i) {
    if (bit(b.p[o.d], i, o.bytes())) next = i + 1;
  }
  while (next < o.count() && !bit(b.p[o.n], next, o.bytes())) ++next;
  std::memset(s.p[o.d], 0, vector_bytes);
  if (next < o.count()) put(s.p[o.d], next, o.bytes(), 1);
  set_model_flags(s, b.p[o.n], s.p[o.d], o.bytes());
}

void reversed(cpu_state& s, const cpu_state& b, O o) {
  for (unsigned i = 0; i < o.count(); ++i) {
    put(s.p[o.d], i, o.bytes(), get(b.p[o.n], o.count() - 1 - i, o.bytes()));
  }
}

void high_unpacked(cpu_state& s, const cpu_state& b, O o) {
  const byte* half = b.p[o.n] + vector_bytes / 2;
  for (unsigned i = 0; i < vector_bytes / 2; ++i) put(s.p[o.d], i, 2, half[i] & 1U);
}

struct PredicateCase {
  const char* name;
  Call call;
  Model model;
};

const PredicateCase predicate_cases[] = {
    {"and", with(sve_and_pppp, d, g, n, m),
     bytewise<[](byte n, byte m) -> byte { return n && m; }>},
    {"eor", with(sve_eor_pppp, d, g, n, m),
     bytewise<[](byte n, byte m) -> byte { return !n != !m; }>},
    {"bic", with(sve_bic_pppp, d, g, n, m),
     bytewise<[](byte n, byte m) -> byte { return n & ~m; }>},
    {"nor", with(sve_nor_pppp, d, g, n, m),
     bytewise<[](byte n, byte m) -> byte { return !n && !m; }>},
    {"sel", with(sve_sel_pppp, d, g, n, m),
     [](cpu_state& s, const cpu_state& b, O o) {
       for (unsigned k = 0; k < vector_bytes; ++k) {
         s.p[o.d][k] = b.p[bit(b.p[o.g], k, 1) ? o.n : o.m][k];
       }
     }},
    {"ptest", with(sve_ptest_pp, g, n),
     [](cpu_state& s, const cpu_state& b, O o) { set_model_flags(s, b.p[o.g], b.p[o.n], 1); }},
    {"brka/m", with(sve_brka_ppp, d, gm, n), break_at<true, true>},
    {"brkb/z", with(sve_brkb_ppp, d, g, n), break_at<false, false>},
    {"brkns", with(sve_brkns_ppp, dn, g, n), brkns},
    {"brkpbs", with(sve_brkpbs_pppp, d, g, n, m), brkpbs},
    {"pnext", with(sve_pnext_pp, dn, n), pnext},
    {"rdffr/z", with(sve_rdffr_pp, d, g),
     [](cpu_state& s, const cpu_state& b, O o) {
       for (unsigned k = 0; k < vector_bytes; ++k) s.p[o.d][k] = b.ffr[k] & b.p[o.g][k];
     }},
    {"punpkhi", with(sve_punpkhi_pp, d, n), high_unpacked},
    {"rev", with(sve_rev_pp, d, n), reversed},
};

class Predicates : public RandomMachine {};

TEST_F(Predicates, AgreeWithTheModel) {
  cpu_state before;
  for (const PredicateCase& c : predicate_cases) {
    for (int round = 0; round < 200 && !HasFailure(); ++round) {
      randomize(before);
      const auto near = [this] { return static_cast<unsigned>(12 + number(4)); };
      const Operands o{near(), near(), near(), near(), static_cast<unsigned>(number(4))};
      cpu_state expected = before, actual = before;
      c.model(expected, before, o);
      EXPECT_EQ(c.call(&actual, o), aarch64_decode_ok);
      EXPECT_EQ(difference(expected, actual), "") << c.name << " at size " << size_names[o.size];
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
