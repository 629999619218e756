// Integer compares to a predicate, which all set the flags, and the compares that end a loop.
//
// S tags compare signed, and U tags unsigned. EQ and NE exist only with S tags. An inactive element
// is false. In the wide forms the element is extended as its tag says and compared with the 64-bit
// element of b that covers it.
#pragma once

#include <cstdint>

#include "sve/semantics/semantics.h"

namespace sve::semantics {

using compare_vectors = PredV(PredV g, VecV a, VecV b, CpuContext* ctx);
// `i` is already decoded and has the element's type.
template <class Element>
using compare_immediate = PredV(PredV g, VecV a, Element i, CpuContext* ctx);
template <class Scalar>
using compare_terminate = void(Scalar x, Scalar y, CpuContext* ctx);

}  // namespace sve::semantics

// CTERMEQ, CTERMNE: if the condition holds, N is 1 and V is 0. Otherwise N is 0 and V is not C.
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
sve::semantics::compare_immediate<std::int8_t> VecS8CmpFlgEQVIZ, VecS8CmpFlgNEVIZ, VecS8CmpFlgGEVIZ,
    VecS8CmpFlgGTVIZ, VecS8CmpFlgLEVIZ, VecS8CmpFlgLTVIZ;
sve::semantics::compare_immediate<std::int16_t> VecS16CmpFlgEQVIZ, VecS16CmpFlgNEVIZ,
    VecS16CmpFlgGEVIZ, VecS16CmpFlgGTVIZ, VecS16CmpFlgLEVIZ, VecS16CmpFlgLTVIZ;
sve::semantics::compare_immediate<std::int32_t> VecS32CmpFlgEQVIZ, VecS32CmpFlgNEVIZ,
    VecS32CmpFlgGEVIZ, VecS32CmpFlgGTVIZ, VecS32CmpFlgLEVIZ, VecS32CmpFlgLTVIZ;
sve::semantics::compare_immediate<std::int64_t> VecS64CmpFlgEQVIZ, VecS64CmpFlgNEVIZ,
    VecS64CmpFlgGEVIZ, VecS64CmpFlgGTVIZ, VecS64CmpFlgLEVIZ, VecS64CmpFlgLTVIZ;
sve::semantics::compare_immediate<std::uint8_t> VecU8CmpFlgGEVIZ, VecU8CmpFlgGTVIZ,
    VecU8CmpFlgLEVIZ, VecU8CmpFlgLTVIZ;
sve::semantics::compare_immediate<std::uint16_t> VecU16CmpFlgGEVIZ, VecU16CmpFlgGTVIZ,
    VecU16CmpFlgLEVIZ, VecU16CmpFlgLTVIZ;
sve::semantics::compare_immediate<std::uint32_t> VecU32CmpFlgGEVIZ, VecU32CmpFlgGTVIZ,
    VecU32CmpFlgLEVIZ, VecU32CmpFlgLTVIZ;
sve::semantics::compare_immediate<std::uint64_t> VecU64CmpFlgGEVIZ, VecU64CmpFlgGTVIZ,
    VecU64CmpFlgLEVIZ, VecU64CmpFlgLTVIZ;

// The same with wide elements.
sve::semantics::compare_vectors VecS8CmpFlgEQVWZ, VecS16CmpFlgEQVWZ, VecS32CmpFlgEQVWZ,
    VecS8CmpFlgNEVWZ, VecS16CmpFlgNEVWZ, VecS32CmpFlgNEVWZ, VecU8CmpFlgGEVWZ, VecU16CmpFlgGEVWZ,
    VecU32CmpFlgGEVWZ, VecS8CmpFlgGEVWZ, VecS16CmpFlgGEVWZ, VecS32CmpFlgGEVWZ, VecU8CmpFlgGTVWZ,
    VecU16CmpFlgGTVWZ, VecU32CmpFlgGTVWZ, VecS8CmpFlgGTVWZ, VecS16CmpFlgGTVWZ, VecS32CmpFlgGTVWZ,
    VecU8CmpFlgLEVWZ, VecU16CmpFlgLEVWZ, VecU32CmpFlgLEVWZ, VecS8CmpFlgLEVWZ, VecS16CmpFlgLEVWZ,
    VecS32CmpFlgLEVWZ, VecU8CmpFlgLTVWZ, VecU16CmpFlgLTVWZ, VecU32CmpFlgLTVWZ, VecS8CmpFlgLTVWZ,
    VecS16CmpFlgLTVWZ, VecS32CmpFlgLTVWZ;
