// Integer arithmetic and logic on vectors. Arithmetic is modulo the element's width. Elements whose
// governing bit is 0 keep the destination's old value.
#pragma once

#include "sve/fast/forms.h"

// zdn, pg, zm; the size code is `dst_size` of zdn.
sve::form::zpz sve_add_zpz;  // zdn + zm
sve::form::zpz sve_sub_zpz;  // zdn - zm
sve::form::zpz sve_mul_zpz;  // zdn * zm
sve::form::zpz sve_and_zpz;  // zdn & zm
sve::form::zpz sve_orr_zpz;  // zdn | zm
sve::form::zpz sve_eor_zpz;  // zdn ^ zm
sve::form::zpz sve_bic_zpz;  // zdn & ~zm

// zdn, pg, zm; the size code is `size` of zm.
sve::form::zpz sve_smin_zpz;
sve::form::zpz sve_smax_zpz;
sve::form::zpz sve_umin_zpz;
sve::form::zpz sve_umax_zpz;

// zdn, pg, zm: doublewords if `dst_size` of zdn is 3, else words. The quotient is truncated toward
// zero. A divisor of 0 gives 0, and the most negative value divided by -1 gives itself.
sve::form::zpz sve_sdiv_zpz;   // zdn / zm
sve::form::zpz sve_udiv_zpz;   // zdn / zm
sve::form::zpz sve_sdivr_zpz;  // zm / zdn
sve::form::zpz sve_udivr_zpz;  // zm / zdn

// zd, pg, zn; the size code is `size` of zd.
sve::form::zpz sve_neg_zpz;  // 0 - zn

// zdn, pg, zm, za, or zda, pg, zn, zm; the size code is `dst_size` of the first.
sve::form::zpzz sve_mad_zpzz;  // za + zdn * zm
sve::form::zpzz sve_msb_zpzz;  // za - zdn * zm
sve::form::zpzz sve_mla_zpzz;  // zda + zn * zm
sve::form::zpzz sve_mls_zpzz;  // zda - zn * zm

// zd, pg, zn, zm; the size code is `size` of zd. Every element is written.
sve::form::zpzz sve_sel_zpzz;  // zn where pg, else zm

// zd, zn, zm; the size code is `size` of zd.
sve::form::zzz sve_add_zzz;  // zn + zm
sve::form::zzz sve_sub_zzz;  // zn - zm

// zd, zn, zm; no size code is read.
sve::form::zzz sve_and_zzz;  // zn & zm
sve::form::zzz sve_orr_zzz;  // zn | zm
sve::form::zzz sve_eor_zzz;  // zn ^ zm
sve::form::zzz sve_bic_zzz;  // zn & ~zm
