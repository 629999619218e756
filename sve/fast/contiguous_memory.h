// Fast paths of the loads and stores whose memory is one contiguous run: single registers,
// non-temporal forms, structures of two to four registers, load-and-replicate, and the transfer of
// whole vector and predicate registers.
//
// A name consists of sve_, ld or st, the number of registers, the memory element (after an s if it
// is sign-extended), the register element if it is wider, and the form. zpri has a base register
// and an immediate in units of the instruction, scaled_zprr a base and an index register. A base
// numbered 31 is SP, and an index numbered 31 is zero. A register list wraps from Z31 to Z0.
//
// Guest addresses are host pointers. Memory of an inactive element is neither read nor written.
// Inactive elements of a load become 0. A fault on any element ends the process with the message of
// SVESigHandler. Non-temporal forms are the plain forms, without a hint. All functions return
// aarch64_decode_ok.
#pragma once

#include "sve/state/cpu_state.h"
#include "sve/state/operands.h"

namespace sve {

// Address: base + imm * elements in a register * registers * memory bytes.
using contiguous_zpri = aarch64_decode_rc(cpu_state* state, aarch64_z_reg zt, aarch64_p_reg pg,
                                          aarch64_i_rsp_reg rn, int imm);
// Address: base + index * memory bytes.
using contiguous_scaled_zprr = aarch64_decode_rc(cpu_state* state, aarch64_z_reg zt,
                                                 aarch64_p_reg pg, aarch64_i_rsp_reg rn,
                                                 aarch64_i_reg rm);
// Address: base + imm * memory bytes.
using replicate_zpri = aarch64_decode_rc(cpu_state* state, aarch64_z_reg zt, aarch64_p_reg pg,
                                         aarch64_i_rsp_reg rn, unsigned int imm);

}  // namespace sve

sve::contiguous_zpri sve_ld1b_zpri, sve_ld1b_h_zpri, sve_ld1b_s_zpri, sve_ld1b_d_zpri,
    sve_ld1h_zpri, sve_ld1h_s_zpri, sve_ld1h_d_zpri, sve_ld1w_zpri, sve_ld1w_d_zpri, sve_ld1d_zpri,
    sve_ld1sb_h_zpri, sve_ld1sb_s_zpri, sve_ld1sb_d_zpri, sve_ld1sh_s_zpri, sve_ld1sh_d_zpri,
    sve_ld1sw_d_zpri;
sve::contiguous_scaled_zprr sve_ld1b_scaled_zprr, sve_ld1b_h_scaled_zprr, sve_ld1b_s_scaled_zprr,
    sve_ld1b_d_scaled_zprr, sve_ld1h_scaled_zprr, sve_ld1h_s_scaled_zprr, sve_ld1h_d_scaled_zprr,
    sve_ld1w_scaled_zprr, sve_ld1w_d_scaled_zprr, sve_ld1d_scaled_zprr, sve_ld1sb_h_scaled_zprr,
    sve_ld1sb_s_scaled_zprr, sve_ld1sb_d_scaled_zprr, sve_ld1sh_s_scaled_zprr,
    sve_ld1sh_d_scaled_zprr, sve_ld1sw_d_scaled_zprr;

sve::contiguous_zpri sve_st1b_zpri, sve_st1b_h_zpri, sve_st1b_s_zpri, sve_st1b_d_zpri,
    sve_st1h_zpri, sve_st1h_s_zpri, sve_st1h_d_zpri, sve_st1w_zpri, sve_st1w_d_zpri, sve_st1d_zpri;
sve::contiguous_scaled_zprr sve_st1b_scaled_zprr, sve_st1b_h_scaled_zprr, sve_st1b_s_scaled_zprr,
    sve_st1b_d_scaled_zprr, sve_st1h_scaled_zprr, sve_st1h_s_scaled_zprr, sve_st1h_d_scaled_zprr,
    sve_st1w_scaled_zprr, sve_st1w_d_scaled_zprr, sve_st1d_scaled_zprr;

sve::contiguous_zpri sve_ldnt1b_zpri, sve_ldnt1h_zpri, sve_ldnt1w_zpri, sve_ldnt1d_zpri;
sve::contiguous_scaled_zprr sve_ldnt1b_scaled_zprr, sve_ldnt1h_scaled_zprr, sve_ldnt1w_scaled_zprr,
    sve_ldnt1d_scaled_zprr;
