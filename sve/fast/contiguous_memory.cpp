// A load needs no temporary: it reads no vector register, and a fault does not return here.
//
// All loads of a width are one template, whether plain, non-temporal or of several registers. So
// are all stores. Each name below is one instance.
#include "sve/fast/contiguous_memory.h"

#include <cstdint>
#include <type_traits>

#include "sve/fast/memory_elements.h"
#include "sve/state/access.h"
#include "sve/state/guest_memory.h"
#include "sve/state/integers.h"
#include "sve/state/packed_predicate.h"

namespace {

using sve::elements;
using sve::predicate_bytes;
using sve::read_x;
using sve::vector_bytes;
using sve::fast::consecutive;
using sve::fast::load_elements;
using sve::fast::register_offset;
using sve::fast::store_elements;

using namespace sve::fast::memory;

// Byte offset of a block transfer: the immediate times the bytes of a register, in 32 bits,
// sign-extended.
U64 block_offset(int imm, unsigned bytes) {
  return static_cast<U64>(static_cast<S32>(static_cast<U32>(imm) * bytes));
}

// M is the memory element, sign-extended if its type is signed. T is the register element.
template <class M, class T, int N>
RC load(CPU* cpu, Z zt, P pg, U64 address) {
  load_elements<M, T, N>(cpu, zt, pg, elements<T>, consecutive<M, N>(address));
  return aarch64_decode_ok;
}

template <class M, class T, int N>
RC store(CPU* cpu, Z zt, P pg, U64 address) {
  store_elements<M, T, N>(cpu, zt, pg, consecutive<M, N>(address));
  return aarch64_decode_ok;
}

// The zpri and scaled_zprr forms of one to four registers.
template <class M, class T = M, int N = 1>
RC ld(CPU* cpu, Z zt, P pg, R rn, int imm) {
  return load<M, T, N>(cpu, zt, pg, read_x(cpu, rn) + register_offset<T, N>(imm) * sizeof(M));
}

template <class M, class T = M, int N = 1>
RC ld(CPU* cpu, Z zt, P pg, R rn, X rm) {
  return load<M, T, N>(cpu, zt, pg, read_x(cpu, rn) + read_x(cpu, rm) * sizeof(M));
}

template <class M, class T = M, int N = 1>
RC st(CPU* cpu, Z zt, P pg, R rn, int imm) {
  return store<M, T, N>(cpu, zt, pg, read_x(cpu, rn) + register_offset<T, N>(imm) * sizeof(M));
}

template <class M, class T = M, int N = 1>
RC st(CPU* cpu, Z zt, P pg, R rn, X rm) {
  return store<M, T, N>(cpu, zt, pg, read_x(cpu, rn) + read_x(cpu, rm) * sizeof(M));
}

template <class M, int N>
RC ldN(CPU* cpu, Z zt, P pg, R rn, int imm) {
  return sve_ldN_zpri<M, M, N>(cpu, zt, pg, rn, static_cast<S32>(register_offset<M, N>(imm)));
}

template <class M, int N>
RC ldN(CPU* cpu, Z zt, P pg, R rn, X rm) {
  return sve_ldN_zpri<M, M, N>(cpu, zt, pg, rn, static_cast<long>(read_x(cpu, rm)));
}

template <class M, class T = M>
RC ld1r(CPU* cpu, Z zt, P pg, R rn, unsigned imm) {
  const U64 address = read_x(cpu, rn) + U64{imm} * sizeof(M);
  load_elements<M, T>(cpu, zt, pg, elements<T>, [=](unsigned) { return address; });
  return aarch64_decode_ok;
}

}  // namespace

template <class T, class M, int N>
RC sve_ldN_zpri(CPU* cpu, Z zt, P pg, R rn, long offset) {
  return load<M, T, N>(cpu, zt, pg, read_x(cpu, rn) + static_cast<U64>(offset) * sizeof(M));
}

