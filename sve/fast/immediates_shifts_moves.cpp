// Immediates arrive decoded and are broadcast at element width.
#include "sve/fast/immediates_shifts_moves.h"

#include <algorithm>

#include "sve/fast/element_loops.h"
#include "sve/fast/operations.h"

using namespace sve::fast;
using sve::bits;
using sve::element;
using sve::elements;
using sve::read_x;
using sve::vector_bytes;

namespace {

using quadword = group<U64>;

// The low bits of an integer in each element. Signed and unsigned values are extended to
// doublewords as their type requires.
template <class Unit, class Integer>
Unit truncated(Integer value) {
  return broadcast<Unit>(static_cast<typename unit_traits<Unit>::element_type>(value));
}

// zdn = op(zdn, imm).
template <template <class> class UnitKind = group, class Integer, class Op>
rc zi(cpu_state* s, Z zdn, Integer imm, Op op) {
  return by_size<UnitKind>(zdn.dst_size, [=]<class Unit>() {
    const Unit value = truncated<Unit>(imm);
    compute<Unit>(
        s, zdn, [=](Unit dn) { return op(dn, value); }, zdn);
  });
}

template <class Op>
rc zi_bitwise(cpu_state* s, Z zdn, mask64 imm, Op op) {
  return compute<group<U64>>(
      s, zdn, [=](auto dn) { return op(dn, imm.mask); }, zdn);
}

// zdn = op(zdn, zm) where pg.
template <template <class> class UnitKind = group, class Op>
rc zpz_shift(cpu_state* s, Z zdn, P pg, Z zm, Op op) {
  return merge_by_size<UnitKind>(s, zdn.dst_size, zdn, pg, op, zdn, zm);
}

// The right shift by the same count for all elements. The count is clamped here once, before it is
// truncated to the element.
template <class Unit>
auto asr_by(unsigned shift) {
  const auto count = truncated<Unit>(std::min(shift, element_bits<Unit> - 1));
  return [=](Unit a) { return as_signed(a) >> as_signed(count); };
}

// Calls loop(op) with the left shift by the same count for all elements. The count is tested here
// once. Only its low bits are used, as many as an element has.
template <class Unit, class Loop>
void with_lsl(unsigned shift, Loop loop) {
  const auto count = static_cast<typename unit_traits<Unit>::element_type>(shift);
  if (count < element_bits<Unit>) {
    loop([=](Unit a) { return a << count; });
  } else {
    loop([](Unit) { return Unit{}; });
  }
}

// Writes the value to each element of zd.
template <class Unit>
rc fill(cpu_state* s, Z zd, Unit value) {
  return compute<Unit>(s, zd, [=] { return value; });
}

template <class Integer>
rc dup(cpu_state* s, Z zd, Integer value) {
  return by_size<group>(zd.size, [=]<class Unit>() { fill(s, zd, truncated<Unit>(value)); });
}

// Writes the value to each active element of zd. The others become 0 or keep their old value.
template <class Integer>
rc cpy(cpu_state* s, Z zd, P pg, Integer value, bool zeroing = false) {
  return by_size<group>(zd.size, [=]<class Unit>() {
    const auto copied = [unit = truncated<Unit>(value)] { return unit; };
    zeroing ? zero_inactive<Unit>(s, zd, pg, copied) : merge<Unit>(s, zd, pg, copied);
  });
}

// Element i of zd = start + i * step.
template <class Start, class Step>
rc index(cpu_state* s, Z zd, Start start, Step step) {
  return by_size<single>(zd.size, [=]<class T>() {
    write_series<T>(s->z[zd.num], static_cast<U64>(start), static_cast<U64>(step),
                    [](std::size_t, group<T> series) { return series; });
  });
}

// zd = op(zn) where pg, for the element types given.
template <class... Types, class Op>
rc zpz_unary(cpu_state* s, Z zd, P pg, Z zn, Op op) {
  return by_size_among<group, Types...>(zd.size,
                                        [=]<class Unit>() { merge<Unit>(s, zd, pg, op, zn); });
}

}  // namespace

rc sve_add_zi(cpu_state* s, Z zdn, unsigned imm) { return zi(s, zdn, imm, add); }
rc sve_sub_zi(cpu_state* s, Z zdn, unsigned imm) { return zi(s, zdn, imm, sub); }
rc sve_mul_zi(cpu_state* s, Z zdn, int imm) { return zi<group_but_single_d>(s, zdn, imm, mul); }
rc sve_and_zi(cpu_state* s, Z zdn, mask64 imm) { return zi_bitwise(s, zdn, imm, bit_and); }
rc sve_orr_zi(cpu_state* s, Z zdn, mask64 imm) { return zi_bitwise(s, zdn, imm, bit_or); }
rc sve_eor_zi(cpu_state* s, Z zdn, mask64 imm) { return zi_bitwise(s, zdn, imm, bit_xor); }

