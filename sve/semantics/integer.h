// Element-wise integer operations: arithmetic, bit counting, logic, shifts, addresses, dot products
// and moves.
//
// Elements are widened as the tag says, computed in 128 bits and truncated to the element. In
// merging forms the merge source comes first. In a binary one it is also the left operand.
#pragma once

#include <cstdint>

#include "sve/semantics/semantics.h"

namespace sve::semantics {

using unary = VecV(VecV a, CpuContext* ctx);
using binary = VecV(VecV a, VecV b, CpuContext* ctx);
using unary_merging = VecV(VecV merge, PredV g, VecV x, CpuContext* ctx);
using unary_zeroing = VecV(PredV g, VecV x, CpuContext* ctx);
using binary_merging = VecV(VecV a, PredV g, VecV b, CpuContext* ctx);
using ternary_merging = VecV(VecV a, PredV g, VecV b, VecV d, CpuContext* ctx);
// `i` is already decoded: extended as the tag says and shifted as the instruction says.
using immediate = VecV(VecV a, std::int64_t i, CpuContext* ctx);
using immediate_merging = VecV(VecV a, PredV g, std::int64_t i, CpuContext* ctx);

using dot_product = VecV(VecV a, VecV b, VecV acc, CpuContext* ctx);
using dot_product_indexed = VecV(VecV a, VecV b, VecV acc, unsigned index, CpuContext* ctx);

// The low bits of `x` become the element.
using replication = VecV(std::uint64_t x, CpuContext* ctx);
using replication_merging = VecV(VecV a, PredV g, std::uint64_t x, CpuContext* ctx);
using replication_zeroing = VecV(PredV g, std::uint64_t x, CpuContext* ctx);
using index_vector = VecV(std::uint64_t start, std::uint64_t step, CpuContext* ctx);
using selection = VecV(PredV g, VecV a, VecV b, CpuContext* ctx);

}  // namespace sve::semantics

// SABD, UABD.
sve::semantics::binary_merging VecU8AbdVVM, VecU16AbdVVM, VecU32AbdVVM, VecU64AbdVVM, VecS8AbdVVM,
    VecS16AbdVVM, VecS32AbdVVM, VecS64AbdVVM;

// SMULH, UMULH.
sve::semantics::binary_merging VecU8MulHVVM, VecU16MulHVVM, VecU32MulHVVM, VecU64MulHVVM,
    VecS8MulHVVM, VecS16MulHVVM, VecS32MulHVVM, VecS64MulHVVM;

// ADD, SUB, SUBR, MUL.
sve::semantics::binary_merging VecU8AddVVM, VecU16AddVVM, VecU32AddVVM, VecU64AddVVM, VecU8SubVVM,
    VecU16SubVVM, VecU32SubVVM, VecU64SubVVM, VecU8SubRVVM, VecU16SubRVVM, VecU32SubRVVM,
    VecU64SubRVVM, VecS8MulVVM, VecS16MulVVM, VecS32MulVVM, VecS64MulVVM;

// SMAX, UMAX, SMIN, UMIN.
sve::semantics::binary_merging VecU8MaxVVM, VecU16MaxVVM, VecU32MaxVVM, VecU64MaxVVM, VecS8MaxVVM,
    VecS16MaxVVM, VecS32MaxVVM, VecS64MaxVVM, VecU8MinVVM, VecU16MinVVM, VecU32MinVVM, VecU64MinVVM,
    VecS8MinVVM, VecS16MinVVM, VecS32MinVVM, VecS64MinVVM;

// SDIV, UDIV, SDIVR, UDIVR: division by 0 gives 0.
sve::semantics::binary_merging VecU32DivVVM, VecU64DivVVM, VecS32DivVVM, VecS64DivVVM,
    VecU32DivRVVM, VecU64DivRVVM, VecS32DivRVVM, VecS64DivRVVM;

// MLA, MLS: a is the accumulator. MAD, MSB: a and b are multiplied.
sve::semantics::ternary_merging VecS8MLAVVVM, VecS16MLAVVVM, VecS32MLAVVVM, VecS64MLAVVVM,
    VecS8MLSVVVM, VecS16MLSVVVM, VecS32MLSVVVM, VecS64MLSVVVM, VecS8MADDVVVM, VecS16MADDVVVM,
    VecS32MADDVVVM, VecS64MADDVVVM, VecS8MSUBVVVM, VecS16MSUBVVVM, VecS32MSUBVVVM, VecS64MSUBVVVM;