// Single registers: the memory element, then the register element if it is wider.
RC sve_ld1b_zpri(CPU* c, Z t, P g, R n, int i) { return ld<U8>(c, t, g, n, i); }
RC sve_ld1b_h_zpri(CPU* c, Z t, P g, R n, int i) { return ld<U8, U16>(c, t, g, n, i); }
RC sve_ld1b_s_zpri(CPU* c, Z t, P g, R n, int i) { return ld<U8, U32>(c, t, g, n, i); }
RC sve_ld1b_d_zpri(CPU* c, Z t, P g, R n, int i) { return ld<U8, U64>(c, t, g, n, i); }
RC sve_ld1h_zpri(CPU* c, Z t, P g, R n, int i) { return ld<U16>(c, t, g, n, i); }
RC sve_ld1h_s_zpri(CPU* c, Z t, P g, R n, int i) { return ld<U16, U32>(c, t, g, n, i); }
RC sve_ld1h_d_zpri(CPU* c, Z t, P g, R n, int i) { return ld<U16, U64>(c, t, g, n, i); }
RC sve_ld1w_zpri(CPU* c, Z t, P g, R n, int i) { return ld<U32>(c, t, g, n, i); }
RC sve_ld1w_d_zpri(CPU* c, Z t, P g, R n, int i) { return ld<U32, U64>(c, t, g, n, i); }
RC sve_ld1d_zpri(CPU* c, Z t, P g, R n, int i) { return ld<U64>(c, t, g, n, i); }
RC sve_ld1sb_h_zpri(CPU* c, Z t, P g, R n, int i) { return ld<S8, U16>(c, t, g, n, i); }
RC sve_ld1sb_s_zpri(CPU* c, Z t, P g, R n, int i) { return ld<S8, U32>(c, t, g, n, i); }
RC sve_ld1sb_d_zpri(CPU* c, Z t, P g, R n, int i) { return ld<S8, U64>(c, t, g, n, i); }
RC sve_ld1sh_s_zpri(CPU* c, Z t, P g, R n, int i) { return ld<S16, U32>(c, t, g, n, i); }
RC sve_ld1sh_d_zpri(CPU* c, Z t, P g, R n, int i) { return ld<S16, U64>(c, t, g, n, i); }
RC sve_ld1sw_d_zpri(CPU* c, Z t, P g, R n, int i) { return ld<S32, U64>(c, t, g, n, i); }

RC sve_ld1b_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<U8>(c, t, g, n, x); }
RC sve_ld1b_h_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<U8, U16>(c, t, g, n, x); }
RC sve_ld1b_s_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<U8, U32>(c, t, g, n, x); }
RC sve_ld1b_d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<U8, U64>(c, t, g, n, x); }
RC sve_ld1h_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<U16>(c, t, g, n, x); }
RC sve_ld1h_s_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<U16, U32>(c, t, g, n, x); }
RC sve_ld1h_d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<U16, U64>(c, t, g, n, x); }
RC sve_ld1w_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<U32>(c, t, g, n, x); }
RC sve_ld1w_d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<U32, U64>(c, t, g, n, x); }
RC sve_ld1d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<U64>(c, t, g, n, x); }
RC sve_ld1sb_h_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<S8, U16>(c, t, g, n, x); }
RC sve_ld1sb_s_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<S8, U32>(c, t, g, n, x); }
RC sve_ld1sb_d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<S8, U64>(c, t, g, n, x); }
RC sve_ld1sh_s_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<S16, U32>(c, t, g, n, x); }
RC sve_ld1sh_d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<S16, U64>(c, t, g, n, x); }
RC sve_ld1sw_d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<S32, U64>(c, t, g, n, x); }

RC sve_st1b_zpri(CPU* c, Z t, P g, R n, int i) { return st<U8>(c, t, g, n, i); }
RC sve_st1b_h_zpri(CPU* c, Z t, P g, R n, int i) { return st<U8, U16>(c, t, g, n, i); }
RC sve_st1b_s_zpri(CPU* c, Z t, P g, R n, int i) { return st<U8, U32>(c, t, g, n, i); }
RC sve_st1b_d_zpri(CPU* c, Z t, P g, R n, int i) { return st<U8, U64>(c, t, g, n, i); }
RC sve_st1h_zpri(CPU* c, Z t, P g, R n, int i) { return st<U16>(c, t, g, n, i); }
RC sve_st1h_s_zpri(CPU* c, Z t, P g, R n, int i) { return st<U16, U32>(c, t, g, n, i); }
RC sve_st1h_d_zpri(CPU* c, Z t, P g, R n, int i) { return st<U16, U64>(c, t, g, n, i); }
RC sve_st1w_zpri(CPU* c, Z t, P g, R n, int i) { return st<U32>(c, t, g, n, i); }
RC sve_st1w_d_zpri(CPU* c, Z t, P g, R n, int i) { return st<U32, U64>(c, t, g, n, i); }
RC sve_st1d_zpri(CPU* c, Z t, P g, R n, int i) { return st<U64>(c, t, g, n, i); }