sve::contiguous_zpri sve_stnt1b_zpri, sve_stnt1h_zpri, sve_stnt1w_zpri, sve_stnt1d_zpri;
sve::contiguous_scaled_zprr sve_stnt1b_scaled_zprr, sve_stnt1h_scaled_zprr, sve_stnt1w_scaled_zprr,
    sve_stnt1d_scaled_zprr;

sve::contiguous_zpri sve_ld2b_zpri, sve_ld2h_zpri, sve_ld2w_zpri, sve_ld2d_zpri, sve_ld3b_zpri,
    sve_ld3h_zpri, sve_ld3w_zpri, sve_ld3d_zpri, sve_ld4b_zpri, sve_ld4h_zpri, sve_ld4w_zpri,
    sve_ld4d_zpri;
sve::contiguous_scaled_zprr sve_ld2b_scaled_zprr, sve_ld2h_scaled_zprr, sve_ld2w_scaled_zprr,
    sve_ld2d_scaled_zprr, sve_ld3b_scaled_zprr, sve_ld3h_scaled_zprr, sve_ld3w_scaled_zprr,
    sve_ld3d_scaled_zprr, sve_ld4b_scaled_zprr, sve_ld4h_scaled_zprr, sve_ld4w_scaled_zprr,
    sve_ld4d_scaled_zprr;
sve::contiguous_zpri sve_st2b_zpri, sve_st2h_zpri, sve_st2w_zpri, sve_st2d_zpri, sve_st3b_zpri,
    sve_st3h_zpri, sve_st3w_zpri, sve_st3d_zpri, sve_st4b_zpri, sve_st4h_zpri, sve_st4w_zpri,
    sve_st4d_zpri;
sve::contiguous_scaled_zprr sve_st2b_scaled_zprr, sve_st2h_scaled_zprr, sve_st2w_scaled_zprr,
    sve_st2d_scaled_zprr, sve_st3b_scaled_zprr, sve_st3h_scaled_zprr, sve_st3w_scaled_zprr,
    sve_st3d_scaled_zprr, sve_st4b_scaled_zprr, sve_st4h_scaled_zprr, sve_st4w_scaled_zprr,
    sve_st4d_scaled_zprr;

// The shared body of the structure loads: register element type T, memory element type M, N
// registers. `offset` counts memory elements. It is instantiated for unsigned T = M of 8 to 64 bits
// and for N from 2 to 4.
template <class T, class M, int N>
aarch64_decode_rc sve_ldN_zpri(cpu_state* state, aarch64_z_reg zt, aarch64_p_reg pg,
                               aarch64_i_rsp_reg rn, long offset);

// Each active element reads the one memory element again.
sve::replicate_zpri sve_ld1rb_zpri, sve_ld1rb_h_zpri, sve_ld1rb_s_zpri, sve_ld1rb_d_zpri,
    sve_ld1rh_zpri, sve_ld1rh_s_zpri, sve_ld1rh_d_zpri, sve_ld1rw_zpri, sve_ld1rw_d_zpri,
    sve_ld1rd_zpri, sve_ld1rsb_h_zpri, sve_ld1rsb_s_zpri, sve_ld1rsb_d_zpri, sve_ld1rsh_s_zpri,
    sve_ld1rsh_d_zpri, sve_ld1rsw_d_zpri;

// Whole registers, without a predicate: sve::vector_bytes bytes of a vector, or a predicate packed
// to sve::predicate_bytes bytes, least significant bit first. The immediate counts registers.
aarch64_decode_rc sve_ldr_zri(cpu_state* state, aarch64_z_reg zt, aarch64_i_rsp_reg rn, int imm);
aarch64_decode_rc sve_str_zri(cpu_state* state, aarch64_z_reg zt, aarch64_i_rsp_reg rn, int imm);
aarch64_decode_rc sve_ldr_pri(cpu_state* state, aarch64_p_reg pt, aarch64_i_rsp_reg rn, int imm);
aarch64_decode_rc sve_str_pri(cpu_state* state, aarch64_p_reg pt, aarch64_i_rsp_reg rn, int imm);
