// One template per form, over the compare and the flag helper. Each builds all bytes of the result
// in the temporary, then sets the flags from it under the old pg, and only then copies it. So pd
// may be pg.
#include "sve/fast/compare.h"

#include "sve/fast/element_loops.h"
#include "sve/fast/predicates.h"

using namespace sve::fast;
using sve::vector_bytes;

namespace {

const char* as_chars(const unsigned char* p) { return reinterpret_cast<const char*>(p); }

// Element i of pd = value(i), a mask, where pg.
template <class T, class Value>
void set_predicate(cpu_state* s, P pd, P pg, Value value) {
  using Unit = group<T>;
  const unsigned char* g = s->p[pg.num];
  alignas(sve::group_bytes) unsigned char result[vector_bytes];
  write_in_place<Unit>(result,
                       [&](std::size_t i) { return (Unit)value(i) & load_unit<Unit>(g, i) & 1; });
  sve_ptest<std::make_signed_t<T>>(s, as_chars(g), as_chars(result));
  std::memcpy(s->p[pd.num], result, vector_bytes);
}

template <class Compare>
rc ppzz(cpu_state* s, P pd, P pg, Z zn, Z zm, Compare holds) {
  const unsigned char *n = s->z[zn.num], *m = s->z[zm.num];
  return by_size<single>(pd.size, [&]<class T>() {
    set_predicate<T>(s, pd, pg, [&](std::size_t i) {
      return holds(load_unit<group<T>>(n, i), load_unit<group<T>>(m, i));
    });
  });
}

// The immediate is truncated, or extended as its type requires.
template <class Integer, class Compare>
rc ppzi(cpu_state* s, P pd, P pg, Z zn, Integer imm, Compare holds) {
  const unsigned char* n = s->z[zn.num];
  return by_size<single>(pd.size, [&]<class T>() {
    const auto value = broadcast<group<T>>(static_cast<T>(imm));
    set_predicate<T>(s, pd, pg,
                     [&](std::size_t i) { return holds(load_unit<group<T>>(n, i), value); });
  });
}

constexpr auto eq = [](auto a, auto b) { return a == b; };
constexpr auto ne = [](auto a, auto b) { return a != b; };
constexpr auto ge = [](auto a, auto b) { return as_signed(a) >= as_signed(b); };
constexpr auto gt = [](auto a, auto b) { return as_signed(a) > as_signed(b); };
constexpr auto le = [](auto a, auto b) { return as_signed(a) <= as_signed(b); };
constexpr auto lt = [](auto a, auto b) { return as_signed(a) < as_signed(b); };
constexpr auto hs = [](auto a, auto b) { return a >= b; };
constexpr auto hi = [](auto a, auto b) { return a > b; };
constexpr auto lo = [](auto a, auto b) { return a < b; };

}  // namespace

rc sve_cmpeq_ppzz(cpu_state* s, P pd, P pg, Z zn, Z zm) { return ppzz(s, pd, pg, zn, zm, eq); }
rc sve_cmpne_ppzz(cpu_state* s, P pd, P pg, Z zn, Z zm) { return ppzz(s, pd, pg, zn, zm, ne); }
rc sve_cmpge_ppzz(cpu_state* s, P pd, P pg, Z zn, Z zm) { return ppzz(s, pd, pg, zn, zm, ge); }
rc sve_cmpgt_ppzz(cpu_state* s, P pd, P pg, Z zn, Z zm) { return ppzz(s, pd, pg, zn, zm, gt); }
rc sve_cmphs_ppzz(cpu_state* s, P pd, P pg, Z zn, Z zm) { return ppzz(s, pd, pg, zn, zm, hs); }
rc sve_cmphi_ppzz(cpu_state* s, P pd, P pg, Z zn, Z zm) { return ppzz(s, pd, pg, zn, zm, hi); }

rc sve_cmpeq_ppzi(cpu_state* s, P pd, P pg, Z zn, int i) { return ppzi(s, pd, pg, zn, i, eq); }
rc sve_cmpne_ppzi(cpu_state* s, P pd, P pg, Z zn, int i) { return ppzi(s, pd, pg, zn, i, ne); }
rc sve_cmpgt_ppzi(cpu_state* s, P pd, P pg, Z zn, int i) { return ppzi(s, pd, pg, zn, i, gt); }
rc sve_cmplt_ppzi(cpu_state* s, P pd, P pg, Z zn, int i) { return ppzi(s, pd, pg, zn, i, lt); }
rc sve_cmple_ppzi(cpu_state* s, P pd, P pg, Z zn, int i) { return ppzi(s, pd, pg, zn, i, le); }
rc sve_cmphi_ppzi(cpu_state* s, P pd, P pg, Z zn, unsigned i) { return ppzi(s, pd, pg, zn, i, hi); }
rc sve_cmplo_ppzi(cpu_state* s, P pd, P pg, Z zn, unsigned i) { return ppzi(s, pd, pg, zn, i, lo); }
