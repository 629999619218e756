// Vector operations with an immediate or a scalar, shifts, moves and extends. Immediates are
// already decoded, with any left shift by 8 applied. In predicated forms, elements whose governing
// bit is 0 keep the destination's old value, except in the zeroing mode (qualifier 5 in `size` of
// pg) of sve_cpy_zpi and sve_movprfx_zpz. The size code is `dst_size` of the first operand if that
// is both read and written (zdn), else its `size`.
#pragma once

#include "sve/fast/forms.h"

// zdn, immediate.
sve::form::zi sve_add_zi;         // zdn + imm, zero-extended for doublewords
sve::form::zi sve_sub_zi;         // zdn - imm, zero-extended for doublewords
sve::form::zi_signed sve_mul_zi;  // zdn * imm, sign-extended for doublewords

// zdn, 64-bit mask; no size code is read.
sve::form::zi_mask sve_and_zi;
sve::form::zi_mask sve_orr_zi;
sve::form::zi_mask sve_eor_zi;
sve::form::zi_mask sve_dupm_zi;  // zd = mask in each doubleword

// zdn, pg, zm: shifts by the unsigned element of zm. If it is the element's width or more, LSL and
// LSR give 0, and ASR fills the element with the sign.
sve::form::zpz sve_asr_zpz;
sve::form::zpz sve_lsl_zpz;
sve::form::zpz sve_lsr_zpz;

// Shifts by an immediate, under the same rule: zdn, pg, shift, and zd, zn, shift. For bytes and
// halfwords, LSL uses the low 8 or 16 bits of the shift.
sve::form::zpi sve_asr_zpi;
sve::form::zpi sve_lsl_zpi;
sve::form::zzi sve_asr_zzi;
sve::form::zzi sve_lsl_zzi;

// Broadcasts of an immediate, of a general register or SP, and of element `index` of zn (sizes B to
// Q). An index beyond the vector gives 0.
sve::form::zi_signed sve_dup_zi;
sve::form::zr sve_dup_zr;
sve::form::zzi sve_dup_zzi;

// Broadcasts into the active elements. sve_cpy_zpv takes element 0 of the vector register.
sve::form::zpi_signed sve_cpy_zpi;
sve::form::zpr sve_cpy_zpr;
sve::form::zpv sve_cpy_zpv;

// zd, start, step: element i is start + i * step.
sve::form::zii_signed sve_index_zii;
sve::form::zir sve_index_zir;
sve::form::zri sve_index_zri;
sve::form::zrr sve_index_zrr;

// zd, zn, and zd, pg, zn.
sve::form::zz sve_movprfx_zz;  // no size code is read
sve::form::zpz sve_movprfx_zpz;

// zd, pg, zn: the low byte, halfword or word of each element, extended to the element's width.
sve::form::zpz sve_sxtb_zpz;  // H S D
sve::form::zpz sve_sxth_zpz;  // S D
sve::form::zpz sve_sxtw_zpz;  // D
sve::form::zpz sve_uxth_zpz;  // S D
sve::form::zpz sve_uxtw_zpz;  // D

// zd, pg, zn: reverse the bits of each element, or the words of each doubleword.
sve::form::zpz sve_rbit_zpz;
sve::form::zpz sve_revw_zpz;

// zd, zn, zm: the doublewords zn + (zm << n). n is bits 11 to 10 of `instr`.
sve::form::zzz sve_adr_scaled_zzz;
