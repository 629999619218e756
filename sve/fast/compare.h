// Integer compares of a vector with a vector or with an immediate, into a predicate.
//
// Element i of pd is 1 at its full width if its governing bit is 1 and the compare holds, else 0.
// All bytes of pd are written. N, Z, C and V are set as sve_ptest sets them from the result and the
// value of pg before the instruction. The size code is `size` of pd.
#pragma once

#include "sve/fast/forms.h"

// pd, pg, zn, zm.
sve::form::ppzz sve_cmpeq_ppzz;
sve::form::ppzz sve_cmpne_ppzz;
sve::form::ppzz sve_cmpge_ppzz;  // signed
sve::form::ppzz sve_cmpgt_ppzz;  // signed
sve::form::ppzz sve_cmphs_ppzz;  // unsigned >=
sve::form::ppzz sve_cmphi_ppzz;  // unsigned >

// pd, pg, zn, immediate: truncated to the element's width, sign-extended for doublewords.
sve::form::ppzi_signed sve_cmpeq_ppzi;
sve::form::ppzi_signed sve_cmpne_ppzi;
sve::form::ppzi_signed sve_cmpgt_ppzi;
sve::form::ppzi_signed sve_cmplt_ppzi;
sve::form::ppzi_signed sve_cmple_ppzi;

// pd, pg, zn, immediate: zero-extended for doublewords.
sve::form::ppzi sve_cmphi_ppzi;  // unsigned >
sve::form::ppzi sve_cmplo_ppzi;  // unsigned <
