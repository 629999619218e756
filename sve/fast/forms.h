// The operand forms of the fast paths.
//
// A fast path is named sve_, the mnemonic, and the letters of its operands, destination first. The
// same letters name its type here: z and p are vector and predicate registers, r is a general
// register, i an immediate, and v the number of a vector register that is used as a SIMD&FP scalar.
// So `sve::form::zpz sve_add_zpz;` declares
// aarch64_decode_rc sve_add_zpz(cpu_state*, aarch64_z_reg, aarch64_p_reg, aarch64_z_reg).
//
// Every fast path carries out one instruction on the state and always returns aarch64_decode_ok:
// register numbers come from fields of the word, so they cannot exceed the arrays, and the
// operations are defined for all values. It changes only its destination and, where its declaration
// says so, `nzcv` or `ffr`. Any of its operands may be the same register.
#pragma once

#include "sve/state/cpu_state.h"
#include "sve/state/operands.h"

namespace sve::form {

using rc = aarch64_decode_rc;
using Z = aarch64_z_reg;
using P = aarch64_p_reg;
using R = aarch64_i_reg;
using R_or_SP = aarch64_i_rsp_reg;
using mask64 = aarch64_sve_logical64_imm;
using dup_imm = aarch64_sve_fp_dup_imm;
using arith_imm = aarch64_sve_fp_arith_imm;

using zz = rc(cpu_state*, Z, Z);
using zzz = rc(cpu_state*, Z, Z, Z);
using zzi = rc(cpu_state*, Z, Z, unsigned);
using zpz = rc(cpu_state*, Z, P, Z);
using zpzz = rc(cpu_state*, Z, P, Z, Z);
using zi = rc(cpu_state*, Z, unsigned);
using zi_signed = rc(cpu_state*, Z, int);
using zi_mask = rc(cpu_state*, Z, mask64);
using zi_dup = rc(cpu_state*, Z, dup_imm);
using zr = rc(cpu_state*, Z, R_or_SP);
using zpi = rc(cpu_state*, Z, P, unsigned);
using zpi_signed = rc(cpu_state*, Z, P, int);
using zpi_arith = rc(cpu_state*, Z, P, arith_imm);
using zpr = rc(cpu_state*, Z, P, R_or_SP);
using zpv = rc(cpu_state*, Z, P, unsigned);
using zii = rc(cpu_state*, Z, unsigned, unsigned);  // pattern, multiplier
using zii_signed = rc(cpu_state*, Z, int, int);
using zir = rc(cpu_state*, Z, int, R);
using zri = rc(cpu_state*, Z, R, int);
using zrr = rc(cpu_state*, Z, R, R);

using p = rc(cpu_state*, P);
using pi = rc(cpu_state*, P, unsigned);
using pp = rc(cpu_state*, P, P);
using ppp = rc(cpu_state*, P, P, P);
using pppp = rc(cpu_state*, P, P, P, P);
using ppz = rc(cpu_state*, P, P, Z);
using ppzz = rc(cpu_state*, P, P, Z, Z);
using ppzi = rc(cpu_state*, P, P, Z, unsigned);
using ppzi_signed = rc(cpu_state*, P, P, Z, int);
using prr = rc(cpu_state*, P, R, R);

using ri = rc(cpu_state*, R, int);
using rii = rc(cpu_state*, R, unsigned, unsigned);  // pattern, multiplier
using rri = rc(cpu_state*, R_or_SP, R_or_SP, int);
using rp = rc(cpu_state*, R, P);
using rpp = rc(cpu_state*, R, P, P);
using rpz = rc(cpu_state*, R, P, Z);
using vpz = rc(cpu_state*, unsigned, P, Z);

}  // namespace sve::form
