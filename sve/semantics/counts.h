// Element counts added to scalars and vectors, with and without saturation, and the saturating
// vector sums.
//
// A count comes from a predicate pattern and a multiplier, or from the active elements of a
// predicate. The number in a tag is the width of the elements that are counted. Its letter says
// whether saturation is signed or unsigned. The digit in VL4, VL8, SCount4, SCount8 is the size of
// the scalar operand in bytes. Saturation does not change fpsr: SVE has no cumulative flag for it.
#pragma once

#include <cstdint>

#include "sve/semantics/semantics.h"

namespace sve::semantics {

// `pattern` is the 5-bit predicate pattern. `imm` is the raw 4-bit field, the multiplier minus 1.
// The functions add the 1.
using pattern_to_count = std::uint64_t(unsigned pattern, unsigned imm, CpuContext* ctx);
using pattern_on_word = std::uint64_t(std::uint32_t x, unsigned pattern, unsigned imm,
                                      CpuContext* ctx);
using pattern_on_doubleword = std::uint64_t(std::uint64_t x, unsigned pattern, unsigned imm,
                                            CpuContext* ctx);
using pattern_on_vector = VecV(VecV a, unsigned pattern, unsigned imm, CpuContext* ctx);

using predicate_to_count = std::uint64_t(PredV g, PredV p, CpuContext* ctx);
using predicate_on_word = std::uint64_t(PredV p, std::uint32_t x, CpuContext* ctx);
using predicate_on_doubleword = std::uint64_t(PredV p, std::uint64_t x, CpuContext* ctx);
using predicate_on_vector = VecV(PredV p, VecV a, CpuContext* ctx);

using saturating_vectors = VecV(VecV a, VecV b, CpuContext* ctx);
// `i` is unsigned for both S and U tags. The instruction's shift is already applied.
using saturating_immediate = VecV(VecV a, std::uint64_t i, CpuContext* ctx);

}  // namespace sve::semantics

// RDVL, ADDVL, ADDPL: vector and predicate bytes times a signed immediate.
std::uint64_t VecS64VLX(std::int64_t imm, CpuContext* ctx);
std::uint64_t VecS64AddVLX(std::uint64_t base, std::int64_t imm, CpuContext* ctx);
std::uint64_t VecS64AddPLX(std::uint64_t base, std::int64_t imm, CpuContext* ctx);

// CNTB, CNTH, CNTW, CNTD.
sve::semantics::pattern_to_count VecU8CountVLSI, VecU16CountVLSI, VecU32CountVLSI, VecU64CountVLSI;

// INCB, DECB and the like (scalar): modulo 2 to the power 64.
sve::semantics::pattern_on_doubleword VecU8IncrVLSI, VecU16IncrVLSI, VecU32IncrVLSI, VecU64IncrVLSI,
    VecU8DecrVLSI, VecU16DecrVLSI, VecU32DecrVLSI, VecU64DecrVLSI;

// INCH, DECH and the like (vector): modulo the element.
sve::semantics::pattern_on_vector VecU16IncrVLVI, VecU32IncrVLVI, VecU64IncrVLVI, VecU16DecrVLVI,
    VecU32DecrVLVI, VecU64DecrVLVI;

// SQINCB, UQINCB, SQDECB, UQDECB and the like on a W register: S forms return the result
// sign-extended to 64 bits, U forms zero-extended.
sve::semantics::pattern_on_word VecU8QIncrVL4SI, VecU16QIncrVL4SI, VecU32QIncrVL4SI,
    VecU64QIncrVL4SI, VecS8QIncrVL4SI, VecS16QIncrVL4SI, VecS32QIncrVL4SI, VecS64QIncrVL4SI,
    VecU8QDecrVL4SI, VecU16QDecrVL4SI, VecU32QDecrVL4SI, VecU64QDecrVL4SI, VecS8QDecrVL4SI,
    VecS16QDecrVL4SI, VecS32QDecrVL4SI, VecS64QDecrVL4SI;
// The same on an X register.
sve::semantics::pattern_on_doubleword VecU8QIncrVL8SI, VecU16QIncrVL8SI, VecU32QIncrVL8SI,
    VecU64QIncrVL8SI, VecS8QIncrVL8SI, VecS16QIncrVL8SI, VecS32QIncrVL8SI, VecS64QIncrVL8SI,
    VecU8QDecrVL8SI, VecU16QDecrVL8SI, VecU32QDecrVL8SI, VecU64QDecrVL8SI, VecS8QDecrVL8SI,
    VecS16QDecrVL8SI, VecS32QDecrVL8SI, VecS64QDecrVL8SI;
