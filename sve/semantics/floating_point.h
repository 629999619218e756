// Floating-point operations on vectors: arithmetic, fused and complex multiply-add, compares,
// conversions and reductions.
//
// The elements are the bit patterns of half (F16), single (F32) and double (D64) precision. All
// arithmetic is done by the library in sve/fp/fp.h. Each computed element uses the controls of the
// FPCR and adds its flags to the FPSR. An inactive element raises no flags. In merging forms the
// merge source comes first. If they have only two or three vectors, it is also the first operand.
#pragma once

#include <cstdint>

#include "sve/semantics/semantics.h"

namespace sve::semantics::floating_point {

using unary = VecV(VecV a, CpuContext* ctx);
using binary = VecV(VecV a, VecV b, CpuContext* ctx);
using binary_immediate = VecV(VecV a, VecV b, unsigned i, CpuContext* ctx);
using unary_merging = VecV(VecV source, PredV g, VecV a, CpuContext* ctx);
using binary_merging = VecV(VecV a, PredV g, VecV b, CpuContext* ctx);
using ternary_merging = VecV(VecV a, PredV g, VecV b, VecV d, CpuContext* ctx);
// `i` selects the second of two constants.
using immediate_merging = VecV(VecV a, PredV g, bool i, CpuContext* ctx);
using ternary_indexed = VecV(VecV n, VecV m, VecV acc, unsigned index, CpuContext* ctx);

using complex_addition = VecV(VecV a, PredV g, VecV b, unsigned rotation, CpuContext* ctx);
using complex_multiplication = VecV(VecV acc, PredV g, VecV n, VecV m, unsigned rotation,
                                    CpuContext* ctx);
using complex_multiplication_indexed = VecV(VecV n, VecV m, VecV acc, unsigned rotation,
                                            unsigned index, CpuContext* ctx);

using compare_vectors = PredV(PredV g, VecV a, VecV b, CpuContext* ctx);
using compare_with_zero = PredV(PredV g, VecV a, CpuContext* ctx);

// The low bits of `x` become the element.
using replication = VecV(std::uint64_t x, CpuContext* ctx);
using replication_merging = VecV(VecV source, PredV g, std::uint64_t x, CpuContext* ctx);

// Scalars are in the low bits of the 64.
using reduction = std::uint64_t(PredV g, VecV a, CpuContext* ctx);
using ordered_reduction = std::uint64_t(PredV g, std::uint64_t start, VecV a, CpuContext* ctx);

}  // namespace sve::semantics::floating_point

// FADD, FSUB, FSUBR, FMUL, FMULX.
sve::semantics::floating_point::binary_merging VecF16AddVVM, VecF32AddVVM, VecD64AddVVM,
    VecF16SubVVM, VecF32SubVVM, VecD64SubVVM, VecF16SubRVVM, VecF32SubRVVM, VecD64SubRVVM,
    VecF16MulVVM, VecF32MulVVM, VecD64MulVVM, VecF16MulXVVM, VecF32MulXVVM, VecD64MulXVVM;

// FDIV, FDIVR, FABD.
sve::semantics::floating_point::binary_merging VecF16DivVVM, VecF32DivVVM, VecD64DivVVM,
    VecF16DivRVVM, VecF32DivRVVM, VecD64DivRVVM, VecF16AbdVVM, VecF32AbdVVM, VecD64AbdVVM;

// FMAX, FMIN, FMAXNM, FMINNM.
sve::semantics::floating_point::binary_merging VecF16MaxVVM, VecF32MaxVVM, VecD64MaxVVM,
    VecF16MinVVM, VecF32MinVVM, VecD64MinVVM, VecF16MaxNumVVM, VecF32MaxNumVVM, VecD64MaxNumVVM,
    VecF16MinNumVVM, VecF32MinNumVVM, VecD64MinNumVVM;

// FSCALE: b is a signed integer.
sve::semantics::floating_point::binary_merging VecF16ScaleVVM, VecF32ScaleVVM, VecD64ScaleVVM;

// FADD, FSUB, FMUL, FRECPS, FRSQRTS, FTSMUL without a predicate.
sve::semantics::floating_point::binary VecF16AddVVX, VecF32AddVVX, VecD64AddVVX, VecF16SubVVX,
    VecF32SubVVX, VecD64SubVVX, VecF16MulVVX, VecF32MulVVX, VecD64MulVVX, VecF16RecpSVV,
    VecF32RecpSVV, VecD64RecpSVV, VecF16RSqrtSVV, VecF32RSqrtSVV, VecD64RSqrtSVV, VecF16TRISMULVV,
    VecF32TRISMULVV, VecD64TRISMULVV;

