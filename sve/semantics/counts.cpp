// Each line below says what is added to what, and which elements are counted. The saturating scalar
// forms compute at the width of the scalar operand, the vector forms at the width of the element.
// In both, the width in the tag says which elements are counted.
#include "sve/semantics/counts.h"

#include "sve/semantics/elements.h"
#include "sve/semantics/predicates.h"

using namespace sve::semantics;

namespace {

using V = VecV;
using P = PredV;
using Imm = unsigned;
using Ctx = CpuContext*;

// The number of elements of type T that the pattern selects, times the multiplier imm + 1.
template <class T>
U64 count(unsigned pattern, unsigned imm, const CpuContext* ctx) {
  const int n = static_cast<int>(ctx->elements<T>());
  const auto selected = static_cast<U64>(S64{VecTrueILength(pattern, n)});
  return selected + imm * selected;
}

// The number of elements of type T that are active in p.
template <class T>
U64 count(const PredV& p, const CpuContext* ctx) {
  U64 active = 0;
  for (unsigned e = 0; e < ctx->elements<T>(); ++e) active += p.active<T>(e) ? 1 : 0;
  return active;
}

// Scalars of type T: the result is saturated and then extended to 64 bits as T is signed or
// unsigned.
template <class T>
U64 q_add(U64 x, U64 n) {
  return static_cast<U64>(static_cast<T>(SatAdd(x, n, width<T>, is_unsigned<T>).value));
}

template <class T>
U64 q_sub(U64 x, U64 n) {
  return static_cast<U64>(static_cast<T>(SatSub(x, n, width<T>, is_unsigned<T>).value));
}

// Operations on each element and one number n. The 128-bit sum takes n as unsigned. The result is
// taken modulo the element, or saturated.
template <class T>
[[gnu::noinline]] VecV add(const VecV& a, U64 n, const CpuContext* ctx) {
  return unpredicated<T>(ctx, [&](unsigned e) { return a.get<T>(e) + n; });
}

template <class T>
[[gnu::noinline]] VecV sub(const VecV& a, U64 n, const CpuContext* ctx) {
  return unpredicated<T>(ctx, [&](unsigned e) { return a.get<T>(e) - n; });
}

template <class T>
[[gnu::noinline]] VecV q_add(const VecV& a, U64 n, const CpuContext* ctx) {
  return unpredicated<T>(
      ctx, [&](unsigned e) { return SatQ(Int(a.get<T>(e)) + n, width<T>, is_unsigned<T>).value; });
}

template <class T>
[[gnu::noinline]] VecV q_sub(const VecV& a, U64 n, const CpuContext* ctx) {
  return unpredicated<T>(
      ctx, [&](unsigned e) { return SatQ(Int(a.get<T>(e)) - n, width<T>, is_unsigned<T>).value; });
}

// Operations on pairs of elements.
template <class T>
[[gnu::noinline]] VecV q_add(const VecV& a, const VecV& b, const CpuContext* ctx) {
  return unpredicated<T>(ctx, [&](unsigned e) {
    return SatAdd(bits(a.get<T>(e)), bits(b.get<T>(e)), width<T>, is_unsigned<T>).value;
  });
}

template <class T>
[[gnu::noinline]] VecV q_sub(const VecV& a, const VecV& b, const CpuContext* ctx) {
  return unpredicated<T>(ctx, [&](unsigned e) {
    return SatSub(bits(a.get<T>(e)), bits(b.get<T>(e)), width<T>, is_unsigned<T>).value;
  });
}

// A number of bytes that may be negative.
U64 times(U64 bytes, S64 imm) { return bytes * static_cast<U64>(imm); }

}  // namespace

U64 VecS64VLX(S64 imm, CpuContext* ctx) { return times(U64{ctx->vl} * 8, imm); }
U64 VecS64AddVLX(U64 base, S64 imm, CpuContext* ctx) { return base + VecS64VLX(imm, ctx); }
U64 VecS64AddPLX(U64 base, S64 imm, CpuContext* ctx) { return base + times(ctx->vl, imm); }

U64 VecU8CountVLSI(Imm p, Imm i, Ctx c) { return count<U8>(p, i, c); }
U64 VecU16CountVLSI(Imm p, Imm i, Ctx c) { return count<U16>(p, i, c); }
U64 VecU32CountVLSI(Imm p, Imm i, Ctx c) { return count<U32>(p, i, c); }
U64 VecU64CountVLSI(Imm p, Imm i, Ctx c) { return count<U64>(p, i, c); }

