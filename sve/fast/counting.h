// Counts of elements in scalar and vector registers, arithmetic on the vector length, and the
// WHILE predicates.
#pragma once

#include "sve/fast/forms.h"

// Register, pattern, multiplier (1 to 16): adds or subtracts the multiplier times the number of
// elements that the pattern selects. The name says the element size.
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

// The saturating decrement by the byte count: of the X register if `dst_size` is 3, else of the W
// register, with the result zero-extended.
sve::form::rii sve_uqdecb_rii;

// Register, pattern, multiplier: decrements a value of type T, unsigned int or unsigned long, by
// the element count at the given size, with unsigned saturation.
template <class T>
void sve_uqdec(cpu_state* state, aarch64_i_reg rdn, unsigned pattern, unsigned multiplier,
               element_size size);

sve::form::rp
    sve_incp_rp;  // adds the number of true elements; size code in `size` of the predicate
sve::form::rpp sve_cntp_rpp;  // rd, pg, pn: those true in both; size code in `size` of pn

// The immediate times the bytes of a vector (VL), or times the bytes of a predicate in memory (PL).
sve::form::rri sve_addvl_rri;  // rd = rn + imm * VL
sve::form::rri sve_addpl_rri;  // rd = rn + imm * PL
sve::form::ri sve_rdvl_ri;     // rd = imm * VL

// pd, rn, rm: true from element 0 on as long as rn is below rm (LO, LT) or not above it (LS). rn
// counts up by 1 for each element. rn and rm are X registers if `size` of rn is 3, else W
// registers. Sets the flags with every element counted as active. The size code is `size` of pd.
sve::form::prr sve_whilelo_prr;
sve::form::prr sve_whilels_prr;
sve::form::prr sve_whilelt_prr;  // signed
