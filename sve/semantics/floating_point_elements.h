// How a floating-point element is computed, and the shapes of the floating-point families.
//
// An operation takes the elements and, as the last argument, the FPSCR. Flags are cumulative, but
// every element must see the same word. So each element gets a fresh copy made from the FPCR, and
// only the flags that it raised are kept.
#pragma once

#include "sve/fp/fp.h"
#include "sve/semantics/elements.h"
#include "sve/semantics/semantics.h"

namespace sve::semantics::floating_point {

// The integer types that hold the bits of an element, by tag.
using F16 = unsigned short;
using F32 = unsigned int;
using D64 = unsigned long;

using V = VecV;
using P = PredV;
using Ctx = CpuContext*;

inline constexpr U32 fpsr_fields = 0xf800009f;  // NZCV, QC, IDC, IXC, UFC, OFC, DZC, IOC

template <class T>
inline constexpr T sign = static_cast<T>(sign_bit(width<T>));

// Computes one element: operation(operands..., FPSCR) under the given controls.
template <class Operation, class... Operands>
auto compute_under(U32 controls, Ctx ctx, Operation operation, Operands... operands) {
  FPSCR local{controls};
  const auto result = operation(operands..., local);
  ctx->fpsr = (ctx->fpsr | local.word) & fpsr_fields;
  return result;
}

template <class Operation, class... Operands>
auto compute(Ctx ctx, Operation operation, Operands... operands) {
  return compute_under(ctx->fpcr, ctx, operation, operands...);
}

// FPConvert. Here half-precision values are always in IEEE format and never flushed, whatever the
// FPCR says.
template <class From, class To>
To convert_format(Ctx ctx, From x, FPRounding rounding) {
  const auto convert = [rounding](From op, FPSCR& f) {
    return FPConvert<From, To>(op, rounding, f);
  };
  return compute_under(ctx->fpcr & ~(FPSCR::AHP | FPSCR::FZ16), ctx, convert, x);
}

// Operations that several families use.
inline constexpr auto add = [](auto a, auto b, FPSCR& f) { return FPAdd(a, b, f); };
inline constexpr auto mul = [](auto a, auto b, FPSCR& f) { return FPMul(a, b, f); };
inline constexpr auto max = [](auto a, auto b, FPSCR& f) { return FPMax(a, b, f); };
inline constexpr auto min = [](auto a, auto b, FPSCR& f) { return FPMin(a, b, f); };
inline constexpr auto maxnum = [](auto a, auto b, FPSCR& f) { return FPMaxNum(a, b, f); };
inline constexpr auto minnum = [](auto a, auto b, FPSCR& f) { return FPMinNum(a, b, f); };

// Without a predicate.

template <class T, class Operation>
[[gnu::noinline]] VecV each1(const V& a, Ctx ctx, Operation op) {
  return unpredicated<T>(ctx, [&](unsigned e) { return compute(ctx, op, a.get<T>(e)); });
}

template <class T, class Operation>
[[gnu::noinline]] VecV each2(const V& a, const V& b, Ctx ctx, Operation op) {
  return unpredicated<T>(ctx,
                         [&](unsigned e) { return compute(ctx, op, a.get<T>(e), b.get<T>(e)); });
}

// Merging.

template <class T, class Operation>
[[gnu::noinline]] VecV merge1(const V& source, const P& g, const V& a, Ctx ctx, Operation op) {
  return merging<T>(source, g, ctx, [&](unsigned e) { return compute(ctx, op, a.get<T>(e)); });
}

template <class T, class Operation>
[[gnu::noinline]] VecV merge2(const V& a, const P& g, const V& b, Ctx ctx, Operation op) {
  return merging<T>(a, g, ctx,
                    [&](unsigned e) { return compute(ctx, op, a.get<T>(e), b.get<T>(e)); });
}

template <class T, class Operation>
[[gnu::noinline]] VecV merge3(const V& a, const P& g, const V& b, const V& d, Ctx ctx,
                              Operation op) {
  return merging<T>(a, g, ctx, [&](unsigned e) {
    return compute(ctx, op, a.get<T>(e), b.get<T>(e), d.get<T>(e));
  });
}

}  // namespace sve::semantics::floating_point