U64 VecU8IncrVLSI(U64 x, Imm p, Imm i, Ctx c) { return x + count<U8>(p, i, c); }
U64 VecU16IncrVLSI(U64 x, Imm p, Imm i, Ctx c) { return x + count<U16>(p, i, c); }
U64 VecU32IncrVLSI(U64 x, Imm p, Imm i, Ctx c) { return x + count<U32>(p, i, c); }
U64 VecU64IncrVLSI(U64 x, Imm p, Imm i, Ctx c) { return x + count<U64>(p, i, c); }
U64 VecU8DecrVLSI(U64 x, Imm p, Imm i, Ctx c) { return x - count<U8>(p, i, c); }
U64 VecU16DecrVLSI(U64 x, Imm p, Imm i, Ctx c) { return x - count<U16>(p, i, c); }
U64 VecU32DecrVLSI(U64 x, Imm p, Imm i, Ctx c) { return x - count<U32>(p, i, c); }
U64 VecU64DecrVLSI(U64 x, Imm p, Imm i, Ctx c) { return x - count<U64>(p, i, c); }
VecV VecU16IncrVLVI(V a, Imm p, Imm i, Ctx c) { return add<U16>(a, count<U16>(p, i, c), c); }
VecV VecU32IncrVLVI(V a, Imm p, Imm i, Ctx c) { return add<U32>(a, count<U32>(p, i, c), c); }
VecV VecU64IncrVLVI(V a, Imm p, Imm i, Ctx c) { return add<U64>(a, count<U64>(p, i, c), c); }
VecV VecU16DecrVLVI(V a, Imm p, Imm i, Ctx c) { return sub<U16>(a, count<U16>(p, i, c), c); }
VecV VecU32DecrVLVI(V a, Imm p, Imm i, Ctx c) { return sub<U32>(a, count<U32>(p, i, c), c); }
VecV VecU64DecrVLVI(V a, Imm p, Imm i, Ctx c) { return sub<U64>(a, count<U64>(p, i, c), c); }

U64 VecU8QIncrVL4SI(U32 x, Imm p, Imm i, Ctx c) { return q_add<U32>(x, count<U8>(p, i, c)); }
U64 VecU16QIncrVL4SI(U32 x, Imm p, Imm i, Ctx c) { return q_add<U32>(x, count<U16>(p, i, c)); }
U64 VecU32QIncrVL4SI(U32 x, Imm p, Imm i, Ctx c) { return q_add<U32>(x, count<U32>(p, i, c)); }
U64 VecU64QIncrVL4SI(U32 x, Imm p, Imm i, Ctx c) { return q_add<U32>(x, count<U64>(p, i, c)); }
U64 VecS8QIncrVL4SI(U32 x, Imm p, Imm i, Ctx c) { return q_add<S32>(x, count<U8>(p, i, c)); }
U64 VecS16QIncrVL4SI(U32 x, Imm p, Imm i, Ctx c) { return q_add<S32>(x, count<U16>(p, i, c)); }
U64 VecS32QIncrVL4SI(U32 x, Imm p, Imm i, Ctx c) { return q_add<S32>(x, count<U32>(p, i, c)); }
U64 VecS64QIncrVL4SI(U32 x, Imm p, Imm i, Ctx c) { return q_add<S32>(x, count<U64>(p, i, c)); }
U64 VecU8QDecrVL4SI(U32 x, Imm p, Imm i, Ctx c) { return q_sub<U32>(x, count<U8>(p, i, c)); }
U64 VecU16QDecrVL4SI(U32 x, Imm p, Imm i, Ctx c) { return q_sub<U32>(x, count<U16>(p, i, c)); }
U64 VecU32QDecrVL4SI(U32 x, Imm p, Imm i, Ctx c) { return q_sub<U32>(x, count<U32>(p, i, c)); }
U64 VecU64QDecrVL4SI(U32 x, Imm p, Imm i, Ctx c) { return q_sub<U32>(x, count<U64>(p, i, c)); }
U64 VecS8QDecrVL4SI(U32 x, Imm p, Imm i, Ctx c) { return q_sub<S32>(x, count<U8>(p, i, c)); }
U64 VecS16QDecrVL4SI(U32 x, Imm p, Imm i, Ctx c) { return q_sub<S32>(x, count<U16>(p, i, c)); }
U64 VecS32QDecrVL4SI(U32 x, Imm p, Imm i, Ctx c) { return q_sub<S32>(x, count<U32>(p, i, c)); }
U64 VecS64QDecrVL4SI(U32 x, Imm p, Imm i, Ctx c) { return q_sub<S32>(x, count<U64>(p, i, c)); }

