// Single and double precision on the processor's own scalar instructions, under the application's
// FPCR. FDUP is the only one that is also used for half precision.
//
// Flags accumulate in the FPSR, on top of the application's. The decode handler reads it afterwards
// (sve/decode/handlers.h). Inactive elements run no instruction and raise no flags: they keep the
// destination's old value, and give 0 in a predicate. The only size codes are S and D.
#pragma once

#include "sve/fast/forms.h"

// zdn, pg, zm; the size code is `dst_size` of zdn.
sve::form::zpz sve_fadd_zpz;    // zdn + zm
sve::form::zpz sve_fsub_zpz;    // zdn - zm
sve::form::zpz sve_fsubr_zpz;   // zm - zdn
sve::form::zpz sve_fmul_zpz;    // zdn x zm
sve::form::zpz sve_fdiv_zpz;    // zdn / zm
sve::form::zpz sve_fdivr_zpz;   // zm / zdn
sve::form::zpz sve_fmax_zpz;    // FPMax
sve::form::zpz sve_fmaxnm_zpz;  // FPMaxNum
sve::form::zpz sve_fminnm_zpz;  // FPMinNum

// zdn, pg, the immediate; the size code is `dst_size` of zdn.
sve::form::zpi_arith sve_fadd_zpi;   // zdn + 0.5 or 1.0
sve::form::zpi_arith sve_fsub_zpi;   // zdn - 0.5 or 1.0
sve::form::zpi_arith sve_fsubr_zpi;  // 0.5 or 1.0, - zdn
sve::form::zpi_arith sve_fmul_zpi;   // zdn x 0.5 or 2.0

// zda, pg, zn, zm; the size code is `dst_size` of zda.
sve::form::zpzz sve_fnmla_zpzz;  // -zda - zn x zm, rounded once

// zd, pg, zn; the size code is `size` of zd.
sve::form::zpz sve_fneg_zpz;    // the sign flipped; no flags
sve::form::zpz sve_fsqrt_zpz;   // FPSqrt
sve::form::zpz sve_frinta_zpz;  // FPRoundInt, ties away from zero

// Integer to floating point, from and to the low bits of the elements. If the result is narrower
// than the element, the bits above it are 0. No size code is read.
sve::form::zpz sve_scvtf_s2s_zpz, sve_ucvtf_s2s_zpz;  // words
sve::form::zpz sve_scvtf_d2d_zpz, sve_ucvtf_d2d_zpz;  // doublewords
sve::form::zpz sve_scvtf_s2d_zpz, sve_ucvtf_s2d_zpz;  // the low word of each doubleword
sve::form::zpz sve_scvtf_d2s_zpz;                     // doublewords to single precision

// zd, zn, zm, or zd, zn; the size code is `size` of zd.
sve::form::zzz sve_fadd_zzz;    // zn + zm
sve::form::zzz sve_fsub_zzz;    // zn - zm
sve::form::zzz sve_fmul_zzz;    // zn x zm
sve::form::zzz sve_frecps_zzz;  // FPRecipStepFused
sve::form::zz sve_frecpe_zz;    // FPRecipEstimate

// zd, the immediate in three formats. The size code is `size` of zd: S, D, or half for all others.
// No flags.
sve::form::zi_dup sve_fdup_zi;

// pd, pg, zn, with +0.0, or with zm; the size code is `size` of pd. Only `ne` and `uo` hold for
// NaNs. A quiet NaN raises a flag only in the order comparisons.
sve::form::ppz sve_fcmeq_ppz, sve_fcmge_ppz, sve_fcmgt_ppz, sve_fcmle_ppz, sve_fcmlt_ppz;
sve::form::ppzz sve_fcmeq_ppzz, sve_fcmge_ppzz, sve_fcmgt_ppzz, sve_fcmne_ppzz, sve_fcmuo_ppzz;

// vd, pg, zn; the size code is `size` of zn. Reduces the active elements in a tree of adjacent
// pairs, with the default NaN in place of the inactive ones. The rest of the vector becomes 0.
sve::form::vpz sve_fmaxnmv_vpz;  // FPMaxNum
sve::form::vpz sve_fminnmv_vpz;  // FPMinNum