// AND, ORR, EOR, BIC.
sve::semantics::binary_merging VecU8AndVVM, VecU16AndVVM, VecU32AndVVM, VecU64AndVVM, VecU8OrVVM,
    VecU16OrVVM, VecU32OrVVM, VecU64OrVVM, VecU8XorVVM, VecU16XorVVM, VecU32XorVVM, VecU64XorVVM,
    VecU8BicVVM, VecU16BicVVM, VecU32BicVVM, VecU64BicVVM;

// ABS, NEG.
sve::semantics::unary_merging VecS8AbsVM, VecS16AbsVM, VecS32AbsVM, VecS64AbsVM, VecS8NegVM,
    VecS16NegVM, VecS32NegVM, VecS64NegVM;

// CLS, CLZ, CNT.
sve::semantics::unary_merging VecU8ClsVM, VecU16ClsVM, VecU32ClsVM, VecU64ClsVM, VecU8ClzVM,
    VecU16ClzVM, VecU32ClzVM, VecU64ClzVM, VecU8CntVM, VecU16CntVM, VecU32CntVM, VecU64CntVM;

// CNOT (NotVM) and NOT (InvVM).
sve::semantics::unary_merging VecU8NotVM, VecU16NotVM, VecU32NotVM, VecU64NotVM, VecU8InvVM,
    VecU16InvVM, VecU32InvVM, VecU64InvVM;

// UXTB, UXTH, UXTW, SXTB, SXTH, SXTW: the digits are the bytes before and after.
sve::semantics::unary_merging VecU16Extnd12VM, VecS16Extnd12VM, VecU32Extnd14VM, VecS32Extnd14VM,
    VecU64Extnd18VM, VecS64Extnd18VM, VecU32Extnd24VM, VecS32Extnd24VM, VecU64Extnd28VM,
    VecS64Extnd28VM, VecU64Extnd48VM, VecS64Extnd48VM;

// REVB, REVH, REVW (merging, though the names lack the M), RBIT.
sve::semantics::unary_merging VecU16Rev1V, VecU32Rev1V, VecU64Rev1V, VecU32Rev2V, VecU64Rev2V,
    VecU64Rev4V, VecU8RBitVM, VecU16RBitVM, VecU32RBitVM, VecU64RBitVM;

// SMAX, UMAX, SMIN, UMIN, ADD, SUB, SUBR, MUL, AND, ORR, EOR with an immediate.
sve::semantics::immediate VecU8MaxVIX, VecU16MaxVIX, VecU32MaxVIX, VecU64MaxVIX, VecS8MaxVIX,
    VecS16MaxVIX, VecS32MaxVIX, VecS64MaxVIX, VecU8MinVIX, VecU16MinVIX, VecU32MinVIX, VecU64MinVIX,
    VecS8MinVIX, VecS16MinVIX, VecS32MinVIX, VecS64MinVIX, VecU8AddVIX, VecU16AddVIX, VecU32AddVIX,
    VecU64AddVIX, VecU8SubVIX, VecU16SubVIX, VecU32SubVIX, VecU64SubVIX, VecU8SubRVIX,
    VecU16SubRVIX, VecU32SubRVIX, VecU64SubRVIX, VecS8MulVIX, VecS16MulVIX, VecS32MulVIX,
    VecS64MulVIX, VecU64AndVIX, VecU64OrVIX, VecU64XorVIX;

// The same without a predicate.
sve::semantics::binary VecU8AddVVX, VecU16AddVVX, VecU32AddVVX, VecU64AddVVX, VecU8SubVVX,
    VecU16SubVVX, VecU32SubVVX, VecU64SubVVX, VecU64AndVVX, VecU64OrVVX, VecU64XorVVX, VecU64BicVVX;

// LSR, ASR, LSL by an immediate.
sve::semantics::immediate_merging VecU8ShrVIM, VecU16ShrVIM, VecU32ShrVIM, VecU64ShrVIM,
    VecS8ShrVIM, VecS16ShrVIM, VecS32ShrVIM, VecS64ShrVIM;
sve::semantics::immediate VecU8ShrVIX, VecU16ShrVIX, VecU32ShrVIX, VecU64ShrVIX, VecS8ShrVIX,
    VecS16ShrVIX, VecS32ShrVIX, VecS64ShrVIX;
sve::semantics::immediate_merging VecU8ShlVIM, VecU16ShlVIM, VecU32ShlVIM, VecU64ShlVIM;
sve::semantics::immediate VecU8ShlVIX, VecU16ShlVIX, VecU32ShlVIX, VecU64ShlVIX;

