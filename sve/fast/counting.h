// Counts of elements in scalar and vector registers, arithmetic on the vector length, and the
// WHILE predicates.
#pragma once

#include "sve/fast/forms.h"

// Register, pattern, multiplier (1 to 16): adds or subtracts multiplier times the number of
// elements that the pattern selects, at the size in the name.
sve::form::rii sve_incb_rii;
sve::form::rii sve_inch_rii;
sve::form::rii sve_incw_rii;
sve::form::rii sve_incd_rii;
sve::form::rii sve_decb_rii;
sve::form::rii sve_dech_rii;
sve::form::rii sve_decw_rii;
sve::form::rii sve_decd_rii;
sve::form::zii sve_inch_zii;
sve::form::zii sve_incw_zii;
sve::form::zii sve_incd_zii;
sve::form::zii sve_dech_zii;
sve::form::zii sve_decw_zii;
sve::form::zii sve_decd_zii;

// The saturating decrement by the byte count: on the X register for `dst_size` 3, else on the W
// register, with the result zero-extended.
sve::form::rii sve_uqdecb_rii;

// Register, pattern, multiplier: the unsigned saturating decrement by the count of the given size
// on a value of type T, unsigned int or unsigned long.
template <class T>
void sve_uqdec(cpu_state* state, aarch64_i_reg rdn, unsigned pattern, unsigned multiplier,
               element_size size);

sve::form::rp
    sve_incp_rp;  // adds the number of true elements; size code in `size` of the predicate
sve::form::rpp sve_cntp_rpp;  // rd, pg, pn: those true in both; size code in `size` of pn

// The immediate times the vector length in bytes, and times that of a predicate in memory.
sve::form::rri sve_addvl_rri;  // rd = rn + imm * VL
sve::form::rri sve_addpl_rri;  // rd = rn + imm * PL
sve::form::ri sve_rdvl_ri;     // rd = imm * VL

// pd, rn, rm: true from element 0 on as long as rn, counted up by 1 for each element, is below rm
// (LO, LT) or not above it (LS); X registers for `size` 3 of rn, else W registers. Sets the flags
// with every element counted as active. The size code is `size` of pd.
sve::form::prr sve_whilelo_prr;
sve::form::prr sve_whilels_prr;
sve::form::prr sve_whilelt_prr;  // signed
