// Each form consists of an address for every element and the common loop of loads or stores.
// Offsets are first extended and then scaled in 64 bits, and addresses wrap.
#include "sve/fast/gather_scatter.h"

#include "sve/fast/memory_elements.h"

namespace {

using sve::element;
using sve::elements;
using sve::read_x;

using namespace sve::fast::memory;

// The part of an offset element that counts.
constexpr auto whole = [](auto offset) { return U64{offset}; };
constexpr auto sxtw = [](auto offset) { return static_cast<U64>(static_cast<S32>(offset)); };
constexpr auto uxtw = [](auto offset) { return U64{static_cast<U32>(offset)}; };

// The addresses of a form's elements. The operands tell the forms apart: zpzi, zpzr and zprz.
template <class M, class T>
auto addresses(const CPU* cpu, Z zn, unsigned imm) {
  return [bases = cpu->z[zn.num], offset = imm * unsigned{sizeof(M)}](unsigned i) {
    return element<T>(bases, i) + offset;
  };
}

template <class M, class T, class Extend = decltype(whole)>
auto addresses(const CPU* cpu, Z zm, R rn, Extend extend = {}) {
  return [base = read_x(cpu, rn), offsets = cpu->z[zm.num], extend](unsigned i) {
    return base + extend(element<T>(offsets, i));
  };
}

template <class M, class T, class Extend = decltype(whole)>
auto addresses(const CPU* cpu, R rn, Z zm, Extend extend = {}) {
  return [base = read_x(cpu, rn), offsets = cpu->z[zm.num], extend](unsigned i) {
    return base + extend(element<T>(offsets, i)) * sizeof(M);
  };
}

template <class M, class T = U64, class... Form>
RC ld(CPU* cpu, Z zt, P pg, Form... form) {
  sve::fast::load_elements<M, T>(cpu, zt, pg, elements<T>, addresses<M, T>(cpu, form...));
  return aarch64_decode_ok;
}

template <class M, class T = U64, class... Form>
RC st(CPU* cpu, Z zt, P pg, Form... form) {
  sve::fast::store_elements<M, T>(cpu, zt, pg, addresses<M, T>(cpu, form...));
  return aarch64_decode_ok;
}

}  // namespace

RC sve_ld1b_d_zpzi(CPU* c, Z t, P g, Z n, unsigned i) { return ld<U8>(c, t, g, n, i); }
RC sve_ld1sb_d_zpzi(CPU* c, Z t, P g, Z n, unsigned i) { return ld<S8>(c, t, g, n, i); }
RC sve_ld1h_d_zpzi(CPU* c, Z t, P g, Z n, unsigned i) { return ld<U16>(c, t, g, n, i); }
RC sve_ld1sh_d_zpzi(CPU* c, Z t, P g, Z n, unsigned i) { return ld<S16>(c, t, g, n, i); }
RC sve_ld1w_d_zpzi(CPU* c, Z t, P g, Z n, unsigned i) { return ld<U32>(c, t, g, n, i); }
RC sve_ld1sw_d_zpzi(CPU* c, Z t, P g, Z n, unsigned i) { return ld<S32>(c, t, g, n, i); }
RC sve_ld1d_zpzi(CPU* c, Z t, P g, Z n, unsigned i) { return ld<U64>(c, t, g, n, i); }

RC sve_ld1b_d_zpzr(CPU* c, Z t, P g, Z m, R n) { return ld<U8>(c, t, g, m, n); }
RC sve_ld1sb_d_zpzr(CPU* c, Z t, P g, Z m, R n) { return ld<S8>(c, t, g, m, n); }
RC sve_ld1h_d_zpzr(CPU* c, Z t, P g, Z m, R n) { return ld<U16>(c, t, g, m, n); }
RC sve_ld1sh_d_zpzr(CPU* c, Z t, P g, Z m, R n) { return ld<S16>(c, t, g, m, n); }
RC sve_ld1w_d_zpzr(CPU* c, Z t, P g, Z m, R n) { return ld<U32>(c, t, g, m, n); }
RC sve_ld1sw_d_zpzr(CPU* c, Z t, P g, Z m, R n) { return ld<S32>(c, t, g, m, n); }
RC sve_ld1d_zpzr(CPU* c, Z t, P g, Z m, R n) { return ld<U64>(c, t, g, m, n); }
RC sve_ld1b_s_sxtw_zpzr(CPU* c, Z t, P g, Z m, R n) { return ld<U8, U32>(c, t, g, m, n, sxtw); }
RC sve_ld1sb_s_sxtw_zpzr(CPU* c, Z t, P g, Z m, R n) { return ld<S8, U32>(c, t, g, m, n, sxtw); }
RC sve_ld1h_s_sxtw_zpzr(CPU* c, Z t, P g, Z m, R n) { return ld<U16, U32>(c, t, g, m, n, sxtw); }
RC sve_ld1sh_s_sxtw_zpzr(CPU* c, Z t, P g, Z m, R n) { return ld<S16, U32>(c, t, g, m, n, sxtw); }
RC sve_ld1w_sxtw_zpzr(CPU* c, Z t, P g, Z m, R n) { return ld<U32, U32>(c, t, g, m, n, sxtw); }
RC sve_ld1b_d_sxtw_zpzr(CPU* c, Z t, P g, Z m, R n) { return ld<U8>(c, t, g, m, n, sxtw); }
RC sve_ld1sb_d_sxtw_zpzr(CPU* c, Z t, P g, Z m, R n) { return ld<S8>(c, t, g, m, n, sxtw); }
RC sve_ld1sb_d_uxtw_zpzr(CPU* c, Z t, P g, Z m, R n) { return ld<S8>(c, t, g, m, n, uxtw); }

