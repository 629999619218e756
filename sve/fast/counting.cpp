// The vector length is fixed at build time, so an element count depends only on pattern and size.
// Most functions here multiply that count by a small multiplier.
#include "sve/fast/counting.h"

#include "sve/fast/element_loops.h"
#include "sve/fast/operations.h"
#include "sve/fast/predicate_scan.h"
#include "sve/state/predicate_pattern.h"

using namespace sve::fast;
using sve::element;
using sve::elements;
using sve::pattern_count;
using sve::read_x;
using sve::vector_bytes;
using sve::write_x;

namespace {

// Counts elements of type T. The register is an X register.
template <class T, class Op>
rc rii(cpu_state* s, R rdn, unsigned pattern, unsigned multiplier, Op op) {
  const U32 delta = multiplier * pattern_count(pattern, elements<T>);
  write_x(s, rdn, op(read_x(s, rdn), U64{delta}));
  return aarch64_decode_ok;
}

// The same for each element of type T of a vector.
template <class T, class Op>
rc zii(cpu_state* s, Z zdn, unsigned pattern, unsigned multiplier, Op op) {
  const U32 count = multiplier * pattern_count(pattern, elements<T>);
  const auto delta = broadcast<group<T>>(static_cast<T>(count));
  return compute<group<T>>(
      s, zdn, [=](auto dn) { return op(dn, delta); }, zdn);
}

// The number of elements of type T whose bit 0 is set in all of the given predicates.
template <class T, class... Predicates>
U64 count_true(Predicates... predicates) {
  group<T> counts{};
  for (std::size_t i = 0; i < elements<group<T>>; ++i) {
    counts += (element<group<T>>(predicates, i) & ...) & 1;
  }
  U64 sum = 0;
  for (std::size_t lane = 0; lane < sve::group_bytes / sizeof(T); ++lane) sum += counts[lane];
  return sum;
}

// Multiplies in 32 bits.
std::int32_t times_vector_bytes(int imm) {
  return static_cast<std::int32_t>(static_cast<U32>(imm) * vector_bytes);
}

// How many times in a row holds(n, m) is true while n counts up and wraps, but at most `max_count`.
template <class Counter, class Compare>
unsigned times_true(Counter n, Counter m, unsigned max_count, Compare holds) {
  if (!holds(n, m)) return 0;
  const bool equal_too = holds(m, m);
  if (equal_too && holds(static_cast<Counter>(m + 1), m)) return max_count;  // m is the last value
  const Counter distance = m - n;
  return distance < max_count ? static_cast<unsigned>(distance) + equal_too : max_count;
}

template <class T, class Counter, class Compare>
void while_elements(cpu_state* s, P pd, Counter n, Counter m, Compare holds) {
  const unsigned count = times_true(n, m, elements<T>, holds);
  set_first_elements<T>(s->p[pd.num], count);
  set_flags(s, count > 0, count > 0, count == elements<T>);
}

template <class Compare>
rc prr(cpu_state* s, P pd, R rn, R rm, Compare holds) {
  const U64 n = read_x(s, rn), m = read_x(s, rm);
  return by_size<single>(pd.size, [=]<class T>() {
    if (rn.size == sve::D) {
      while_elements<T, U64>(s, pd, n, m, holds);
    } else {
      while_elements<T, U32>(s, pd, static_cast<U32>(n), static_cast<U32>(m), holds);
    }
  });
}

constexpr auto lower = [](auto n, auto m) { return n < m; };
constexpr auto lower_or_same = [](auto n, auto m) { return n <= m; };
constexpr auto less = [](auto n, auto m) { return as_signed(n) < as_signed(m); };

}  // namespace