// SQINCH, UQINCH, SQDECH, UQDECH and the like on a vector.
sve::semantics::pattern_on_vector VecU16QIncrVLVI, VecU32QIncrVLVI, VecU64QIncrVLVI,
    VecS16QIncrVLVI, VecS32QIncrVLVI, VecS64QIncrVLVI, VecU16QDecrVLVI, VecU32QDecrVLVI,
    VecU64QDecrVLVI, VecS16QDecrVLVI, VecS32QDecrVLVI, VecS64QDecrVLVI;

// CNTP: elements active in both predicates.
sve::semantics::predicate_to_count VecU8SCountP, VecU16SCountP, VecU32SCountP, VecU64SCountP;

// INCP, DECP (scalar and vector).
sve::semantics::predicate_on_doubleword VecU8IncrSCountPS, VecU16IncrSCountPS, VecU32IncrSCountPS,
    VecU64IncrSCountPS, VecU8DecrSCountPS, VecU16DecrSCountPS, VecU32DecrSCountPS,
    VecU64DecrSCountPS;
sve::semantics::predicate_on_vector VecU16IncrCountPV, VecU32IncrCountPV, VecU64IncrCountPV,
    VecU16DecrCountPV, VecU32DecrCountPV, VecU64DecrCountPV;

// SQINCP, UQINCP, SQDECP, UQDECP on a W register, an X register and a vector.
sve::semantics::predicate_on_word VecU8QIncrSCount4PS, VecU16QIncrSCount4PS, VecU32QIncrSCount4PS,
    VecU64QIncrSCount4PS, VecS8QIncrSCount4PS, VecS16QIncrSCount4PS, VecS32QIncrSCount4PS,
    VecS64QIncrSCount4PS, VecU8QDecrSCount4PS, VecU16QDecrSCount4PS, VecU32QDecrSCount4PS,
    VecU64QDecrSCount4PS, VecS8QDecrSCount4PS, VecS16QDecrSCount4PS, VecS32QDecrSCount4PS,
    VecS64QDecrSCount4PS;
sve::semantics::predicate_on_doubleword VecU8QIncrSCount8PS, VecU16QIncrSCount8PS,
    VecU32QIncrSCount8PS, VecU64QIncrSCount8PS, VecS8QIncrSCount8PS, VecS16QIncrSCount8PS,
    VecS32QIncrSCount8PS, VecS64QIncrSCount8PS, VecU8QDecrSCount8PS, VecU16QDecrSCount8PS,
    VecU32QDecrSCount8PS, VecU64QDecrSCount8PS, VecS8QDecrSCount8PS, VecS16QDecrSCount8PS,
    VecS32QDecrSCount8PS, VecS64QDecrSCount8PS;
sve::semantics::predicate_on_vector VecU16QIncrCountPV, VecU32QIncrCountPV, VecU64QIncrCountPV,
    VecS16QIncrCountPV, VecS32QIncrCountPV, VecS64QIncrCountPV, VecU16QDecrCountPV,
    VecU32QDecrCountPV, VecU64QDecrCountPV, VecS16QDecrCountPV, VecS32QDecrCountPV,
    VecS64QDecrCountPV;

// SQADD, UQADD, SQSUB, UQSUB of vectors and with an immediate.
sve::semantics::saturating_vectors VecU8QAddVVX, VecU16QAddVVX, VecU32QAddVVX, VecU64QAddVVX,
    VecS8QAddVVX, VecS16QAddVVX, VecS32QAddVVX, VecS64QAddVVX, VecU8QSubVVX, VecU16QSubVVX,
    VecU32QSubVVX, VecU64QSubVVX, VecS8QSubVVX, VecS16QSubVVX, VecS32QSubVVX, VecS64QSubVVX;
sve::semantics::saturating_immediate VecU8QAddVIX, VecU16QAddVIX, VecU32QAddVIX, VecU64QAddVIX,
    VecS8QAddVIX, VecS16QAddVIX, VecS32QAddVIX, VecS64QAddVIX, VecU8QSubVIX, VecU16QSubVIX,
    VecU32QSubVIX, VecU64QSubVIX, VecS8QSubVIX, VecS16QSubVIX, VecS32QSubVIX, VecS64QSubVIX;
