// Permutes of vectors, and reductions of a vector to one element or scalar. The size code is `size`
// of the destination, but for the reductions and LASTB forms it is `size` of zn.
#pragma once

#include "sve/fast/forms.h"

// zd, zn, zm.
sve::form::zzz sve_zip1_zzz;  // low halves interleaved
sve::form::zzz sve_zip2_zzz;  // high halves interleaved
sve::form::zzz sve_uzp1_zzz;  // even elements of zn, then of zm
sve::form::zzz sve_uzp2_zzz;  // odd elements of zn, then of zm
sve::form::zzz sve_trn2_zzz;  // odd elements of zn and zm in turn
sve::form::zzz sve_tbl_zzz;   // zn[zm[i]]; 0 for an index beyond the vector

// zdn, zm, position in bytes: the vector that begins there in zdn followed by zm. zdn is unchanged
// if the position is not below the vector's length.
sve::form::zzi sve_ext_zzi;

sve::form::zz sve_rev_zz;  // zd, zn: the elements in reversed order

// zd, zn: the low or high half of zn, each element widened to twice its size; no size code is read.
sve::form::zz sve_uunpklo_b2h_zz;
sve::form::zz sve_uunpkhi_b2h_zz;
sve::form::zz sve_uunpklo_h2s_zz;
sve::form::zz sve_uunpkhi_h2s_zz;
sve::form::zz sve_uunpklo_s2d_zz;
sve::form::zz sve_uunpkhi_s2d_zz;
sve::form::zz sve_sunpklo_s2d_zz;
sve::form::zz sve_sunpkhi_s2d_zz;

// Number of a vector register, pg, zn: its element 0 becomes the reduction of the active elements
// of zn, and the rest 0. If no element is active, it becomes the operation's neutral value.
sve::form::vpz sve_andv_vpz;
sve::form::vpz sve_orv_vpz;
sve::form::vpz sve_eorv_vpz;
sve::form::vpz sve_uaddv_vpz;  // a 64-bit sum at every element size
sve::form::vpz sve_smaxv_vpz;
sve::form::vpz sve_sminv_vpz;
sve::form::vpz sve_umaxv_vpz;
sve::form::vpz sve_uminv_vpz;

// Destination, pg, zn: the last active element of zn, or the last element if none is active.
sve::form::vpz sve_lastb_vpz;
sve::form::rpz sve_lastb_rpz;  // zero-extended

// rdn, pg, zn: the last active element of zn, or the low element of rdn if none is active,
// zero-extended.
sve::form::rpz sve_clastb_rpz;
