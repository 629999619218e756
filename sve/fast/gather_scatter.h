// Fast paths of the gather loads and scatter stores: one address for each element, from a vector.
//
// A name consists of these parts: sve_, ld or st, 1, the memory element (after an s if it is
// sign-extended), the register element if it is wider, sxtw or uxtw if the offsets are the sign- or
// zero-extended low words of the offset elements, scaled if they count memory elements instead of
// bytes, and the form. zpzi has a vector of bases and an immediate that counts memory elements.
// zpzr and zprz have a base register and a vector of offsets. A base numbered 31 is SP. Register
// elements are words or doublewords.
//
// Guest addresses are host pointers. Elements are accessed one by one in ascending order. If two
// are stored at one address, the value of the higher element remains. Memory of an inactive element
// is not accessed. Inactive elements of a load become 0. A fault ends the process with the message
// of SVESigHandler. All functions return aarch64_decode_ok.
#pragma once

#include "sve/state/cpu_state.h"
#include "sve/state/operands.h"

namespace sve {

// Address: zn[i] + imm * memory bytes.
using gather_zpzi = aarch64_decode_rc(cpu_state* state, aarch64_z_reg zt, aarch64_p_reg pg,
                                      aarch64_z_reg zn, unsigned int imm);
// Address: base + offset.
using gather_zpzr = aarch64_decode_rc(cpu_state* state, aarch64_z_reg zt, aarch64_p_reg pg,
                                      aarch64_z_reg zm, aarch64_i_rsp_reg rn);
// Address: base + offset * memory bytes.
using gather_zprz = aarch64_decode_rc(cpu_state* state, aarch64_z_reg zt, aarch64_p_reg pg,
                                      aarch64_i_rsp_reg rn, aarch64_z_reg zm);

}  // namespace sve

sve::gather_zpzi sve_ld1b_d_zpzi, sve_ld1sb_d_zpzi, sve_ld1h_d_zpzi, sve_ld1sh_d_zpzi,
    sve_ld1w_d_zpzi, sve_ld1sw_d_zpzi, sve_ld1d_zpzi;
sve::gather_zpzr sve_ld1b_d_zpzr, sve_ld1sb_d_zpzr, sve_ld1h_d_zpzr, sve_ld1sh_d_zpzr,
    sve_ld1w_d_zpzr, sve_ld1sw_d_zpzr, sve_ld1d_zpzr;
sve::gather_zpzr sve_ld1b_s_sxtw_zpzr, sve_ld1sb_s_sxtw_zpzr, sve_ld1h_s_sxtw_zpzr,
    sve_ld1sh_s_sxtw_zpzr, sve_ld1w_sxtw_zpzr, sve_ld1b_d_sxtw_zpzr, sve_ld1sb_d_sxtw_zpzr,
    sve_ld1sb_d_uxtw_zpzr;
sve::gather_zprz sve_ld1h_s_sxtw_scaled_zprz, sve_ld1sh_s_sxtw_scaled_zprz,
    sve_ld1w_sxtw_scaled_zprz, sve_ld1h_d_sxtw_scaled_zprz, sve_ld1sh_d_sxtw_scaled_zprz,
    sve_ld1w_d_sxtw_scaled_zprz, sve_ld1sw_d_sxtw_scaled_zprz, sve_ld1d_sxtw_scaled_zprz,
    sve_ld1sh_d_uxtw_scaled_zprz, sve_ld1d_uxtw_scaled_zprz;
sve::gather_zprz sve_ld1h_d_scaled_zprz, sve_ld1sh_d_scaled_zprz, sve_ld1w_d_scaled_zprz,
    sve_ld1sw_d_scaled_zprz, sve_ld1d_scaled_zprz;

sve::gather_zpzi sve_st1b_d_zpzi, sve_st1h_d_zpzi, sve_st1w_d_zpzi, sve_st1d_zpzi;
sve::gather_zpzr sve_st1b_d_zpzr, sve_st1h_d_zpzr, sve_st1w_d_zpzr, sve_st1d_zpzr;
sve::gather_zpzr sve_st1b_s_sxtw_zpzr, sve_st1h_s_sxtw_zpzr, sve_st1w_sxtw_zpzr,
    sve_st1b_d_sxtw_zpzr;
sve::gather_zprz sve_st1h_s_sxtw_scaled_zprz, sve_st1w_sxtw_scaled_zprz,
    sve_st1h_d_sxtw_scaled_zprz, sve_st1w_d_sxtw_scaled_zprz, sve_st1d_sxtw_scaled_zprz,
    sve_st1w_d_uxtw_scaled_zprz, sve_st1d_uxtw_scaled_zprz;
sve::gather_zprz sve_st1h_d_scaled_zprz, sve_st1w_d_scaled_zprz, sve_st1d_scaled_zprz;