rc sve_lsl_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return zpz_shift(s, zdn, pg, zm, lsl); }
rc sve_lsr_zpz(cpu_state* s, Z zdn, P pg, Z zm) { return zpz_shift(s, zdn, pg, zm, lsr); }
rc sve_asr_zpz(cpu_state* s, Z zdn, P pg, Z zm) {
  return zpz_shift<group_but_single_d>(s, zdn, pg, zm, asr);
}
rc sve_lsl_zpi(cpu_state* s, Z zdn, P pg, unsigned n) {
  return by_size<group>(zdn.dst_size, [=]<class Unit>() {
    with_lsl<Unit>(n, [&](auto op) { merge<Unit>(s, zdn, pg, op, zdn); });
  });
}
rc sve_asr_zpi(cpu_state* s, Z zdn, P pg, unsigned n) {
  return by_size<group_but_single_d>(
      zdn.dst_size, [=]<class Unit>() { merge<Unit>(s, zdn, pg, asr_by<Unit>(n), zdn); });
}
rc sve_lsl_zzi(cpu_state* s, Z zd, Z zn, unsigned n) {
  return by_size<group>(zd.size, [=]<class Unit>() {
    with_lsl<Unit>(n, [&](auto op) { compute<Unit>(s, zd, op, zn); });
  });
}
rc sve_asr_zzi(cpu_state* s, Z zd, Z zn, unsigned n) {
  return by_size<group>(zd.size, [=]<class Unit>() { compute<Unit>(s, zd, asr_by<Unit>(n), zn); });
}

rc sve_dup_zi(cpu_state* s, Z zd, int imm) { return dup(s, zd, imm); }
rc sve_dup_zr(cpu_state* s, Z zd, R_or_SP rn) { return dup(s, zd, read_x(s, rn)); }
rc sve_dupm_zi(cpu_state* s, Z zd, mask64 imm) {
  return fill(s, zd, broadcast<group<U64>>(imm.mask));
}

rc sve_dup_zzi(cpu_state* s, Z zd, Z zn, unsigned index) {
  const unsigned char* n = s->z[zn.num];
  return by_size_among<single, U16, U32, U64, quadword, std::uint8_t>(
      zd.size, [&]<class T>() { fill(s, zd, index < elements<T> ? element<T>(n, index) : T{}); });
}

rc sve_cpy_zpi(cpu_state* s, Z zd, P pg, int imm) {
  return cpy(s, zd, pg, imm, pg.size == sve::zeroing);
}
rc sve_cpy_zpr(cpu_state* s, Z zd, P pg, R_or_SP rn) { return cpy(s, zd, pg, read_x(s, rn)); }
rc sve_cpy_zpv(cpu_state* s, Z zd, P pg, unsigned vn) {
  return cpy(s, zd, pg, element<U64>(s->z[vn], 0));
}

rc sve_index_zii(cpu_state* s, Z zd, int start, int step) { return index(s, zd, start, step); }
rc sve_index_zir(cpu_state* s, Z zd, int start, R rm) { return index(s, zd, start, read_x(s, rm)); }
rc sve_index_zri(cpu_state* s, Z zd, R rn, int step) { return index(s, zd, read_x(s, rn), step); }
rc sve_index_zrr(cpu_state* s, Z zd, R rn, R rm) {
  return index(s, zd, read_x(s, rn), read_x(s, rm));
}

rc sve_movprfx_zz(cpu_state* s, Z zd, Z zn) {
  if (zd.num != zn.num) std::memcpy(s->z[zd.num], s->z[zn.num], vector_bytes);
  return aarch64_decode_ok;
}
rc sve_movprfx_zpz(cpu_state* s, Z zd, P pg, Z zn) {
  return by_size<group>(zd.size, [=]<class Unit>() {
    pg.size == sve::zeroing ? zero_inactive<Unit>(s, zd, pg, same, zn)
                            : merge<Unit>(s, zd, pg, same, zn);
  });
}

rc sve_sxtb_zpz(cpu_state* s, Z zd, P pg, Z zn) {
  return zpz_unary<U32, U64, U16>(s, zd, pg, zn, sign_extend<8>);
}
rc sve_sxth_zpz(cpu_state* s, Z zd, P pg, Z zn) {
  return zpz_unary<U64, U32>(s, zd, pg, zn, sign_extend<16>);
}
rc sve_sxtw_zpz(cpu_state* s, Z zd, P pg, Z zn) {
  return zpz_unary<U64>(s, zd, pg, zn, sign_extend<32>);
}
rc sve_uxth_zpz(cpu_state* s, Z zd, P pg, Z zn) {
  return zpz_unary<U64, U32>(s, zd, pg, zn, zero_extend<16>);
}
rc sve_uxtw_zpz(cpu_state* s, Z zd, P pg, Z zn) {
  return zpz_unary<U64>(s, zd, pg, zn, zero_extend<32>);
}

rc sve_rbit_zpz(cpu_state* s, Z zd, P pg, Z zn) {
  return zpz_unary<U32, U64, U16, std::uint8_t>(s, zd, pg, zn, reverse_bits);
}
rc sve_revw_zpz(cpu_state* s, Z zd, P pg, Z zn) {
  return zpz_unary<U64>(s, zd, pg, zn, swap_words);
}

rc sve_adr_scaled_zzz(cpu_state* s, Z zd, Z zn, Z zm) {
  const unsigned shift = bits(static_cast<unsigned>(s->instr), 11, 10);
  return compute<group<U64>>(
      s, zd, [=](auto n, auto m) { return n + (m << shift); }, zn, zm);
}
