// A fast path applies one operation of the scalar unit in the loop of its shape. The loops go
// element by element and branch on the predicate, because an instruction that ran for an inactive
// element would leave its flags behind.
#include "sve/fast/floating_point.h"

#include <bit>
#include <cstring>

#include "scalar_unit.h"
#include "sve/fast/element_loops.h"
#include "sve/fp/format.h"

using namespace sve::fast;
using sve::vector_bytes;

namespace {

using sve::form::arith_imm;
using sve::form::dup_imm;

template <class Loop>
inline rc by_format(unsigned size, Loop loop) {
  return by_size_among<single, U32, U64>(size, loop);
}

// The size code of a register, wherever its role puts it.
unsigned code(Z z) { return z.size == sve::z_none ? z.dst_size : z.size; }

// op with the scalar unit as its first argument.
template <class Op>
auto on_unit(cpu_state* s, Op op) {
  return [unit = scalar_unit(s), op](auto... operands) { return op(unit, operands...); };
}

template <class Op, class... Sources>
inline rc merging(cpu_state* s, Z zd, P pg, Op op, Sources... sources) {
  return by_format(code(zd), [&]<class T>() { merge<T>(s, zd, pg, on_unit(s, op), sources...); });
}

template <class Op, class... Sources>
inline rc unpredicated(cpu_state* s, Z zd, Op op, Sources... sources) {
  return by_format(code(zd), [&]<class T>() { compute<T>(s, zd, on_unit(s, op), sources...); });
}

constexpr auto half_or_one = []<class T>(arith_imm imm) {
  return sve::format<T>::power_of_two(imm.select != 0 ? 0 : -1);
};
constexpr auto half_or_two = []<class T>(arith_imm imm) {
  return sve::format<T>::power_of_two(imm.select != 0 ? 1 : -1);
};

template <class Op, class Constant>
inline rc with_constant(cpu_state* s, Z zdn, P pg, arith_imm imm, Op op, Constant constant) {
  return by_format(code(zdn), [&]<class T>() {
    const T value = constant.template operator()<T>(imm);
    merge<T>(
        s, zdn, pg, [&, on = on_unit(s, op)](T x) { return on(x, value); }, zdn);
  });
}

// Element i of pd = value(i) where pg, else 0.
template <class T, class Value>
void set_predicate(cpu_state* s, P pd, P pg, Value value) {
  const unsigned char* g = s->p[pg.num];
  write_in_place<T>(s->p[pd.num], [&](std::size_t i) {
    return where_governed<T>(
        g, i, [&] { return static_cast<T>(value(i)); }, [] { return T{0}; });
  });
}

template <class Compare>
inline rc compare(cpu_state* s, P pd, P pg, Z zn, Z zm, Compare holds) {
  const unsigned char *n = s->z[zn.num], *m = s->z[zm.num];
  return by_format(pd.size, [&]<class T>() {
    set_predicate<T>(s, pd, pg, [&, on = on_unit(s, holds)](std::size_t i) {
      return on(load_unit<T>(n, i), load_unit<T>(m, i));
    });
  });
}

template <class Compare>
inline rc compare_with_zero(cpu_state* s, P pd, P pg, Z zn, Compare holds) {
  const unsigned char* n = s->z[zn.num];
  return by_format(pd.size, [&]<class T>() {
    set_predicate<T>(s, pd, pg, [&, on = on_unit(s, holds)](std::size_t i) {
      return on(load_unit<T>(n, i), T{0});
    });
  });
}

// The integers of type From are in the low bits of the elements of type T.
template <class T, class From, class Op>
inline rc convert(cpu_state* s, Z zd, P pg, Z zn, Op op) {
  return merge<T>(
      s, zd, pg, [&, on = on_unit(s, op)](T x) { return T{on(static_cast<From>(x))}; }, zn);
}

template <class T, class Op>
T reduce_pairs(const unsigned char* vector, const unsigned char* predicate, Op op) {
  constexpr unsigned leaves = std::bit_ceil(sve::elements<T>);
  T x[leaves];
  for (unsigned i = 0; i < leaves; ++i) {
    const bool counts = i < sve::elements<T> && sve::active<T>(predicate, i);
    x[i] = counts ? sve::element<T>(vector, i) : sve::format<T>::default_nan;
  }
  for (unsigned pairs = leaves / 2; pairs > 0; pairs /= 2) {
    for (unsigned j = 0; j < pairs; ++j) x[j] = op(x[2 * j], x[2 * j + 1]);
  }
  return x[0];
}

template <class Op>
rc reduce(cpu_state* s, unsigned vd, P pg, Z zn, Op op) {
  return by_format(zn.size, [&]<class T>() {
    const T value = reduce_pairs<T>(s->z[zn.num], s->p[pg.num], on_unit(s, op));
    std::memset(s->z[vd], 0, vector_bytes);
    sve::set_element<T>(s->z[vd], 0, value);
  });
}

using unit = const scalar_unit&;
constexpr auto add = [](unit u, auto a, auto b) { return u.add(a, b); };
constexpr auto subtract = [](unit u, auto a, auto b) { return u.subtract(a, b); };
constexpr auto subtract_from = [](unit u, auto a, auto b) { return u.subtract(b, a); };
constexpr auto multiply = [](unit u, auto a, auto b) { return u.multiply(a, b); };
constexpr auto divide = [](unit u, auto a, auto b) { return u.divide(a, b); };
constexpr auto divide_into = [](unit u, auto a, auto b) { return u.divide(b, a); };
constexpr auto max = [](unit u, auto a, auto b) { return u.max(a, b); };
constexpr auto max_number = [](unit u, auto a, auto b) { return u.max_number(a, b); };
constexpr auto min_number = [](unit u, auto a, auto b) { return u.min_number(a, b); };
constexpr auto reciprocal_step = [](unit u, auto a, auto b) { return u.reciprocal_step(a, b); };
constexpr auto reciprocal_estimate = [](unit u, auto a) { return u.reciprocal_estimate(a); };
constexpr auto negate = [](unit u, auto a) { return u.negate(a); };
constexpr auto square_root = [](unit u, auto a) { return u.square_root(a); };
constexpr auto round_ties_away = [](unit u, auto a) { return u.round_ties_away(a); };
constexpr auto negated_multiply_add = [](unit u, auto addend, auto a, auto b) {
  return u.negated_multiply_add(addend, a, b);
};
constexpr auto to_single = [](unit u, auto a) { return u.to_single(a); };
constexpr auto to_double = [](unit u, auto a) { return u.to_double(a); };

constexpr auto eq = [](unit u, auto a, auto b) { return u.equal(a, b); };
constexpr auto ne = [](unit u, auto a, auto b) { return u.not_equal(a, b); };
constexpr auto uo = [](unit u, auto a, auto b) { return u.unordered(a, b); };
constexpr auto ge = [](unit u, auto a, auto b) { return u.greater_or_equal(a, b); };
constexpr auto gt = [](unit u, auto a, auto b) { return u.greater(a, b); };
constexpr auto le = [](unit u, auto a, auto b) { return u.greater_or_equal(b, a); };
constexpr auto lt = [](unit u, auto a, auto b) { return u.greater(b, a); };

}  // namespace