// FTSSEL.
sve::semantics::floating_point::binary VecF16TRISSELVV, VecF32TRISSELVV, VecD64TRISSELVV;

// FTMAD: i selects the coefficient.
sve::semantics::floating_point::binary_immediate VecF16TRIMADDVVI, VecF32TRIMADDVVI,
    VecD64TRIMADDVVI;

// FADD, FSUB, FSUBR with 0.5 or 1.0; FMUL with 0.5 or 2.0; FMAX, FMIN, FMAXNM, FMINNM with 0.0
// or 1.0.
sve::semantics::floating_point::immediate_merging VecF16AddVIM, VecF32AddVIM, VecD64AddVIM,
    VecF16SubVIM, VecF32SubVIM, VecD64SubVIM, VecF16SubRVIM, VecF32SubRVIM, VecD64SubRVIM,
    VecF16MulVIM, VecF32MulVIM, VecD64MulVIM, VecF16MaxVIM, VecF32MaxVIM, VecD64MaxVIM,
    VecF16MinVIM, VecF32MinVIM, VecD64MinVIM, VecF16MaxNumVIM, VecF32MaxNumVIM, VecD64MaxNumVIM,
    VecF16MinNumVIM, VecF32MinNumVIM, VecD64MinNumVIM;

// FABS, FNEG.
sve::semantics::floating_point::unary_merging VecF16AbsVM, VecF32AbsVM, VecD64AbsVM, VecF16NegVM,
    VecF32NegVM, VecD64NegVM;

// FSQRT, FRECPX.
sve::semantics::floating_point::unary_merging VecF16SqrtVM, VecF32SqrtVM, VecD64SqrtVM,
    VecF16RecpXVM, VecF32RecpXVM, VecD64RecpXVM;

// FRINTN, FRINTP, FRINTM, FRINTZ, FRINTA, FRINTI, FRINTX.
sve::semantics::floating_point::unary_merging VecF16FRIntNVM, VecF32FRIntNVM, VecD64FRIntNVM,
    VecF16FRIntPVM, VecF32FRIntPVM, VecD64FRIntPVM, VecF16FRIntMVM, VecF32FRIntMVM, VecD64FRIntMVM,
    VecF16FRIntZVM, VecF32FRIntZVM, VecD64FRIntZVM, VecF16FRIntAVM, VecF32FRIntAVM, VecD64FRIntAVM,
    VecF16FRIntIVM, VecF32FRIntIVM, VecD64FRIntIVM, VecF16FRIntXVM, VecF32FRIntXVM, VecD64FRIntXVM;

// FRECPE, FRSQRTE.
sve::semantics::floating_point::unary VecF16RecpEV, VecF32RecpEV, VecD64RecpEV, VecF16RSqrtEV,
    VecF32RSqrtEV, VecD64RSqrtEV;

// FEXPA.
sve::semantics::floating_point::unary VecF16EXPAV, VecF32EXPAV, VecD64EXPAV;

// FDUP, FCPY.
sve::semantics::floating_point::replication VecF16DupI, VecF32DupI, VecD64DupI;
sve::semantics::floating_point::replication_merging VecF16DupIM, VecF32DupIM, VecD64DupIM;

// FMLA, FMLS, FNMLA, FNMLS: the first vector is the addend. FMAD, FMSB, FNMAD, FNMSB: the third is.
sve::semantics::floating_point::ternary_merging VecF16FMAVVVM, VecF32FMAVVVM, VecD64FMAVVVM,
    VecF16FMSVVVM, VecF32FMSVVVM, VecD64FMSVVVM, VecF16FNMAVVVM, VecF32FNMAVVVM, VecD64FNMAVVVM,
    VecF16FNMSVVVM, VecF32FNMSVVVM, VecD64FNMSVVVM, VecF16FMADDVVVM, VecF32FMADDVVVM,
    VecD64FMADDVVVM, VecF16FMSUBVVVM, VecF32FMSUBVVVM, VecD64FMSUBVVVM, VecF16FNMADDVVVM,
    VecF32FNMADDVVVM, VecD64FNMADDVVVM, VecF16FNMSUBVVVM, VecF32FNMSUBVVVM, VecD64FNMSUBVVVM;

// FMLA, FMLS, FMUL with element `index` of each 128-bit segment of m.
sve::semantics::floating_point::ternary_indexed VecF16FMAVVVIX, VecF32FMAVVVIX, VecD64FMAVVVIX,
    VecF16FMSVVVIX, VecF32FMSVVVIX, VecD64FMSVVVIX;