U64 VecU8QIncrVL8SI(U64 x, Imm p, Imm i, Ctx c) { return q_add<U64>(x, count<U8>(p, i, c)); }
U64 VecU16QIncrVL8SI(U64 x, Imm p, Imm i, Ctx c) { return q_add<U64>(x, count<U16>(p, i, c)); }
U64 VecU32QIncrVL8SI(U64 x, Imm p, Imm i, Ctx c) { return q_add<U64>(x, count<U32>(p, i, c)); }
U64 VecU64QIncrVL8SI(U64 x, Imm p, Imm i, Ctx c) { return q_add<U64>(x, count<U64>(p, i, c)); }
U64 VecS8QIncrVL8SI(U64 x, Imm p, Imm i, Ctx c) { return q_add<S64>(x, count<U8>(p, i, c)); }
U64 VecS16QIncrVL8SI(U64 x, Imm p, Imm i, Ctx c) { return q_add<S64>(x, count<U16>(p, i, c)); }
U64 VecS32QIncrVL8SI(U64 x, Imm p, Imm i, Ctx c) { return q_add<S64>(x, count<U32>(p, i, c)); }
U64 VecS64QIncrVL8SI(U64 x, Imm p, Imm i, Ctx c) { return q_add<S64>(x, count<U64>(p, i, c)); }
U64 VecU8QDecrVL8SI(U64 x, Imm p, Imm i, Ctx c) { return q_sub<U64>(x, count<U8>(p, i, c)); }
U64 VecU16QDecrVL8SI(U64 x, Imm p, Imm i, Ctx c) { return q_sub<U64>(x, count<U16>(p, i, c)); }
U64 VecU32QDecrVL8SI(U64 x, Imm p, Imm i, Ctx c) { return q_sub<U64>(x, count<U32>(p, i, c)); }
U64 VecU64QDecrVL8SI(U64 x, Imm p, Imm i, Ctx c) { return q_sub<U64>(x, count<U64>(p, i, c)); }
U64 VecS8QDecrVL8SI(U64 x, Imm p, Imm i, Ctx c) { return q_sub<S64>(x, count<U8>(p, i, c)); }
U64 VecS16QDecrVL8SI(U64 x, Imm p, Imm i, Ctx c) { return q_sub<S64>(x, count<U16>(p, i, c)); }
U64 VecS32QDecrVL8SI(U64 x, Imm p, Imm i, Ctx c) { return q_sub<S64>(x, count<U32>(p, i, c)); }
U64 VecS64QDecrVL8SI(U64 x, Imm p, Imm i, Ctx c) { return q_sub<S64>(x, count<U64>(p, i, c)); }

VecV VecU16QIncrVLVI(V a, Imm p, Imm i, Ctx c) { return q_add<U16>(a, count<U16>(p, i, c), c); }
VecV VecU32QIncrVLVI(V a, Imm p, Imm i, Ctx c) { return q_add<U32>(a, count<U32>(p, i, c), c); }
VecV VecU64QIncrVLVI(V a, Imm p, Imm i, Ctx c) { return q_add<U64>(a, count<U64>(p, i, c), c); }
VecV VecS16QIncrVLVI(V a, Imm p, Imm i, Ctx c) { return q_add<S16>(a, count<U16>(p, i, c), c); }
VecV VecS32QIncrVLVI(V a, Imm p, Imm i, Ctx c) { return q_add<S32>(a, count<U32>(p, i, c), c); }
VecV VecS64QIncrVLVI(V a, Imm p, Imm i, Ctx c) { return q_add<S64>(a, count<U64>(p, i, c), c); }
VecV VecU16QDecrVLVI(V a, Imm p, Imm i, Ctx c) { return q_sub<U16>(a, count<U16>(p, i, c), c); }
VecV VecU32QDecrVLVI(V a, Imm p, Imm i, Ctx c) { return q_sub<U32>(a, count<U32>(p, i, c), c); }
VecV VecU64QDecrVLVI(V a, Imm p, Imm i, Ctx c) { return q_sub<U64>(a, count<U64>(p, i, c), c); }
VecV VecS16QDecrVLVI(V a, Imm p, Imm i, Ctx c) { return q_sub<S16>(a, count<U16>(p, i, c), c); }
VecV VecS32QDecrVLVI(V a, Imm p, Imm i, Ctx c) { return q_sub<S32>(a, count<U32>(p, i, c), c); }
VecV VecS64QDecrVLVI(V a, Imm p, Imm i, Ctx c) { return q_sub<S64>(a, count<U64>(p, i, c), c); }