rc sve_fadd_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return merging(s, zdn, pg, add, zdn, zm); }
rc sve_fsub_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return merging(s, zdn, pg, subtract, zdn, zm); }
rc sve_fsubr_zpz(cpu_state* s, Z zdn, P pg, Z zm) {
  return merging(s, zdn, pg, subtract_from, zdn, zm);
}
rc sve_fmul_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return merging(s, zdn, pg, multiply, zdn, zm); }
rc sve_fdiv_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return merging(s, zdn, pg, divide, zdn, zm); }
rc sve_fdivr_zpz(cpu_state* s, Z zdn, P pg, Z zm) {
  return merging(s, zdn, pg, divide_into, zdn, zm);
}
rc sve_fmax_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return merging(s, zdn, pg, max, zdn, zm); }
rc sve_fmaxnm_zpz(cpu_state* s, Z zdn, P pg, Z zm) {
  return merging(s, zdn, pg, max_number, zdn, zm);
}
rc sve_fminnm_zpz(cpu_state* s, Z zdn, P pg, Z zm) {
  return merging(s, zdn, pg, min_number, zdn, zm);
}

rc sve_fadd_zpi(cpu_state* s, Z zdn, P pg, arith_imm imm) {
  return with_constant(s, zdn, pg, imm, add, half_or_one);
}
rc sve_fsub_zpi(cpu_state* s, Z zdn, P pg, arith_imm imm) {
  return with_constant(s, zdn, pg, imm, subtract, half_or_one);
}
rc sve_fsubr_zpi(cpu_state* s, Z zdn, P pg, arith_imm imm) {
  return with_constant(s, zdn, pg, imm, subtract_from, half_or_one);
}
rc sve_fmul_zpi(cpu_state* s, Z zdn, P pg, arith_imm imm) {
  return with_constant(s, zdn, pg, imm, multiply, half_or_two);
}

rc sve_fnmla_zpzz(cpu_state* s, Z zda, P pg, Z zn, Z zm) {
  return merging(s, zda, pg, negated_multiply_add, zda, zn, zm);
}

