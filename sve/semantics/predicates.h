// Operations on packed predicates, and the flags that they set.
//
// Functions of tag P work lane by lane. Those of tags P8 to P64 work on elements of that width.
// There are two ways to write a result. Generators (TrueI, While) clear all lanes of an element and
// write its truth value into the first. Permutes (Trn, Zip, Uzp, Reverse) move all lanes of an
// element as they are. Every lane of a result is defined, and those above the vector are 0.
#pragma once

#include <cstdint>

#include "sve/semantics/semantics.h"

// Sets the condition flags for a result `r` under the governing predicate `g`, for elements of w
// bits (the architecture's PredTest). N says that the first active element is true, Z that no
// active element is, and C that the last one is not. A governing element is active if its first
// lane is set. A result element counts as true for Z and C if any of its lanes is set, and for N if
// its first is. If no element is active, N is 0, Z is 1 and C is 1.
void PredSetNZCV(PredV g, PredV r, int w, CpuContext* ctx);  // V becomes 0
void PredSetNZC(PredV g, PredV r, int w, CpuContext* ctx);   // V stays
void PredSetNCV(PredV g, PredV r, int w, CpuContext* ctx);   // Z stays, V becomes 0
// Z and V stay. If no element is active, N and C stay too.
void PredSetNC(PredV g, PredV r, int w, CpuContext* ctx);

// Index of the lowest and the highest active element of w bits, or -1 if there is none.
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

// AND, BIC, ORR, ORN, EOR, NAND, NOR, and ANDS and the like. The result is 0 in lanes outside g.
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

// PTEST: sets only the flags.
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

// WHILELE, WHILELT (signed) and WHILELS, WHILELO (unsigned): element e is true if the comparison of
// op1 + k with op2 holds for all k from 0 to e. The sum does not wrap. The flags are those for an
// all-true governing predicate.
sve::semantics::loop_predicate<std::int32_t> VecS8While4LESS, VecS16While4LESS, VecS32While4LESS,
    VecS64While4LESS, VecS8While4LTSS, VecS16While4LTSS, VecS32While4LTSS, VecS64While4LTSS;
sve::semantics::loop_predicate<std::int64_t> VecS8While8LESS, VecS16While8LESS, VecS32While8LESS,
    VecS64While8LESS, VecS8While8LTSS, VecS16While8LTSS, VecS32While8LTSS, VecS64While8LTSS;
sve::semantics::loop_predicate<std::uint32_t> VecU8While4LESS, VecU16While4LESS, VecU32While4LESS,
    VecU64While4LESS, VecU8While4LTSS, VecU16While4LTSS, VecU32While4LTSS, VecU64While4LTSS;
sve::semantics::loop_predicate<std::uint64_t> VecU8While8LESS, VecU16While8LESS, VecU32While8LESS,
    VecU64While8LESS, VecU8While8LTSS, VecU16While8LTSS, VecU32While8LTSS, VecU64While8LTSS;
