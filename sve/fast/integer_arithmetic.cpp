// Each operation is one expression. A form says where operands and size code come from. Arithmetic
// uses unsigned elements, so that wrapping is defined. Signed operations convert them to signed.
#include "sve/fast/integer_arithmetic.h"

#include "sve/fast/element_loops.h"
#include "sve/fast/operations.h"

using namespace sve::fast;

namespace {

// Destructive forms: zdn = op(zdn, zm) where pg, with the size code in zdn or in zm.
template <class Op>
rc zpz(cpu_state* s, Z zdn, P pg, Z zm, Op op) {
  return merge_by_size(s, zdn.dst_size, zdn, pg, op, zdn, zm);
}

template <class Op>
rc zpz_by_zm(cpu_state* s, Z zdn, P pg, Z zm, Op op) {
  return merge_by_size(s, zm.size, zdn, pg, op, zdn, zm);
}

template <class Op>
rc zpz_multiply(cpu_state* s, Z zdn, P pg, Z zm, Op op) {
  return merge_by_size<group_but_single_d>(s, zdn.dst_size, zdn, pg, op, zdn, zm);
}

template <class Op>
rc zpz_divide(cpu_state* s, Z zdn, P pg, Z zm, Op op) {
  return by_size_among<single, std::uint64_t, std::uint32_t>(
      zdn.dst_size, [=]<class Unit>() { merge<Unit>(s, zdn, pg, op, zdn, zm); });
}

// Multiply-add forms: zd = op(zd, zn, zm) where pg.
template <class Op>
rc zpzz(cpu_state* s, Z zd, P pg, Z zn, Z zm, Op op) {
  return merge_by_size<group_but_single_d>(s, zd.dst_size, zd, pg, op, zd, zn, zm);
}

template <class Op>
rc zzz(cpu_state* s, Z zd, Z zn, Z zm, Op op) {
  return compute_by_size(s, zd.size, zd, op, zn, zm);
}

template <class Op>
rc zzz_bitwise(cpu_state* s, Z zd, Z zn, Z zm, Op op) {
  return compute<group<std::uint64_t>>(s, zd, op, zn, zm);
}

constexpr auto udiv = [](auto a, auto b) { return b == 0 ? b : a / b; };

// The quotient of the most negative value and -1 does not fit its type. So for a divisor of -1 the
// dividend is negated. That gives the value that the architecture requires here, and the right one
// for every other dividend.
constexpr auto sdiv = [](auto a, auto b) {
  if (b == 0) return b;
  if (as_signed(b) == -1) return -a;
  return (decltype(a))(as_signed(a) / as_signed(b));
};

constexpr auto udivr = [](auto a, auto b) { return udiv(b, a); };
constexpr auto sdivr = [](auto a, auto b) { return sdiv(b, a); };

constexpr auto mad = [](auto dn, auto m, auto a) { return a + dn * m; };
constexpr auto msb = [](auto dn, auto m, auto a) { return a - dn * m; };
constexpr auto mla = [](auto da, auto n, auto m) { return da + n * m; };
constexpr auto mls = [](auto da, auto n, auto m) { return da - n * m; };

}  // namespace

rc sve_add_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return zpz(s, zdn, pg, zm, add); }
rc sve_sub_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return zpz(s, zdn, pg, zm, sub); }
rc sve_mul_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return zpz_multiply(s, zdn, pg, zm, mul); }
rc sve_and_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return zpz(s, zdn, pg, zm, bit_and); }
rc sve_orr_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return zpz(s, zdn, pg, zm, bit_or); }
rc sve_eor_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return zpz(s, zdn, pg, zm, bit_xor); }
rc sve_bic_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return zpz(s, zdn, pg, zm, bit_clear); }

rc sve_smin_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return zpz_by_zm(s, zdn, pg, zm, smin); }
rc sve_smax_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return zpz_by_zm(s, zdn, pg, zm, smax); }
rc sve_umin_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return zpz_by_zm(s, zdn, pg, zm, umin); }
rc sve_umax_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return zpz_by_zm(s, zdn, pg, zm, umax); }

rc sve_sdiv_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return zpz_divide(s, zdn, pg, zm, sdiv); }
rc sve_udiv_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return zpz_divide(s, zdn, pg, zm, udiv); }
rc sve_sdivr_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return zpz_divide(s, zdn, pg, zm, sdivr); }
rc sve_udivr_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return zpz_divide(s, zdn, pg, zm, udivr); }

rc sve_neg_zpz(cpu_state* s, Z zd, P pg, Z zn) {
  return merge_by_size(s, zd.size, zd, pg, neg, zn);
}

rc sve_mad_zpzz(cpu_state* s, Z zdn, P pg, Z zm, Z za) { return zpzz(s, zdn, pg, zm, za, mad); }
rc sve_msb_zpzz(cpu_state* s, Z zdn, P pg, Z zm, Z za) { return zpzz(s, zdn, pg, zm, za, msb); }
rc sve_mla_zpzz(cpu_state* s, Z zda, P pg, Z zn, Z zm) { return zpzz(s, zda, pg, zn, zm, mla); }
rc sve_mls_zpzz(cpu_state* s, Z zda, P pg, Z zn, Z zm) { return zpzz(s, zda, pg, zn, zm, mls); }

rc sve_sel_zpzz(cpu_state* s, Z zd, P pg, Z zn, Z zm) {
  return by_size<group>(zd.size, [=]<class Unit>() { select<Unit>(s, zd, pg, zm, same, zn); });
}

rc sve_add_zzz(cpu_state* s, Z zd, Z zn, Z zm) { return zzz(s, zd, zn, zm, add); }
rc sve_sub_zzz(cpu_state* s, Z zd, Z zn, Z zm) { return zzz(s, zd, zn, zm, sub); }
rc sve_and_zzz(cpu_state* s, Z zd, Z zn, Z zm) { return zzz_bitwise(s, zd, zn, zm, bit_and); }
rc sve_orr_zzz(cpu_state* s, Z zd, Z zn, Z zm) { return zzz_bitwise(s, zd, zn, zm, bit_or); }
rc sve_eor_zzz(cpu_state* s, Z zd, Z zn, Z zm) { return zzz_bitwise(s, zd, zn, zm, bit_xor); }
rc sve_bic_zzz(cpu_state* s, Z zd, Z zn, Z zm) { return zzz_bitwise(s, zd, zn, zm, bit_clear); }