rc sve_incb_rii(cpu_state* s, R rdn, unsigned p, unsigned m) { return rii<U8>(s, rdn, p, m, add); }
rc sve_inch_rii(cpu_state* s, R rdn, unsigned p, unsigned m) { return rii<U16>(s, rdn, p, m, add); }
rc sve_incw_rii(cpu_state* s, R rdn, unsigned p, unsigned m) { return rii<U32>(s, rdn, p, m, add); }
rc sve_incd_rii(cpu_state* s, R rdn, unsigned p, unsigned m) { return rii<U64>(s, rdn, p, m, add); }
rc sve_decb_rii(cpu_state* s, R rdn, unsigned p, unsigned m) { return rii<U8>(s, rdn, p, m, sub); }
rc sve_dech_rii(cpu_state* s, R rdn, unsigned p, unsigned m) { return rii<U16>(s, rdn, p, m, sub); }
rc sve_decw_rii(cpu_state* s, R rdn, unsigned p, unsigned m) { return rii<U32>(s, rdn, p, m, sub); }
rc sve_decd_rii(cpu_state* s, R rdn, unsigned p, unsigned m) { return rii<U64>(s, rdn, p, m, sub); }

rc sve_inch_zii(cpu_state* s, Z zdn, unsigned p, unsigned m) { return zii<U16>(s, zdn, p, m, add); }
rc sve_incw_zii(cpu_state* s, Z zdn, unsigned p, unsigned m) { return zii<U32>(s, zdn, p, m, add); }
rc sve_incd_zii(cpu_state* s, Z zdn, unsigned p, unsigned m) { return zii<U64>(s, zdn, p, m, add); }
rc sve_dech_zii(cpu_state* s, Z zdn, unsigned p, unsigned m) { return zii<U16>(s, zdn, p, m, sub); }
rc sve_decw_zii(cpu_state* s, Z zdn, unsigned p, unsigned m) { return zii<U32>(s, zdn, p, m, sub); }
rc sve_decd_zii(cpu_state* s, Z zdn, unsigned p, unsigned m) { return zii<U64>(s, zdn, p, m, sub); }

template <class T>
void sve_uqdec(cpu_state* state, R rdn, unsigned pattern, unsigned multiplier, element_size size) {
  const U32 delta = multiplier * pattern_count(pattern, vector_bytes >> size);
  const T value = static_cast<T>(read_x(state, rdn));
  write_x(state, rdn, delta < value ? value - delta : 0);
}

template void sve_uqdec<unsigned int>(cpu_state*, R, unsigned, unsigned, element_size);
template void sve_uqdec<unsigned long>(cpu_state*, R, unsigned, unsigned, element_size);

rc sve_uqdecb_rii(cpu_state* s, R rdn, unsigned p, unsigned m) {
  rdn.dst_size == sve::D ? sve_uqdec<unsigned long>(s, rdn, p, m, sve::B)
                         : sve_uqdec<unsigned int>(s, rdn, p, m, sve::B);
  return aarch64_decode_ok;
}

rc sve_incp_rp(cpu_state* s, R rdn, P pn) {
  return by_size<single>(
      pn.size, [=]<class T>() { write_x(s, rdn, read_x(s, rdn) + count_true<T>(s->p[pn.num])); });
}

rc sve_cntp_rpp(cpu_state* s, R rd, P pg, P pn) {
  return by_size<single>(
      pn.size, [=]<class T>() { write_x(s, rd, count_true<T>(s->p[pg.num], s->p[pn.num])); });
}

rc sve_addvl_rri(cpu_state* s, R_or_SP rd, R_or_SP rn, int imm) {
  write_x(s, rd, read_x(s, rn) + static_cast<U64>(times_vector_bytes(imm)));
  return aarch64_decode_ok;
}

rc sve_addpl_rri(cpu_state* s, R_or_SP rd, R_or_SP rn, int imm) {
  write_x(s, rd, read_x(s, rn) + static_cast<U64>(times_vector_bytes(imm) / 8));
  return aarch64_decode_ok;
}

rc sve_rdvl_ri(cpu_state* s, R rd, int imm) {
  write_x(s, rd, static_cast<U64>(times_vector_bytes(imm)));
  return aarch64_decode_ok;
}

rc sve_whilelo_prr(cpu_state* s, P pd, R rn, R rm) { return prr(s, pd, rn, rm, lower); }
rc sve_whilels_prr(cpu_state* s, P pd, R rn, R rm) { return prr(s, pd, rn, rm, lower_or_same); }
rc sve_whilelt_prr(cpu_state* s, P pd, R rn, R rm) { return prr(s, pd, rn, rm, less); }