RC sve_st1b_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U8>(c, t, g, n, x); }
RC sve_st1b_h_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U8, U16>(c, t, g, n, x); }
RC sve_st1b_s_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U8, U32>(c, t, g, n, x); }
RC sve_st1b_d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U8, U64>(c, t, g, n, x); }
RC sve_st1h_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U16>(c, t, g, n, x); }
RC sve_st1h_s_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U16, U32>(c, t, g, n, x); }
RC sve_st1h_d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U16, U64>(c, t, g, n, x); }
RC sve_st1w_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U32>(c, t, g, n, x); }
RC sve_st1w_d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U32, U64>(c, t, g, n, x); }
RC sve_st1d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U64>(c, t, g, n, x); }

// Non-temporal: without a cache hint.
RC sve_ldnt1b_zpri(CPU* c, Z t, P g, R n, int i) { return ld<U8>(c, t, g, n, i); }
RC sve_ldnt1h_zpri(CPU* c, Z t, P g, R n, int i) { return ld<U16>(c, t, g, n, i); }
RC sve_ldnt1w_zpri(CPU* c, Z t, P g, R n, int i) { return ld<U32>(c, t, g, n, i); }
RC sve_ldnt1d_zpri(CPU* c, Z t, P g, R n, int i) { return ld<U64>(c, t, g, n, i); }
RC sve_ldnt1b_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<U8>(c, t, g, n, x); }
RC sve_ldnt1h_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<U16>(c, t, g, n, x); }
RC sve_ldnt1w_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<U32>(c, t, g, n, x); }
RC sve_ldnt1d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ld<U64>(c, t, g, n, x); }
RC sve_stnt1b_zpri(CPU* c, Z t, P g, R n, int i) { return st<U8>(c, t, g, n, i); }
RC sve_stnt1h_zpri(CPU* c, Z t, P g, R n, int i) { return st<U16>(c, t, g, n, i); }
RC sve_stnt1w_zpri(CPU* c, Z t, P g, R n, int i) { return st<U32>(c, t, g, n, i); }
RC sve_stnt1d_zpri(CPU* c, Z t, P g, R n, int i) { return st<U64>(c, t, g, n, i); }
RC sve_stnt1b_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U8>(c, t, g, n, x); }
RC sve_stnt1h_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U16>(c, t, g, n, x); }
RC sve_stnt1w_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U32>(c, t, g, n, x); }
RC sve_stnt1d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U64>(c, t, g, n, x); }

// Structures of two to four registers.
RC sve_ld2b_zpri(CPU* c, Z t, P g, R n, int i) { return ldN<U8, 2>(c, t, g, n, i); }
RC sve_ld2h_zpri(CPU* c, Z t, P g, R n, int i) { return ldN<U16, 2>(c, t, g, n, i); }
RC sve_ld2w_zpri(CPU* c, Z t, P g, R n, int i) { return ldN<U32, 2>(c, t, g, n, i); }
RC sve_ld2d_zpri(CPU* c, Z t, P g, R n, int i) { return ldN<U64, 2>(c, t, g, n, i); }
RC sve_ld3b_zpri(CPU* c, Z t, P g, R n, int i) { return ldN<U8, 3>(c, t, g, n, i); }
RC sve_ld3h_zpri(CPU* c, Z t, P g, R n, int i) { return ldN<U16, 3>(c, t, g, n, i); }
RC sve_ld3w_zpri(CPU* c, Z t, P g, R n, int i) { return ldN<U32, 3>(c, t, g, n, i); }
RC sve_ld3d_zpri(CPU* c, Z t, P g, R n, int i) { return ldN<U64, 3>(c, t, g, n, i); }
RC sve_ld4b_zpri(CPU* c, Z t, P g, R n, int i) { return ldN<U8, 4>(c, t, g, n, i); }
RC sve_ld4h_zpri(CPU* c, Z t, P g, R n, int i) { return ldN<U16, 4>(c, t, g, n, i); }
RC sve_ld4w_zpri(CPU* c, Z t, P g, R n, int i) { return ldN<U32, 4>(c, t, g, n, i); }
RC sve_ld4d_zpri(CPU* c, Z t, P g, R n, int i) { return ldN<U64, 4>(c, t, g, n, i); }

