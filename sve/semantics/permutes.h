// Vector permutes, extraction of single elements, and reductions: the operations in which an
// element of the result does not come from the same element of the operands.
//
// Extractions and reductions return 64 bits: an element, extended as its tag says, or a sum. The
// forms of tags B8, H16, F32 and D64 are those of U8 to U64. They differ only in the scalar's
// register.
#pragma once

#include <cstdint>

#include "sve/semantics/semantics.h"

namespace sve::semantics::permute {

using governed = VecV(PredV g, VecV a, CpuContext* ctx);
using spliced = VecV(PredV g, VecV a, VecV b, CpuContext* ctx);
using insertion = VecV(VecV a, std::uint64_t x, CpuContext* ctx);
using unary = VecV(VecV a, CpuContext* ctx);
using binary = VecV(VecV a, VecV b, CpuContext* ctx);
using indexed = VecV(VecV a, unsigned i, CpuContext* ctx);
using slid = VecV(VecV a, VecV b, unsigned i, CpuContext* ctx);
using extraction = std::uint64_t(PredV g, VecV a, CpuContext* ctx);
using conditional_extraction = std::uint64_t(PredV g, std::uint64_t old, VecV a, CpuContext* ctx);
using conditional_broadcast = VecV(PredV g, VecV old, VecV a, CpuContext* ctx);

}  // namespace sve::semantics::permute

// COMPACT: the active elements, packed from element 0, followed by zeros.
sve::semantics::permute::governed VecU32CompressVV, VecU64CompressVV;

// SPLICE: a from the first active element to the last, then b from its element 0.
sve::semantics::permute::spliced VecU8SpliceVV, VecU16SpliceVV, VecU32SpliceVV, VecU64SpliceVV;

// INSR: the elements move up by one, and the low bits of x become element 0.
sve::semantics::permute::insertion VecU8InsertS, VecU16InsertS, VecU32InsertS, VecU64InsertS,
    VecB8InsertS, VecH16InsertS, VecF32InsertS, VecD64InsertS;

// TRN1, TRN2: the even or the odd elements of a and b alternately.
sve::semantics::permute::binary VecU8Trn1VV, VecU16Trn1VV, VecU32Trn1VV, VecU64Trn1VV, VecU8Trn2VV,
    VecU16Trn2VV, VecU32Trn2VV, VecU64Trn2VV;

// UZP1, UZP2: the even or the odd elements of a followed by those of b.
sve::semantics::permute::binary VecU8Uzp1VV, VecU16Uzp1VV, VecU32Uzp1VV, VecU64Uzp1VV, VecU8Uzp2VV,
    VecU16Uzp2VV, VecU32Uzp2VV, VecU64Uzp2VV;

// ZIP1, ZIP2: the low or the high halves of a and b, interleaved.
sve::semantics::permute::binary VecU8Zip1VV, VecU16Zip1VV, VecU32Zip1VV, VecU64Zip1VV, VecU8Zip2VV,
    VecU16Zip2VV, VecU32Zip2VV, VecU64Zip2VV;

// TBL: element b[e] of a, or 0 if there is none.
sve::semantics::permute::binary VecU8TblVV, VecU16TblVV, VecU32TblVV, VecU64TblVV;

// UUNPKLO, SUNPKLO, UUNPKHI, SUNPKHI: the low or high half of a, its elements widened to the tag.
sve::semantics::permute::unary VecU16UnpackLoV, VecU32UnpackLoV, VecU64UnpackLoV, VecS16UnpackLoV,
    VecS32UnpackLoV, VecS64UnpackLoV, VecU16UnpackHiV, VecU32UnpackHiV, VecU64UnpackHiV,
    VecS16UnpackHiV, VecS32UnpackHiV, VecS64UnpackHiV;

// REV: the elements in reversed order.
sve::semantics::permute::unary VecU8ReverseV, VecU16ReverseV, VecU32ReverseV, VecU64ReverseV;

// EXT: the bytes of a from byte i on, followed by b. If there is no byte i, from byte 0 on.
sve::semantics::permute::slid VecU8SlideVI;

// DUP: element i in all elements, or 0 if there is none.
sve::semantics::permute::indexed VecU8ExtDupVI, VecU16ExtDupVI, VecU32ExtDupVI, VecU64ExtDupVI,
    VecU128ExtDupVI;

// LASTA: the element after the last active one. After the last element comes element 0. If none is
// active, it is element 0.
sve::semantics::permute::extraction VecU8LastAV, VecU16LastAV, VecU32LastAV, VecU64LastAV,
    VecB8LastAV, VecH16LastAV, VecF32LastAV, VecD64LastAV;

// LASTB: the last active element, or the last one if none is active.
sve::semantics::permute::extraction VecU8LastBV, VecU16LastBV, VecU32LastBV, VecU64LastBV,
    VecB8LastBV, VecH16LastBV, VecF32LastBV, VecD64LastBV;

// CLASTA, CLASTB to a scalar: the whole of `old` if no element is active.
sve::semantics::permute::conditional_extraction VecU8CondXASV, VecU16CondXASV, VecU32CondXASV,
    VecU64CondXASV, VecB8CondXASV, VecH16CondXASV, VecF32CondXASV, VecD64CondXASV, VecU8CondXBSV,
    VecU16CondXBSV, VecU32CondXBSV, VecU64CondXBSV, VecB8CondXBSV, VecH16CondXBSV, VecF32CondXBSV,
    VecD64CondXBSV;

// CLASTA, CLASTB to a vector: the element in all elements, or `old` if none is active.
sve::semantics::permute::conditional_broadcast VecU8VCondXAVV, VecU16VCondXAVV, VecU32VCondXAVV,
    VecU64VCondXAVV, VecU8VCondXBVV, VecU16VCondXBVV, VecU32VCondXBVV, VecU64VCondXBVV;

// UADDV, SADDV: the sum of the active elements in 64 bits.
sve::semantics::permute::extraction VecU8AddReduceV, VecU16AddReduceV, VecU32AddReduceV,
    VecU64AddReduceV, VecS8AddReduceV, VecS16AddReduceV, VecS32AddReduceV;

// ANDV, ORV, EORV.
sve::semantics::permute::extraction VecU8AndReduceV, VecU16AndReduceV, VecU32AndReduceV,
    VecU64AndReduceV, VecU8OrReduceV, VecU16OrReduceV, VecU32OrReduceV, VecU64OrReduceV,
    VecU8XorReduceV, VecU16XorReduceV, VecU32XorReduceV, VecU64XorReduceV;

// UMAXV, SMAXV, UMINV, SMINV.
sve::semantics::permute::extraction VecU8MaxReduceV, VecU16MaxReduceV, VecU32MaxReduceV,
    VecU64MaxReduceV, VecS8MaxReduceV, VecS16MaxReduceV, VecS32MaxReduceV, VecS64MaxReduceV,
    VecU8MinReduceV, VecU16MinReduceV, VecU32MinReduceV, VecU64MinReduceV, VecS8MinReduceV,
    VecS16MinReduceV, VecS32MinReduceV, VecS64MinReduceV;
