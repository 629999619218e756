// Integer compares to a predicate, which all set the flags, and the compare that ends a loop.
//
// S tags compare signed, U tags unsigned; EQ and NE exist with S tags only. An inactive element is
// false. In the wide forms the element is extended by the tag and compared with the 64-bit element
// of b that covers it.
#pragma once

#include <cstdint>

#include "sve/semantics/semantics.h"

namespace sve::semantics {

using compare_vectors = PredV(const PredV& g, const VecV& a, const VecV& b, CpuContext* ctx);
// `i` is decoded, of the element's type.
using compare_immediate = PredV(const PredV& g, const VecV& a, std::int64_t i, CpuContext* ctx);
template <class Scalar>
using compare_terminate = void(Scalar x, Scalar y, CpuContext* ctx);

}  // namespace sve::semantics

// CTERMEQ, CTERMNE: where the condition holds, N is 1 and V is 0; otherwise N is 0 and V is not C.
sve::semantics::compare_terminate<std::uint32_t> VecU32CTermEQ, VecU32CTermNE;
sve::semantics::compare_terminate<std::uint64_t> VecU64CTermEQ, VecU64CTermNE;

// CMPEQ, CMPNE, CMPGE, CMPGT, CMPHS, CMPHI of vectors.
sve::semantics::compare_vectors VecS8CmpFlgEQVVZ, VecS16CmpFlgEQVVZ, VecS32CmpFlgEQVVZ,
    VecS64CmpFlgEQVVZ, VecS8CmpFlgNEVVZ, VecS16CmpFlgNEVVZ, VecS32CmpFlgNEVVZ, VecS64CmpFlgNEVVZ,
    VecU8CmpFlgGEVVZ, VecU16CmpFlgGEVVZ, VecU32CmpFlgGEVVZ, VecU64CmpFlgGEVVZ, VecS8CmpFlgGEVVZ,
    VecS16CmpFlgGEVVZ, VecS32CmpFlgGEVVZ, VecS64CmpFlgGEVVZ, VecU8CmpFlgGTVVZ, VecU16CmpFlgGTVVZ,
    VecU32CmpFlgGTVVZ, VecU64CmpFlgGTVVZ, VecS8CmpFlgGTVVZ, VecS16CmpFlgGTVVZ, VecS32CmpFlgGTVVZ,
    VecS64CmpFlgGTVVZ;

// The same and CMPLE, CMPLT, CMPLS, CMPLO with an immediate.
sve::semantics::compare_immediate VecS8CmpFlgEQVIZ, VecS16CmpFlgEQVIZ, VecS32CmpFlgEQVIZ,
    VecS64CmpFlgEQVIZ, VecS8CmpFlgNEVIZ, VecS16CmpFlgNEVIZ, VecS32CmpFlgNEVIZ, VecS64CmpFlgNEVIZ,
    VecU8CmpFlgGEVIZ, VecU16CmpFlgGEVIZ, VecU32CmpFlgGEVIZ, VecU64CmpFlgGEVIZ, VecS8CmpFlgGEVIZ,
    VecS16CmpFlgGEVIZ, VecS32CmpFlgGEVIZ, VecS64CmpFlgGEVIZ, VecU8CmpFlgGTVIZ, VecU16CmpFlgGTVIZ,
    VecU32CmpFlgGTVIZ, VecU64CmpFlgGTVIZ, VecS8CmpFlgGTVIZ, VecS16CmpFlgGTVIZ, VecS32CmpFlgGTVIZ,
    VecS64CmpFlgGTVIZ, VecU8CmpFlgLEVIZ, VecU16CmpFlgLEVIZ, VecU32CmpFlgLEVIZ, VecU64CmpFlgLEVIZ,
    VecS8CmpFlgLEVIZ, VecS16CmpFlgLEVIZ, VecS32CmpFlgLEVIZ, VecS64CmpFlgLEVIZ, VecU8CmpFlgLTVIZ,
    VecU16CmpFlgLTVIZ, VecU32CmpFlgLTVIZ, VecU64CmpFlgLTVIZ, VecS8CmpFlgLTVIZ, VecS16CmpFlgLTVIZ,
    VecS32CmpFlgLTVIZ, VecS64CmpFlgLTVIZ;

// The same with wide elements.
sve::semantics::compare_vectors VecS8CmpFlgEQVWZ, VecS16CmpFlgEQVWZ, VecS32CmpFlgEQVWZ,
    VecS8CmpFlgNEVWZ, VecS16CmpFlgNEVWZ, VecS32CmpFlgNEVWZ, VecU8CmpFlgGEVWZ, VecU16CmpFlgGEVWZ,
    VecU32CmpFlgGEVWZ, VecS8CmpFlgGEVWZ, VecS16CmpFlgGEVWZ, VecS32CmpFlgGEVWZ, VecU8CmpFlgGTVWZ,
    VecU16CmpFlgGTVWZ, VecU32CmpFlgGTVWZ, VecS8CmpFlgGTVWZ, VecS16CmpFlgGTVWZ, VecS32CmpFlgGTVWZ,
    VecU8CmpFlgLEVWZ, VecU16CmpFlgLEVWZ, VecU32CmpFlgLEVWZ, VecS8CmpFlgLEVWZ, VecS16CmpFlgLEVWZ,
    VecS32CmpFlgLEVWZ, VecU8CmpFlgLTVWZ, VecU16CmpFlgLTVWZ, VecU32CmpFlgLTVWZ, VecS8CmpFlgLTVWZ,
    VecS16CmpFlgLTVWZ, VecS32CmpFlgLTVWZ;