RC sve_ld2b_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldN<U8, 2>(c, t, g, n, x); }
RC sve_ld2h_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldN<U16, 2>(c, t, g, n, x); }
RC sve_ld2w_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldN<U32, 2>(c, t, g, n, x); }
RC sve_ld2d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldN<U64, 2>(c, t, g, n, x); }
RC sve_ld3b_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldN<U8, 3>(c, t, g, n, x); }
RC sve_ld3h_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldN<U16, 3>(c, t, g, n, x); }
RC sve_ld3w_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldN<U32, 3>(c, t, g, n, x); }
RC sve_ld3d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldN<U64, 3>(c, t, g, n, x); }
RC sve_ld4b_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldN<U8, 4>(c, t, g, n, x); }
RC sve_ld4h_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldN<U16, 4>(c, t, g, n, x); }
RC sve_ld4w_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldN<U32, 4>(c, t, g, n, x); }
RC sve_ld4d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldN<U64, 4>(c, t, g, n, x); }

RC sve_st2b_zpri(CPU* c, Z t, P g, R n, int i) { return st<U8, U8, 2>(c, t, g, n, i); }
RC sve_st2h_zpri(CPU* c, Z t, P g, R n, int i) { return st<U16, U16, 2>(c, t, g, n, i); }
RC sve_st2w_zpri(CPU* c, Z t, P g, R n, int i) { return st<U32, U32, 2>(c, t, g, n, i); }
RC sve_st2d_zpri(CPU* c, Z t, P g, R n, int i) { return st<U64, U64, 2>(c, t, g, n, i); }
RC sve_st3b_zpri(CPU* c, Z t, P g, R n, int i) { return st<U8, U8, 3>(c, t, g, n, i); }
RC sve_st3h_zpri(CPU* c, Z t, P g, R n, int i) { return st<U16, U16, 3>(c, t, g, n, i); }
RC sve_st3w_zpri(CPU* c, Z t, P g, R n, int i) { return st<U32, U32, 3>(c, t, g, n, i); }
RC sve_st3d_zpri(CPU* c, Z t, P g, R n, int i) { return st<U64, U64, 3>(c, t, g, n, i); }
RC sve_st4b_zpri(CPU* c, Z t, P g, R n, int i) { return st<U8, U8, 4>(c, t, g, n, i); }
RC sve_st4h_zpri(CPU* c, Z t, P g, R n, int i) { return st<U16, U16, 4>(c, t, g, n, i); }
RC sve_st4w_zpri(CPU* c, Z t, P g, R n, int i) { return st<U32, U32, 4>(c, t, g, n, i); }
RC sve_st4d_zpri(CPU* c, Z t, P g, R n, int i) { return st<U64, U64, 4>(c, t, g, n, i); }

RC sve_st2b_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U8, U8, 2>(c, t, g, n, x); }
RC sve_st2h_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U16, U16, 2>(c, t, g, n, x); }
RC sve_st2w_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U32, U32, 2>(c, t, g, n, x); }
RC sve_st2d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U64, U64, 2>(c, t, g, n, x); }
RC sve_st3b_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U8, U8, 3>(c, t, g, n, x); }
RC sve_st3h_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U16, U16, 3>(c, t, g, n, x); }
RC sve_st3w_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U32, U32, 3>(c, t, g, n, x); }
RC sve_st3d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U64, U64, 3>(c, t, g, n, x); }
RC sve_st4b_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U8, U8, 4>(c, t, g, n, x); }
RC sve_st4h_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U16, U16, 4>(c, t, g, n, x); }
RC sve_st4w_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U32, U32, 4>(c, t, g, n, x); }
RC sve_st4d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return st<U64, U64, 4>(c, t, g, n, x); }

template RC sve_ldN_zpri<U8, U8, 2>(CPU*, Z, P, R, long);
template RC sve_ldN_zpri<U16, U16, 2>(CPU*, Z, P, R, long);
template RC sve_ldN_zpri<U32, U32, 2>(CPU*, Z, P, R, long);
template RC sve_ldN_zpri<U64, U64, 2>(CPU*, Z, P, R, long);
template RC sve_ldN_zpri<U8, U8, 3>(CPU*, Z, P, R, long);
template RC sve_ldN_zpri<U16, U16, 3>(CPU*, Z, P, R, long);
template RC sve_ldN_zpri<U32, U32, 3>(CPU*, Z, P, R, long);
template RC sve_ldN_zpri<U64, U64, 3>(CPU*, Z, P, R, long);
template RC sve_ldN_zpri<U8, U8, 4>(CPU*, Z, P, R, long);
template RC sve_ldN_zpri<U16, U16, 4>(CPU*, Z, P, R, long);
template RC sve_ldN_zpri<U32, U32, 4>(CPU*, Z, P, R, long);
template RC sve_ldN_zpri<U64, U64, 4>(CPU*, Z, P, R, long);