// ASRD: a division that rounds toward zero.
sve::semantics::immediate_merging VecS8ShrDVIM, VecS16ShrDVIM, VecS32ShrDVIM, VecS64ShrDVIM;

// LSR, ASR, LSL by a vector; LSRR, ASRR, LSLR: b is shifted.
sve::semantics::binary_merging VecU8ShrVVM, VecU16ShrVVM, VecU32ShrVVM, VecU64ShrVVM, VecS8ShrVVM,
    VecS16ShrVVM, VecS32ShrVVM, VecS64ShrVVM, VecU8ShlVVM, VecU16ShlVVM, VecU32ShlVVM, VecU64ShlVVM,
    VecU8ShrRVVM, VecU16ShrRVVM, VecU32ShrRVVM, VecU64ShrRVVM, VecS8ShrRVVM, VecS16ShrRVVM,
    VecS32ShrRVVM, VecS64ShrRVVM, VecU8ShlRVVM, VecU16ShlRVVM, VecU32ShlRVVM, VecU64ShlRVVM;

// The same with wide elements: the 64-bit element of b that covers the element.
sve::semantics::binary_merging VecU8ShrVWM, VecU16ShrVWM, VecU32ShrVWM, VecS8ShrVWM, VecS16ShrVWM,
    VecS32ShrVWM;
sve::semantics::binary VecU8ShrVWX, VecU16ShrVWX, VecU32ShrVWX, VecS8ShrVWX, VecS16ShrVWX,
    VecS32ShrVWX;
sve::semantics::binary_merging VecU8ShlVWM, VecU16ShlVWM, VecU32ShlVWM;
sve::semantics::binary VecU8ShlVWX, VecU16ShlVWX, VecU32ShlVWX;

// ADR: a + b x k. It uses all of b, or its low 32 bits sign-extended (X) or zero-extended (Y).
sve::semantics::binary VecU32LEA1VV, VecU64LEA1VV, VecU32LEA2VV, VecU64LEA2VV, VecU32LEA4VV,
    VecU64LEA4VV, VecU32LEA8VV, VecU64LEA8VV, VecU64LEA1XVV, VecU64LEA2XVV, VecU64LEA4XVV,
    VecU64LEA8XVV, VecU64LEA1YVV, VecU64LEA2YVV, VecU64LEA4YVV, VecU64LEA8YVV;

// SDOT, UDOT: `acc` plus four products of elements a quarter as wide. With an index, the elements
// of b are those of element `index` in each 128-bit segment.
sve::semantics::dot_product VecU32DotVVVX, VecS32DotVVVX, VecU64DotVVVX, VecS64DotVVVX;
sve::semantics::dot_product_indexed VecU32DotVVVIX, VecS32DotVVVIX, VecU64DotVVVIX, VecS64DotVVVIX;

// DUP, DUPM, CPY. The forms of tags B8, H16, F32 and D64 are those of U8 to U64. They differ only
// in the register that the scalar comes from.
sve::semantics::replication VecS8DupI, VecS16DupI, VecS32DupI, VecS64DupI, VecU8DupS, VecU16DupS,
    VecU32DupS, VecU64DupS, VecS64DupMaskI;
sve::semantics::replication_merging VecS8DupIM, VecS16DupIM, VecS32DupIM, VecS64DupIM, VecU8DupSM,
    VecU16DupSM, VecU32DupSM, VecU64DupSM, VecB8DupSM, VecH16DupSM, VecF32DupSM, VecD64DupSM;
sve::semantics::replication_zeroing VecS8DupIZ, VecS16DupIZ, VecS32DupIZ, VecS64DupIZ;

// INDEX: start + e x step.
sve::semantics::index_vector VecS8IndexII, VecS16IndexII, VecS32IndexII, VecS64IndexII,
    VecS8IndexIS, VecS16IndexIS, VecS32IndexIS, VecS64IndexIS, VecS8IndexSI, VecS16IndexSI,
    VecS32IndexSI, VecS64IndexSI, VecS8IndexSS, VecS16IndexSS, VecS32IndexSS, VecS64IndexSS;

// MOVPRFX, SEL.
sve::semantics::unary_merging VecU8MovePrefix1VM, VecU16MovePrefix1VM, VecU32MovePrefix1VM,
    VecU64MovePrefix1VM;
sve::semantics::unary_zeroing VecU8MovePrefix1VZ, VecU16MovePrefix1VZ, VecU32MovePrefix1VZ,
    VecU64MovePrefix1VZ;
sve::semantics::unary VecU32SpecialMoveV;
sve::semantics::selection VecU8SelVV, VecU16SelVV, VecU32SelVV, VecU64SelVV;
