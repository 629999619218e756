// An output element of a permute depends on input elements at other positions, so these functions
// build their result in the temporary, in plain loops over elements. Only TRN2 stays within pairs.
#include "sve/fast/permutes_reductions.h"

#include <limits>
#include <optional>
#include <utility>

#include "sve/fast/element_loops.h"
#include "sve/fast/operations.h"
#include "sve/fast/predicate_scan.h"
#include "sve/fast/predicates.h"

using namespace sve::fast;
using sve::active;
using sve::element;
using sve::elements;
using sve::read_x;
using sve::set_element;
using sve::vector_bytes;
using sve::write_x;

namespace {

char* as_chars(unsigned char* p) { return reinterpret_cast<char*>(p); }

template <class Permute>
rc permute(cpu_state* s, Z zd, Z zn, Z zm, Permute to_result) {
  unsigned char result[vector_bytes];
  to_result(as_chars(result), as_chars(s->z[zn.num]), as_chars(s->z[zm.num]),
            static_cast<element_size>(zd.size));
  std::memcpy(s->z[zd.num], result, vector_bytes);
  return aarch64_decode_ok;
}

// Element i of zd = element_at(i), for the element type of zd's size code.
template <class ElementAt>
rc gather(cpu_state* s, Z zd, ElementAt element_at) {
  return by_size<single>(zd.size, [=]<class T>() {
    write_units<T>(s->z[zd.num],
                   [=](std::size_t i) { return element_at.template operator()<T>(i); });
  });
}

// Elements of type Wide, from the elements of half that width in one half of zn.
enum register_half : unsigned { low = 0, high = vector_bytes / 2 };

template <class Narrow, class Wide>
rc unpack(cpu_state* s, Z zd, Z zn, register_half half) {
  const unsigned char* n = s->z[zn.num] + half;
  return write_units<Wide>(s->z[zd.num],
                           [=](std::size_t i) { return Wide{element<Narrow>(n, i)}; });
}

// The second element of each pair of elements, alternately from two groups: a group has whole
// pairs.
constexpr auto odd_elements_in_turn = []<class Group>(Group a, Group b) {
  constexpr std::size_t count = sizeof(Group) * 8 / element_bits<Group>;
  return [&]<std::size_t... i>(std::index_sequence<i...>) {
    return __builtin_shufflevector(a, b, (i % 2 == 0 ? i + 1 : count + i)...);
  }
  (std::make_index_sequence<count>());
};

// Writes the value to element 0 of vd, and 0 to the rest.
template <class T>
void write_scalar(cpu_state* s, unsigned vd, T value) {
  unsigned char result[vector_bytes] = {};
  set_element<T>(result, 0, value);
  std::memcpy(s->z[vd], result, vector_bytes);
}

// Element 0 of vd = the active elements of zn folded into `start`, at the width of Sum.
template <class T, class Sum, class Op>
void fold(cpu_state* s, unsigned vd, P pg, Z zn, Sum start, Op op) {
  const unsigned char *g = s->p[pg.num], *n = s->z[zn.num];
  Sum sum = start;
  for (std::size_t i = 0; i < elements<T>; ++i) {
    if (active<T>(g, i)) sum = static_cast<Sum>(op(sum, Sum{element<T>(n, i)}));
  }
  write_scalar(s, vd, sum);
}

// `neutral` gives the start value for an element type.
template <class Neutral, class Op>
rc reduce(cpu_state* s, unsigned vd, P pg, Z zn, Neutral neutral, Op op) {
  return by_size<single>(zn.size, [=]<class T>() {
    fold<T>(s, vd, pg, zn, static_cast<T>(neutral.template operator()<T>()), op);
  });
}

constexpr auto zero = []<class T>() { return T{0}; };
constexpr auto all_ones = []<class T>() { return std::numeric_limits<T>::max(); };
constexpr auto most_negative = []<class T>() {
  return std::numeric_limits<std::make_signed_t<T>>::min();
};
constexpr auto most_positive = []<class T>() {
  return std::numeric_limits<std::make_signed_t<T>>::max();
};

// The last active element of zn.
template <class T>
std::optional<T> last_active(const cpu_state* s, P pg, Z zn) {
  const std::size_t end = end_of_active<T>(s->p[pg.num]);
  return end > 0 ? std::optional<T>(element<T>(s->z[zn.num], end - 1)) : std::nullopt;
}

template <class T>
T last_active_or_last(const cpu_state* s, P pg, Z zn) {
  return last_active<T>(s, pg, zn).value_or(element<T>(s->z[zn.num], elements<T> - 1));
}

}  // namespace

rc sve_zip1_zzz(cpu_state* s, Z zd, Z zn, Z zm) { return permute(s, zd, zn, zm, sve_zip1); }
rc sve_zip2_zzz(cpu_state* s, Z zd, Z zn, Z zm) { return permute(s, zd, zn, zm, sve_zip2); }
rc sve_uzp1_zzz(cpu_state* s, Z zd, Z zn, Z zm) { return permute(s, zd, zn, zm, sve_uzp1); }

