// Operations on packed predicates, and the flags that they set.
//
// Functions of tag P work lane by lane; those of tags P8 to P64 work on elements of that width.
// Two ways of writing a result occur. Generators (TrueI, While) clear all lanes of an element and
// write its truth value into the first; permutes (Trn, Zip, Uzp, Reverse) move all lanes of an
// element as they are. Every lane of a result is defined, those above the vector are 0.
#pragma once

#include <cstdint>

#include "sve/semantics/semantics.h"

// The condition flags of a result `r` under the governing predicate `g`, for elements of w bits
// (the architecture's PredTest): N the first active element is true, Z none is, C the last is not.
// A governing element is judged by its first lane, a result element counts as true for Z and C by
// any of its lanes and for N by its first. No active element gives N 0, Z 1, C 1.
void PredSetNZCV(PredV g, PredV r, int w, CpuContext* ctx);  // V becomes 0
void PredSetNZC(PredV g, PredV r, int w, CpuContext* ctx);   // V stays
void PredSetNCV(PredV g, PredV r, int w, CpuContext* ctx);   // Z stays, V becomes 0
// Z and V stay, and N and C too where no element is active.
void PredSetNC(PredV g, PredV r, int w, CpuContext* ctx);

// Index of the lowest and the highest element of w bits that is active, -1 where none is.
int FindFirstActive(PredV p, int w, CpuContext* ctx);
int FindLastActive(PredV p, int w, CpuContext* ctx);

// Number of elements out of n that a 5-bit predicate pattern selects.
int VecTrueILength(unsigned long pattern, int n);

namespace sve::semantics {

using predicate_constant = PredV(CpuContext* ctx);
using predicate_from_pattern = PredV(unsigned pattern, CpuContext* ctx);
using predicate_of_one = PredV(PredV a, CpuContext* ctx);
using predicate_of_two = PredV(PredV a, PredV b, CpuContext* ctx);
using governed_of_one = PredV(PredV g, PredV a, CpuContext* ctx);
using governed_of_two = PredV(PredV g, PredV a, PredV b, CpuContext* ctx);
using merging_of_one = PredV(PredV merge, PredV g, PredV a, CpuContext* ctx);
template <class Scalar>
using loop_predicate = PredV(Scalar op1, Scalar op2, CpuContext* ctx);

}  // namespace sve::semantics

// AND, BIC, ORR, ORN, EOR, NAND, NOR, and ANDS and kin; a lane outside g is 0.
sve::semantics::governed_of_two VecPAndPPZ, VecPBicPPZ, VecPOrPPZ, VecPOrNPPZ, VecPXorPPZ,
    VecPNandPPZ, VecPNorPPZ, VecPAndFlgPPZ, VecPBicFlgPPZ, VecPOrFlgPPZ, VecPOrNFlgPPZ,
    VecPXorFlgPPZ, VecPNandFlgPPZ, VecPNorFlgPPZ;
// SEL: a under g, b elsewhere.
sve::semantics::governed_of_two VecPSelPP;

// PFALSE; RDFFR, RDFFRS, WRFFR, SETFFR.
sve::semantics::predicate_constant VecPFalse, VecPReadFFSRP;
sve::semantics::predicate_of_one VecPActualP, VecPActualFlgP;
void VecPWriteFFSRP(PredV value, CpuContext* ctx);
void VecPClearFFSR(CpuContext* ctx);

// PTEST: the flags alone.
void VecPTestPZ(PredV g, PredV tested, CpuContext* ctx);

// PFIRST and PNEXT.
sve::semantics::governed_of_one VecPSetFirstActiveP, VecP8GenNextP, VecP16GenNextP, VecP32GenNextP,
    VecP64GenNextP;

// BRKA, BRKB (zeroing, merging, flag-setting), BRKN, BRKPA, BRKPB.
sve::semantics::governed_of_one VecPBreakAPZ, VecPBreakAFlgPZ, VecPBreakBPZ, VecPBreakBFlgPZ;
sve::semantics::merging_of_one VecPBreakAPM, VecPBreakBPM;
sve::semantics::governed_of_two VecPBreakNextPZ, VecPBreakNextFlgPZ, VecPBreakPrevAPZ,
    VecPBreakPrevAFlgPZ, VecPBreakPrevBPZ, VecPBreakPrevBFlgPZ;

// PTRUE, PTRUES.
sve::semantics::predicate_from_pattern VecP8TrueI, VecP16TrueI, VecP32TrueI, VecP64TrueI,
    VecP8TrueFlgI, VecP16TrueFlgI, VecP32TrueFlgI, VecP64TrueFlgI;

// REV, PUNPKLO, PUNPKHI, ZIP, UZP, TRN.
sve::semantics::predicate_of_one VecP8ReverseP, VecP16ReverseP, VecP32ReverseP, VecP64ReverseP,
    VecPUnpackLoP, VecPUnpackHiP;
sve::semantics::predicate_of_two VecP8Zip1PP, VecP16Zip1PP, VecP32Zip1PP, VecP64Zip1PP, VecP8Zip2PP,
    VecP16Zip2PP, VecP32Zip2PP, VecP64Zip2PP, VecP8Uzp1PP, VecP16Uzp1PP, VecP32Uzp1PP, VecP64Uzp1PP,
    VecP8Uzp2PP, VecP16Uzp2PP, VecP32Uzp2PP, VecP64Uzp2PP, VecP8Trn1PP, VecP16Trn1PP, VecP32Trn1PP,
    VecP64Trn1PP, VecP8Trn2PP, VecP16Trn2PP, VecP32Trn2PP, VecP64Trn2PP;

// WHILELE, WHILELT (signed) and WHILELS, WHILELO (unsigned): element e is true while op1 + k
// compares so against op2 for all k up to e; the sum does not wrap. Flags are those of an all-true
// governing predicate.
sve::semantics::loop_predicate<std::int32_t> VecS8While4LESS, VecS16While4LESS, VecS32While4LESS,
    VecS64While4LESS, VecS8While4LTSS, VecS16While4LTSS, VecS32While4LTSS, VecS64While4LTSS;
sve::semantics::loop_predicate<std::int64_t> VecS8While8LESS, VecS16While8LESS, VecS32While8LESS,
    VecS64While8LESS, VecS8While8LTSS, VecS16While8LTSS, VecS32While8LTSS, VecS64While8LTSS;
sve::semantics::loop_predicate<std::uint32_t> VecU8While4LESS, VecU16While4LESS, VecU32While4LESS,
    VecU64While4LESS, VecU8While4LTSS, VecU16While4LTSS, VecU32While4LTSS, VecU64While4LTSS;
sve::semantics::loop_predicate<std::uint64_t> VecU8While8LESS, VecU16While8LESS, VecU32While8LESS,
    VecU64While8LESS, VecU8While8LTSS, VecU16While8LTSS, VecU32While8LTSS, VecU64While8LTSS;