// Load and replicate.
RC sve_ld1rb_zpri(CPU* c, Z t, P g, R n, unsigned i) { return ld1r<U8>(c, t, g, n, i); }
RC sve_ld1rb_h_zpri(CPU* c, Z t, P g, R n, unsigned i) { return ld1r<U8, U16>(c, t, g, n, i); }
RC sve_ld1rb_s_zpri(CPU* c, Z t, P g, R n, unsigned i) { return ld1r<U8, U32>(c, t, g, n, i); }
RC sve_ld1rb_d_zpri(CPU* c, Z t, P g, R n, unsigned i) { return ld1r<U8, U64>(c, t, g, n, i); }
RC sve_ld1rh_zpri(CPU* c, Z t, P g, R n, unsigned i) { return ld1r<U16>(c, t, g, n, i); }
RC sve_ld1rh_s_zpri(CPU* c, Z t, P g, R n, unsigned i) { return ld1r<U16, U32>(c, t, g, n, i); }
RC sve_ld1rh_d_zpri(CPU* c, Z t, P g, R n, unsigned i) { return ld1r<U16, U64>(c, t, g, n, i); }
RC sve_ld1rw_zpri(CPU* c, Z t, P g, R n, unsigned i) { return ld1r<U32>(c, t, g, n, i); }
RC sve_ld1rw_d_zpri(CPU* c, Z t, P g, R n, unsigned i) { return ld1r<U32, U64>(c, t, g, n, i); }
RC sve_ld1rd_zpri(CPU* c, Z t, P g, R n, unsigned i) { return ld1r<U64>(c, t, g, n, i); }
RC sve_ld1rsb_h_zpri(CPU* c, Z t, P g, R n, unsigned i) { return ld1r<S8, U16>(c, t, g, n, i); }
RC sve_ld1rsb_s_zpri(CPU* c, Z t, P g, R n, unsigned i) { return ld1r<S8, U32>(c, t, g, n, i); }
RC sve_ld1rsb_d_zpri(CPU* c, Z t, P g, R n, unsigned i) { return ld1r<S8, U64>(c, t, g, n, i); }
RC sve_ld1rsh_s_zpri(CPU* c, Z t, P g, R n, unsigned i) { return ld1r<S16, U32>(c, t, g, n, i); }
RC sve_ld1rsh_d_zpri(CPU* c, Z t, P g, R n, unsigned i) { return ld1r<S16, U64>(c, t, g, n, i); }
RC sve_ld1rsw_d_zpri(CPU* c, Z t, P g, R n, unsigned i) { return ld1r<S32, U64>(c, t, g, n, i); }

// Whole registers.

RC sve_ldr_zri(CPU* cpu, Z zt, R rn, int imm) {
  sve::read_guest_block(cpu->z[zt.num], read_x(cpu, rn) + block_offset(imm, vector_bytes));
  return aarch64_decode_ok;
}

RC sve_str_zri(CPU* cpu, Z zt, R rn, int imm) {
  sve::write_guest_block(read_x(cpu, rn) + block_offset(imm, vector_bytes), cpu->z[zt.num]);
  return aarch64_decode_ok;
}

RC sve_ldr_pri(CPU* cpu, P pt, R rn, int imm) {
  U8 packed[predicate_bytes];
  sve::read_guest_block(packed, read_x(cpu, rn) + block_offset(imm, predicate_bytes));
  for (unsigned j = 0; j < predicate_bytes; ++j) {
    sve::set_element<U64>(cpu->p[pt.num], j, sve::unpack_lanes(packed[j]));
  }
  return aarch64_decode_ok;
}

RC sve_str_pri(CPU* cpu, P pt, R rn, int imm) {
  U8 packed[predicate_bytes];
  for (unsigned j = 0; j < predicate_bytes; ++j) {
    packed[j] = sve::pack_lanes(sve::element<U64>(cpu->p[pt.num], j));
  }
  sve::write_guest_block(read_x(cpu, rn) + block_offset(imm, predicate_bytes), packed);
  return aarch64_decode_ok;
}