rc sve_uzp2_zzz(cpu_state* s, Z zd, Z zn, Z zm) {
  unsigned char result[vector_bytes];
  by_size<single>(zd.size, [&]<class T>() {
    write_every_second<T>(result, s->z[zn.num] + sizeof(T), s->z[zm.num] + sizeof(T));
  });
  std::memcpy(s->z[zd.num], result, vector_bytes);
  return aarch64_decode_ok;
}

rc sve_trn2_zzz(cpu_state* s, Z zd, Z zn, Z zm) {
  return compute_by_size(s, zd.size, zd, odd_elements_in_turn, zn, zm);
}

rc sve_tbl_zzz(cpu_state* s, Z zd, Z zn, Z zm) {
  return gather(s, zd, [=]<class T>(std::size_t i) {
    const U64 index = element<T>(s->z[zm.num], i);
    return index < elements<T> ? element<T>(s->z[zn.num], index) : T{0};
  });
}

rc sve_rev_zz(cpu_state* s, Z zd, Z zn) {
  return gather(
      s, zd, [=]<class T>(std::size_t i) { return element<T>(s->z[zn.num], elements<T> - 1 - i); });
}

rc sve_ext_zzi(cpu_state* s, Z zdn, Z zm, unsigned position) {
  unsigned char both[2 * vector_bytes];
  std::memcpy(both, s->z[zdn.num], vector_bytes);
  std::memcpy(both + vector_bytes, s->z[zm.num], vector_bytes);
  std::memcpy(s->z[zdn.num], both + (position < vector_bytes ? position : 0), vector_bytes);
  return aarch64_decode_ok;
}

rc sve_uunpklo_b2h_zz(cpu_state* s, Z zd, Z zn) { return unpack<U8, U16>(s, zd, zn, low); }
rc sve_uunpkhi_b2h_zz(cpu_state* s, Z zd, Z zn) { return unpack<U8, U16>(s, zd, zn, high); }
rc sve_uunpklo_h2s_zz(cpu_state* s, Z zd, Z zn) { return unpack<U16, U32>(s, zd, zn, low); }
rc sve_uunpkhi_h2s_zz(cpu_state* s, Z zd, Z zn) { return unpack<U16, U32>(s, zd, zn, high); }
rc sve_uunpklo_s2d_zz(cpu_state* s, Z zd, Z zn) { return unpack<U32, U64>(s, zd, zn, low); }
rc sve_uunpkhi_s2d_zz(cpu_state* s, Z zd, Z zn) { return unpack<U32, U64>(s, zd, zn, high); }
rc sve_sunpklo_s2d_zz(cpu_state* s, Z zd, Z zn) { return unpack<S32, S64>(s, zd, zn, low); }
rc sve_sunpkhi_s2d_zz(cpu_state* s, Z zd, Z zn) { return unpack<S32, S64>(s, zd, zn, high); }

rc sve_andv_vpz(cpu_state* s, unsigned vd, P pg, Z zn) {
  return reduce(s, vd, pg, zn, all_ones, bit_and);
}
rc sve_orv_vpz(cpu_state* s, unsigned vd, P pg, Z zn) {
  return reduce(s, vd, pg, zn, zero, bit_or);
}
rc sve_eorv_vpz(cpu_state* s, unsigned vd, P pg, Z zn) {
  return reduce(s, vd, pg, zn, zero, bit_xor);
}
rc sve_smaxv_vpz(cpu_state* s, unsigned vd, P pg, Z zn) {
  return reduce(s, vd, pg, zn, most_negative, smax);
}
rc sve_sminv_vpz(cpu_state* s, unsigned vd, P pg, Z zn) {
  return reduce(s, vd, pg, zn, most_positive, smin);
}
rc sve_umaxv_vpz(cpu_state* s, unsigned vd, P pg, Z zn) {
  return reduce(s, vd, pg, zn, zero, umax);
}
rc sve_uminv_vpz(cpu_state* s, unsigned vd, P pg, Z zn) {
  return reduce(s, vd, pg, zn, all_ones, umin);
}
rc sve_uaddv_vpz(cpu_state* s, unsigned vd, P pg, Z zn) {
  return by_size<single>(zn.size, [=]<class T>() { fold<T>(s, vd, pg, zn, U64{0}, add); });
}

rc sve_lastb_vpz(cpu_state* s, unsigned vd, P pg, Z zn) {
  return by_size<single>(
      zn.size, [=]<class T>() { write_scalar(s, vd, last_active_or_last<T>(s, pg, zn)); });
}
rc sve_lastb_rpz(cpu_state* s, R rd, P pg, Z zn) {
  return by_size<single>(zn.size,
                         [=]<class T>() { write_x(s, rd, last_active_or_last<T>(s, pg, zn)); });
}
rc sve_clastb_rpz(cpu_state* s, R rdn, P pg, Z zn) {
  return by_size<single>(zn.size, [=]<class T>() {
    write_x(s, rdn, last_active<T>(s, pg, zn).value_or(static_cast<T>(read_x(s, rdn))));
  });
}