rc sve_fneg_zpz(cpu_state* s, Z zd, P pg, Z zn) { return merging(s, zd, pg, negate, zn); }
rc sve_fsqrt_zpz(cpu_state* s, Z zd, P pg, Z zn) { return merging(s, zd, pg, square_root, zn); }
rc sve_frinta_zpz(cpu_state* s, Z zd, P pg, Z zn) {
  return merging(s, zd, pg, round_ties_away, zn);
}

rc sve_scvtf_s2s_zpz(cpu_state* s, Z zd, P pg, Z zn) {
  return convert<U32, S32>(s, zd, pg, zn, to_single);
}
rc sve_ucvtf_s2s_zpz(cpu_state* s, Z zd, P pg, Z zn) {
  return convert<U32, U32>(s, zd, pg, zn, to_single);
}
rc sve_scvtf_d2d_zpz(cpu_state* s, Z zd, P pg, Z zn) {
  return convert<U64, S64>(s, zd, pg, zn, to_double);
}
rc sve_ucvtf_d2d_zpz(cpu_state* s, Z zd, P pg, Z zn) {
  return convert<U64, U64>(s, zd, pg, zn, to_double);
}
rc sve_scvtf_s2d_zpz(cpu_state* s, Z zd, P pg, Z zn) {
  return convert<U64, S32>(s, zd, pg, zn, to_double);
}
rc sve_ucvtf_s2d_zpz(cpu_state* s, Z zd, P pg, Z zn) {
  return convert<U64, U32>(s, zd, pg, zn, to_double);
}
rc sve_scvtf_d2s_zpz(cpu_state* s, Z zd, P pg, Z zn) {
  return convert<U64, S64>(s, zd, pg, zn, to_single);
}

rc sve_fadd_zzz(cpu_state* s, Z zd, Z zn, Z zm) { return unpredicated(s, zd, add, zn, zm); }
rc sve_fsub_zzz(cpu_state* s, Z zd, Z zn, Z zm) { return unpredicated(s, zd, subtract, zn, zm); }
rc sve_fmul_zzz(cpu_state* s, Z zd, Z zn, Z zm) { return unpredicated(s, zd, multiply, zn, zm); }
rc sve_frecps_zzz(cpu_state* s, Z zd, Z zn, Z zm) {
  return unpredicated(s, zd, reciprocal_step, zn, zm);
}
rc sve_frecpe_zz(cpu_state* s, Z zd, Z zn) { return unpredicated(s, zd, reciprocal_estimate, zn); }

rc sve_fdup_zi(cpu_state* s, Z zd, dup_imm imm) {
  unsigned char* const z = s->z[zd.num];
  const auto fill = [z](auto value) {
    return write_in_place<decltype(value)>(z, [=](std::size_t) { return value; });
  };
  if (zd.size == sve::S) return fill(imm.single);
  if (zd.size == sve::D) return fill(imm.dbl);
  return fill(imm.half);
}

rc sve_fcmeq_ppz(cpu_state* s, P pd, P pg, Z zn) { return compare_with_zero(s, pd, pg, zn, eq); }
rc sve_fcmge_ppz(cpu_state* s, P pd, P pg, Z zn) { return compare_with_zero(s, pd, pg, zn, ge); }
rc sve_fcmgt_ppz(cpu_state* s, P pd, P pg, Z zn) { return compare_with_zero(s, pd, pg, zn, gt); }
rc sve_fcmle_ppz(cpu_state* s, P pd, P pg, Z zn) { return compare_with_zero(s, pd, pg, zn, le); }
rc sve_fcmlt_ppz(cpu_state* s, P pd, P pg, Z zn) { return compare_with_zero(s, pd, pg, zn, lt); }

rc sve_fcmeq_ppzz(cpu_state* s, P pd, P pg, Z zn, Z zm) { return compare(s, pd, pg, zn, zm, eq); }
rc sve_fcmge_ppzz(cpu_state* s, P pd, P pg, Z zn, Z zm) { return compare(s, pd, pg, zn, zm, ge); }
rc sve_fcmgt_ppzz(cpu_state* s, P pd, P pg, Z zn, Z zm) { return compare(s, pd, pg, zn, zm, gt); }
rc sve_fcmne_ppzz(cpu_state* s, P pd, P pg, Z zn, Z zm) { return compare(s, pd, pg, zn, zm, ne); }
rc sve_fcmuo_ppzz(cpu_state* s, P pd, P pg, Z zn, Z zm) { return compare(s, pd, pg, zn, zm, uo); }

rc sve_fmaxnmv_vpz(cpu_state* s, unsigned vd, P pg, Z zn) {
  return reduce(s, vd, pg, zn, max_number);
}
rc sve_fminnmv_vpz(cpu_state* s, unsigned vd, P pg, Z zn) {
  return reduce(s, vd, pg, zn, min_number);
}