// CNTP counts elements that are active in both predicates.
U64 VecU8SCountP(P g, P p, Ctx c) { return count<U8>(VecPAndPPZ(g, p, p, c), c); }
U64 VecU16SCountP(P g, P p, Ctx c) { return count<U16>(VecPAndPPZ(g, p, p, c), c); }
U64 VecU32SCountP(P g, P p, Ctx c) { return count<U32>(VecPAndPPZ(g, p, p, c), c); }
U64 VecU64SCountP(P g, P p, Ctx c) { return count<U64>(VecPAndPPZ(g, p, p, c), c); }

U64 VecU8IncrSCountPS(P p, U64 x, Ctx c) { return x + count<U8>(p, c); }
U64 VecU16IncrSCountPS(P p, U64 x, Ctx c) { return x + count<U16>(p, c); }
U64 VecU32IncrSCountPS(P p, U64 x, Ctx c) { return x + count<U32>(p, c); }
U64 VecU64IncrSCountPS(P p, U64 x, Ctx c) { return x + count<U64>(p, c); }
U64 VecU8DecrSCountPS(P p, U64 x, Ctx c) { return x - count<U8>(p, c); }
U64 VecU16DecrSCountPS(P p, U64 x, Ctx c) { return x - count<U16>(p, c); }
U64 VecU32DecrSCountPS(P p, U64 x, Ctx c) { return x - count<U32>(p, c); }
U64 VecU64DecrSCountPS(P p, U64 x, Ctx c) { return x - count<U64>(p, c); }
VecV VecU16IncrCountPV(P p, V a, Ctx c) { return add<U16>(a, count<U16>(p, c), c); }
VecV VecU32IncrCountPV(P p, V a, Ctx c) { return add<U32>(a, count<U32>(p, c), c); }
VecV VecU64IncrCountPV(P p, V a, Ctx c) { return add<U64>(a, count<U64>(p, c), c); }
VecV VecU16DecrCountPV(P p, V a, Ctx c) { return sub<U16>(a, count<U16>(p, c), c); }
VecV VecU32DecrCountPV(P p, V a, Ctx c) { return sub<U32>(a, count<U32>(p, c), c); }
VecV VecU64DecrCountPV(P p, V a, Ctx c) { return sub<U64>(a, count<U64>(p, c), c); }

U64 VecU8QIncrSCount4PS(P p, U32 x, Ctx c) { return q_add<U32>(x, count<U8>(p, c)); }
U64 VecU16QIncrSCount4PS(P p, U32 x, Ctx c) { return q_add<U32>(x, count<U16>(p, c)); }
U64 VecU32QIncrSCount4PS(P p, U32 x, Ctx c) { return q_add<U32>(x, count<U32>(p, c)); }
U64 VecU64QIncrSCount4PS(P p, U32 x, Ctx c) { return q_add<U32>(x, count<U64>(p, c)); }
U64 VecS8QIncrSCount4PS(P p, U32 x, Ctx c) { return q_add<S32>(x, count<U8>(p, c)); }
U64 VecS16QIncrSCount4PS(P p, U32 x, Ctx c) { return q_add<S32>(x, count<U16>(p, c)); }
U64 VecS32QIncrSCount4PS(P p, U32 x, Ctx c) { return q_add<S32>(x, count<U32>(p, c)); }
U64 VecS64QIncrSCount4PS(P p, U32 x, Ctx c) { return q_add<S32>(x, count<U64>(p, c)); }
U64 VecU8QDecrSCount4PS(P p, U32 x, Ctx c) { return q_sub<U32>(x, count<U8>(p, c)); }
U64 VecU16QDecrSCount4PS(P p, U32 x, Ctx c) { return q_sub<U32>(x, count<U16>(p, c)); }
U64 VecU32QDecrSCount4PS(P p, U32 x, Ctx c) { return q_sub<U32>(x, count<U32>(p, c)); }
U64 VecU64QDecrSCount4PS(P p, U32 x, Ctx c) { return q_sub<U32>(x, count<U64>(p, c)); }
U64 VecS8QDecrSCount4PS(P p, U32 x, Ctx c) { return q_sub<S32>(x, count<U8>(p, c)); }
U64 VecS16QDecrSCount4PS(P p, U32 x, Ctx c) { return q_sub<S32>(x, count<U16>(p, c)); }
U64 VecS32QDecrSCount4PS(P p, U32 x, Ctx c) { return q_sub<S32>(x, count<U32>(p, c)); }
U64 VecS64QDecrSCount4PS(P p, U32 x, Ctx c) { return q_sub<S32>(x, count<U64>(p, c)); }