sve::semantics::floating_point::binary_immediate VecF16MulVVIX, VecF32MulVVIX, VecD64MulVVIX;

// FCADD, of pairs of elements: rotation 0 is 90 degrees, 1 is 270.
sve::semantics::floating_point::complex_addition VecF16FCADDVVM, VecF32FCADDVVM, VecD64FCADDVVM;

// FCMLA: rotations are in units of 90 degrees. `index` selects a pair in each segment of m.
sve::semantics::floating_point::complex_multiplication VecF16FCMLAVVVM, VecF32FCMLAVVVM,
    VecD64FCMLAVVVM;
sve::semantics::floating_point::complex_multiplication_indexed VecF16FCMLAVVVIX, VecF32FCMLAVVVIX;

// FCMEQ, FCMNE, FCMGE, FCMGT, FCMUO. NE is true for NaNs.
sve::semantics::floating_point::compare_vectors VecF16CmpEQVVZ, VecF32CmpEQVVZ, VecD64CmpEQVVZ,
    VecF16CmpNEVVZ, VecF32CmpNEVVZ, VecD64CmpNEVVZ, VecF16CmpGEVVZ, VecF32CmpGEVVZ, VecD64CmpGEVVZ,
    VecF16CmpGTVVZ, VecF32CmpGTVVZ, VecD64CmpGTVVZ, VecF16CmpUNVVZ, VecF32CmpUNVVZ, VecD64CmpUNVVZ;

// FACGE, FACGT: compare absolute values.
sve::semantics::floating_point::compare_vectors VecF16AcGEVVZ, VecF32AcGEVVZ, VecD64AcGEVVZ,
    VecF16AcGTVVZ, VecF32AcGTVVZ, VecD64AcGTVVZ;

// FCMEQ, FCMNE, FCMGE, FCMGT, FCMLE, FCMLT with zero.
sve::semantics::floating_point::compare_with_zero VecF16CmpEQV0Z, VecF32CmpEQV0Z, VecD64CmpEQV0Z,
    VecF16CmpNEV0Z, VecF32CmpNEV0Z, VecD64CmpNEV0Z, VecF16CmpGEV0Z, VecF32CmpGEV0Z, VecD64CmpGEV0Z,
    VecF16CmpGTV0Z, VecF32CmpGTV0Z, VecD64CmpGTV0Z, VecF16CmpLEV0Z, VecF32CmpLEV0Z, VecD64CmpLEV0Z,
    VecF16CmpLTV0Z, VecF32CmpLTV0Z, VecD64CmpLTV0Z;

// SCVTF, UCVTF.
sve::semantics::floating_point::unary_merging VecF16FromS2VM, VecF16FromU2VM, VecF16FromS4VM,
    VecF16FromU4VM, VecF16FromS8VM, VecF16FromU8VM, VecF32FromS4VM, VecF32FromU4VM, VecF64FromS8VM,
    VecF64FromU8VM, VecD64FromS4VM, VecD64FromU4VM, VecD64FromS8VM, VecD64FromU8VM;

// FCVTZS, FCVTZU: the width of the element in bits, then that of the integer in bytes.
sve::semantics::floating_point::unary_merging VecS16_2FromHVM, VecU16_2FromHVM, VecS32_4FromHVM,
    VecU32_4FromHVM, VecS64_8FromHVM, VecU64_8FromHVM, VecS32_4FromFVM, VecU32_4FromFVM,
    VecS64_8FromFVM, VecU64_8FromFVM, VecS64_4FromDVM, VecU64_4FromDVM, VecS64_8FromDVM,
    VecU64_8FromDVM;

// FCVT.
sve::semantics::floating_point::unary_merging VecH32TruncFVM, VecH64TruncDVM, VecF64TruncDVM,
    VecF32ExtndHVM, VecD64ExtndHVM, VecD64ExtndFVM;

// FADDA: adds the active elements to `start` one after the other.
sve::semantics::floating_point::ordered_reduction VecF16AddReduceAV, VecF32AddReduceAV,
    VecD64AddReduceAV;

// FADDV, FMAXV, FMINV, FMAXNMV, FMINNMV.
sve::semantics::floating_point::reduction VecF16AddReduceFV, VecF32AddReduceFV, VecD64AddReduceFV,
    VecF16MaxReduceFV, VecF32MaxReduceFV, VecD64MaxReduceFV, VecF16MinReduceFV, VecF32MinReduceFV,
    VecD64MinReduceFV, VecF16MaxNumReduceFV, VecF32MaxNumReduceFV, VecD64MaxNumReduceFV,
    VecF16MinNumReduceFV, VecF32MinNumReduceFV, VecD64MinNumReduceFV;