RC sve_ld1h_s_sxtw_scaled_zprz(CPU* c, Z t, P g, R n, Z m) {
  return ld<U16, U32>(c, t, g, n, m, sxtw);
}
RC sve_ld1sh_s_sxtw_scaled_zprz(CPU* c, Z t, P g, R n, Z m) {
  return ld<S16, U32>(c, t, g, n, m, sxtw);
}
RC sve_ld1w_sxtw_scaled_zprz(CPU* c, Z t, P g, R n, Z m) {
  return ld<U32, U32>(c, t, g, n, m, sxtw);
}
RC sve_ld1h_d_sxtw_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return ld<U16>(c, t, g, n, m, sxtw); }
RC sve_ld1sh_d_sxtw_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return ld<S16>(c, t, g, n, m, sxtw); }
RC sve_ld1w_d_sxtw_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return ld<U32>(c, t, g, n, m, sxtw); }
RC sve_ld1sw_d_sxtw_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return ld<S32>(c, t, g, n, m, sxtw); }
RC sve_ld1d_sxtw_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return ld<U64>(c, t, g, n, m, sxtw); }
RC sve_ld1sh_d_uxtw_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return ld<S16>(c, t, g, n, m, uxtw); }
RC sve_ld1d_uxtw_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return ld<U64>(c, t, g, n, m, uxtw); }
RC sve_ld1h_d_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return ld<U16>(c, t, g, n, m); }
RC sve_ld1sh_d_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return ld<S16>(c, t, g, n, m); }
RC sve_ld1w_d_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return ld<U32>(c, t, g, n, m); }
RC sve_ld1sw_d_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return ld<S32>(c, t, g, n, m); }
RC sve_ld1d_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return ld<U64>(c, t, g, n, m); }

RC sve_st1b_d_zpzi(CPU* c, Z t, P g, Z n, unsigned i) { return st<U8>(c, t, g, n, i); }
RC sve_st1h_d_zpzi(CPU* c, Z t, P g, Z n, unsigned i) { return st<U16>(c, t, g, n, i); }
RC sve_st1w_d_zpzi(CPU* c, Z t, P g, Z n, unsigned i) { return st<U32>(c, t, g, n, i); }
RC sve_st1d_zpzi(CPU* c, Z t, P g, Z n, unsigned i) { return st<U64>(c, t, g, n, i); }

RC sve_st1b_d_zpzr(CPU* c, Z t, P g, Z m, R n) { return st<U8>(c, t, g, m, n); }
RC sve_st1h_d_zpzr(CPU* c, Z t, P g, Z m, R n) { return st<U16>(c, t, g, m, n); }
RC sve_st1w_d_zpzr(CPU* c, Z t, P g, Z m, R n) { return st<U32>(c, t, g, m, n); }
RC sve_st1d_zpzr(CPU* c, Z t, P g, Z m, R n) { return st<U64>(c, t, g, m, n); }
RC sve_st1b_s_sxtw_zpzr(CPU* c, Z t, P g, Z m, R n) { return st<U8, U32>(c, t, g, m, n, sxtw); }
RC sve_st1h_s_sxtw_zpzr(CPU* c, Z t, P g, Z m, R n) { return st<U16, U32>(c, t, g, m, n, sxtw); }
RC sve_st1w_sxtw_zpzr(CPU* c, Z t, P g, Z m, R n) { return st<U32, U32>(c, t, g, m, n, sxtw); }
RC sve_st1b_d_sxtw_zpzr(CPU* c, Z t, P g, Z m, R n) { return st<U8>(c, t, g, m, n, sxtw); }

RC sve_st1h_s_sxtw_scaled_zprz(CPU* c, Z t, P g, R n, Z m) {
  return st<U16, U32>(c, t, g, n, m, sxtw);
}
RC sve_st1w_sxtw_scaled_zprz(CPU* c, Z t, P g, R n, Z m) {
  return st<U32, U32>(c, t, g, n, m, sxtw);
}
RC sve_st1h_d_sxtw_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return st<U16>(c, t, g, n, m, sxtw); }
RC sve_st1w_d_sxtw_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return st<U32>(c, t, g, n, m, sxtw); }
RC sve_st1d_sxtw_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return st<U64>(c, t, g, n, m, sxtw); }
RC sve_st1w_d_uxtw_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return st<U32>(c, t, g, n, m, uxtw); }
RC sve_st1d_uxtw_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return st<U64>(c, t, g, n, m, uxtw); }
RC sve_st1h_d_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return st<U16>(c, t, g, n, m); }
RC sve_st1w_d_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return st<U32>(c, t, g, n, m); }
RC sve_st1d_scaled_zprz(CPU* c, Z t, P g, R n, Z m) { return st<U64>(c, t, g, n, m); }