U64 VecU8QIncrSCount8PS(P p, U64 x, Ctx c) { return q_add<U64>(x, count<U8>(p, c)); }
U64 VecU16QIncrSCount8PS(P p, U64 x, Ctx c) { return q_add<U64>(x, count<U16>(p, c)); }
U64 VecU32QIncrSCount8PS(P p, U64 x, Ctx c) { return q_add<U64>(x, count<U32>(p, c)); }
U64 VecU64QIncrSCount8PS(P p, U64 x, Ctx c) { return q_add<U64>(x, count<U64>(p, c)); }
U64 VecS8QIncrSCount8PS(P p, U64 x, Ctx c) { return q_add<S64>(x, count<U8>(p, c)); }
U64 VecS16QIncrSCount8PS(P p, U64 x, Ctx c) { return q_add<S64>(x, count<U16>(p, c)); }
U64 VecS32QIncrSCount8PS(P p, U64 x, Ctx c) { return q_add<S64>(x, count<U32>(p, c)); }
U64 VecS64QIncrSCount8PS(P p, U64 x, Ctx c) { return q_add<S64>(x, count<U64>(p, c)); }
U64 VecU8QDecrSCount8PS(P p, U64 x, Ctx c) { return q_sub<U64>(x, count<U8>(p, c)); }
U64 VecU16QDecrSCount8PS(P p, U64 x, Ctx c) { return q_sub<U64>(x, count<U16>(p, c)); }
U64 VecU32QDecrSCount8PS(P p, U64 x, Ctx c) { return q_sub<U64>(x, count<U32>(p, c)); }
U64 VecU64QDecrSCount8PS(P p, U64 x, Ctx c) { return q_sub<U64>(x, count<U64>(p, c)); }
U64 VecS8QDecrSCount8PS(P p, U64 x, Ctx c) { return q_sub<S64>(x, count<U8>(p, c)); }
U64 VecS16QDecrSCount8PS(P p, U64 x, Ctx c) { return q_sub<S64>(x, count<U16>(p, c)); }
U64 VecS32QDecrSCount8PS(P p, U64 x, Ctx c) { return q_sub<S64>(x, count<U32>(p, c)); }
U64 VecS64QDecrSCount8PS(P p, U64 x, Ctx c) { return q_sub<S64>(x, count<U64>(p, c)); }

VecV VecU16QIncrCountPV(P p, V a, Ctx c) { return q_add<U16>(a, count<U16>(p, c), c); }
VecV VecU32QIncrCountPV(P p, V a, Ctx c) { return q_add<U32>(a, count<U32>(p, c), c); }
VecV VecU64QIncrCountPV(P p, V a, Ctx c) { return q_add<U64>(a, count<U64>(p, c), c); }
VecV VecS16QIncrCountPV(P p, V a, Ctx c) { return q_add<S16>(a, count<U16>(p, c), c); }
VecV VecS32QIncrCountPV(P p, V a, Ctx c) { return q_add<S32>(a, count<U32>(p, c), c); }
VecV VecS64QIncrCountPV(P p, V a, Ctx c) { return q_add<S64>(a, count<U64>(p, c), c); }
VecV VecU16QDecrCountPV(P p, V a, Ctx c) { return q_sub<U16>(a, count<U16>(p, c), c); }
VecV VecU32QDecrCountPV(P p, V a, Ctx c) { return q_sub<U32>(a, count<U32>(p, c), c); }
VecV VecU64QDecrCountPV(P p, V a, Ctx c) { return q_sub<U64>(a, count<U64>(p, c), c); }
VecV VecS16QDecrCountPV(P p, V a, Ctx c) { return q_sub<S16>(a, count<U16>(p, c), c); }
VecV VecS32QDecrCountPV(P p, V a, Ctx c) { return q_sub<S32>(a, count<U32>(p, c), c); }
VecV VecS64QDecrCountPV(P p, V a, Ctx c) { return q_sub<S64>(a, count<U64>(p, c), c); }

