// Predicate logic, partitioning and the first-fault register, on the unpacked form: byte k of a
// predicate stands for vector byte k, and the value of an element is bit 0 of its first byte.
//
// No code relies on the other bytes of an element being 0: the logic, break and FFR operations work
// on each byte separately. The size code, where one matters, is `size` of the first operand.
#pragma once

#include "sve/fast/forms.h"

// Sets N, Z, C and V in `nzcv` from vector_bytes bytes of governing and result predicate (the
// architecture's PredTest) and leaves its other bits alone. The width of T is the element stride. N
// is the result at the first active element. Z says that no active element is true. C is the
// inverse of the result at the last active element. V is 0. If no element is active, N = 0, Z = 1
// and C = 1. There are instances for char, short, int and long, signed and unsigned.
template <class T>
void sve_ptest(cpu_state* state, const char* governing, const char* result);

sve::form::pp sve_ptest_pp;  // pg, pn: flags only, at byte stride

// pd, pg, pn, pm: byte by byte, 0 where pg is false.
sve::form::pppp sve_and_pppp;
sve::form::pppp sve_orr_pppp;
sve::form::pppp sve_eor_pppp;
sve::form::pppp sve_bic_pppp;
sve::form::pppp sve_nor_pppp;

sve::form::pppp sve_sel_pppp;  // pd, pg, pn, pm: pn where pg, else pm

sve::form::pi sve_ptrue_pi;  // pd, pattern: the first elements true, as many as the pattern says
sve::form::p sve_pfalse_p;   // pd

// pd, pg, pn: true up to the first active true byte of pn, including it (A) or not (B). Inactive
// bytes become 0 for qualifier 5 in `size` of pg, else keep their old value.
sve::form::ppp sve_brka_ppp;
sve::form::ppp sve_brkb_ppp;

// pdm, pg, pn: keeps pdm if pn is true at the last active byte of pg, else clears it. If
// `set_flags` is true, it sets the flags of the result with every byte counted as active.
aarch64_decode_rc sve_brkn(cpu_state* state, aarch64_p_reg pdm, aarch64_p_reg pg, aarch64_p_reg pn,
                           bool set_flags);
sve::form::ppp sve_brkn_ppp;
sve::form::ppp sve_brkns_ppp;

// pd, pg, pn, pm: if pn is true at the last active byte of pg, pd is true where pg is, up to but
// not including the first active true byte of pm. Otherwise it is all false.
aarch64_decode_rc sve_brkpb(cpu_state* state, aarch64_p_reg pd, aarch64_p_reg pg, aarch64_p_reg pn,
                            aarch64_p_reg pm, bool set_flags);
sve::form::pppp sve_brkpb_pppp;
sve::form::pppp sve_brkpbs_pppp;

// pdn, pv: the first true element of pv after the last true element of pdn. Sets the flags under
// pv. The size code is `src_size` of pdn.
sve::form::pp sve_pnext_pp;

sve::form::p sve_rdffr_p;                        // pd = FFR
sve::form::pp sve_rdffr_pp;                      // pd, pg: FFR & pg
sve::form::p sve_wrffr_p;                        // FFR = pn
aarch64_decode_rc sve_setffr(cpu_state* state);  // FFR = all true, in every byte

// pd, pn: each byte of the low or high half of pn as a halfword element.
sve::form::pp sve_punpklo_pp;
sve::form::pp sve_punpkhi_pp;

sve::form::pp sve_rev_pp;  // pd, pn: the elements in reversed order

// pd, pn, pm.
sve::form::ppp sve_zip1_ppp;
sve::form::ppp sve_zip2_ppp;
sve::form::ppp sve_uzp1_ppp;

// The same permutes for predicates and for vectors of vector_bytes bytes: the low halves of a and b
// interleaved, the high halves interleaved, or the even elements of a and then those of b. `out`
// overlaps neither a nor b. Whole elements are moved, with all their bytes.
void sve_zip1(char* out, char* a, char* b, element_size size);
void sve_zip2(char* out, char* a, char* b, element_size size);
void sve_uzp1(char* out, char* a, char* b, element_size size);
