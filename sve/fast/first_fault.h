// Fast paths of the contiguous loads that report an inaccessible element through FFR instead of
// taking its fault: first-fault loads (ldff1, base and index register) and non-fault loads (ldnf1,
// base and immediate). They find out what can be read before they read it, page by page.
//
// The names are those of the contiguous loads. An index counts memory elements, an immediate counts
// registers. The loads clear elements of `ffr` and never set one. An element that is not loaded
// keeps its old value. Inactive elements among the loaded ones become 0, and their memory is not
// accessed. SVESigHandler must be installed, as SVEInitialize leaves it: the probe depends on it.
// All functions return aarch64_decode_ok.
//
// A first-fault load treats the page of its first address like a plain load, so a fault there ends
// the process. The part after that page is loaded either as a whole or not at all, so FFR may
// report fewer elements than can be read. A non-fault load probes every page, and can leave a gap
// in FFR.
#pragma once

#include "sve/fast/contiguous_memory.h"

sve::contiguous_scaled_zprr sve_ldff1b_scaled_zprr, sve_ldff1b_h_scaled_zprr,
    sve_ldff1b_s_scaled_zprr, sve_ldff1b_d_scaled_zprr, sve_ldff1w_scaled_zprr,
    sve_ldff1w_d_scaled_zprr, sve_ldff1d_scaled_zprr;
sve::contiguous_zpri sve_ldnf1b_zpri, sve_ldnf1b_h_zpri, sve_ldnf1b_s_zpri, sve_ldnf1b_d_zpri,
    sve_ldnf1sb_h_zpri, sve_ldnf1sb_s_zpri, sve_ldnf1sb_d_zpri, sve_ldnf1h_zpri, sve_ldnf1h_s_zpri,
    sve_ldnf1h_d_zpri, sve_ldnf1sh_s_zpri, sve_ldnf1sh_d_zpri, sve_ldnf1w_zpri, sve_ldnf1w_d_zpri,
    sve_ldnf1sw_d_zpri, sve_ldnf1d_zpri;