VecV VecU8QAddVVX(V a, V b, Ctx c) { return q_add<U8>(a, b, c); }
VecV VecU16QAddVVX(V a, V b, Ctx c) { return q_add<U16>(a, b, c); }
VecV VecU32QAddVVX(V a, V b, Ctx c) { return q_add<U32>(a, b, c); }
VecV VecU64QAddVVX(V a, V b, Ctx c) { return q_add<U64>(a, b, c); }
VecV VecS8QAddVVX(V a, V b, Ctx c) { return q_add<S8>(a, b, c); }
VecV VecS16QAddVVX(V a, V b, Ctx c) { return q_add<S16>(a, b, c); }
VecV VecS32QAddVVX(V a, V b, Ctx c) { return q_add<S32>(a, b, c); }
VecV VecS64QAddVVX(V a, V b, Ctx c) { return q_add<S64>(a, b, c); }
VecV VecU8QSubVVX(V a, V b, Ctx c) { return q_sub<U8>(a, b, c); }
VecV VecU16QSubVVX(V a, V b, Ctx c) { return q_sub<U16>(a, b, c); }
VecV VecU32QSubVVX(V a, V b, Ctx c) { return q_sub<U32>(a, b, c); }
VecV VecU64QSubVVX(V a, V b, Ctx c) { return q_sub<U64>(a, b, c); }
VecV VecS8QSubVVX(V a, V b, Ctx c) { return q_sub<S8>(a, b, c); }
VecV VecS16QSubVVX(V a, V b, Ctx c) { return q_sub<S16>(a, b, c); }
VecV VecS32QSubVVX(V a, V b, Ctx c) { return q_sub<S32>(a, b, c); }
VecV VecS64QSubVVX(V a, V b, Ctx c) { return q_sub<S64>(a, b, c); }

VecV VecU8QAddVIX(V a, U64 i, Ctx c) { return q_add<U8>(a, i, c); }
VecV VecU16QAddVIX(V a, U64 i, Ctx c) { return q_add<U16>(a, i, c); }
VecV VecU32QAddVIX(V a, U64 i, Ctx c) { return q_add<U32>(a, i, c); }
VecV VecU64QAddVIX(V a, U64 i, Ctx c) { return q_add<U64>(a, i, c); }
VecV VecS8QAddVIX(V a, U64 i, Ctx c) { return q_add<S8>(a, i, c); }
VecV VecS16QAddVIX(V a, U64 i, Ctx c) { return q_add<S16>(a, i, c); }
VecV VecS32QAddVIX(V a, U64 i, Ctx c) { return q_add<S32>(a, i, c); }
VecV VecS64QAddVIX(V a, U64 i, Ctx c) { return q_add<S64>(a, i, c); }
VecV VecU8QSubVIX(V a, U64 i, Ctx c) { return q_sub<U8>(a, i, c); }
VecV VecU16QSubVIX(V a, U64 i, Ctx c) { return q_sub<U16>(a, i, c); }
VecV VecU32QSubVIX(V a, U64 i, Ctx c) { return q_sub<U32>(a, i, c); }
VecV VecU64QSubVIX(V a, U64 i, Ctx c) { return q_sub<U64>(a, i, c); }
VecV VecS8QSubVIX(V a, U64 i, Ctx c) { return q_sub<S8>(a, i, c); }
VecV VecS16QSubVIX(V a, U64 i, Ctx c) { return q_sub<S16>(a, i, c); }
VecV VecS32QSubVIX(V a, U64 i, Ctx c) { return q_sub<S32>(a, i, c); }
VecV VecS64QSubVIX(V a, U64 i, Ctx c) { return q_sub<S64>(a, i, c); }
