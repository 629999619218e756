// Each operation is one call of the floating-point library, or one expression on the bits.
#include <type_traits>

#include "sve/fp/format.h"
#include "sve/semantics/floating_point.h"
#include "sve/semantics/floating_point_elements.h"

using namespace sve;
using namespace sve::semantics;
using namespace sve::semantics::floating_point;

namespace {

constexpr auto sub = [](auto a, auto b, FPSCR& f) { return FPSub(a, b, f); };
constexpr auto subr = [](auto a, auto b, FPSCR& f) { return FPSub(b, a, f); };
constexpr auto mulx = [](auto a, auto b, FPSCR& f) { return FPMulX(a, b, f); };
constexpr auto div_ = [](auto a, auto b, FPSCR& f) { return FPDiv(a, b, f); };
constexpr auto divr = [](auto a, auto b, FPSCR& f) { return FPDiv(b, a, f); };
constexpr auto recps = [](auto a, auto b, FPSCR& f) { return FPRecipStepFused(a, b, f); };
constexpr auto rsqrts = [](auto a, auto b, FPSCR& f) { return FPRSqrtStepFused(a, b, f); };
constexpr auto trismul = [](auto a, auto b, FPSCR& f) { return FPTRISMUL(a, b, f); };
constexpr auto abd = []<class T>(T a, T b, FPSCR& f) { return FPSub(a, b, f) & ~sign<T>; };

// The second operand is a signed integer.
constexpr auto scale = []<class T>(T a, T b, FPSCR& f) {
  const auto exponent = static_cast<std::make_signed_t<T>>(b);
  if constexpr (std::is_same_v<T, F16>) {
    return FPScale16(a, exponent, f);
  } else if constexpr (std::is_same_v<T, F32>) {
    return FPScale32(a, exponent, f);
  } else {
    return FPScale64(a, exponent, f);
  }
};

constexpr auto sqrt_ = [](auto a, FPSCR& f) { return FPSqrt(a, f); };
constexpr auto recpx = [](auto a, FPSCR& f) { return FPRecpX(a, f); };
constexpr auto recpe = [](auto a, FPSCR& f) { return FPRecipEstimate(a, f); };
constexpr auto rsqrte = [](auto a, FPSCR& f) { return FPRSqrtEstimate(a, f); };

template <FPRounding Rounding>
constexpr auto frint = [](auto a, FPSCR& f) { return FPRoundInt(a, Rounding, false, f); };
constexpr auto frinti = [](auto a, FPSCR& f) { return FPRoundInt(a, f.rounding(), false, f); };
constexpr auto frintx = [](auto a, FPSCR& f) { return FPRoundInt(a, f.rounding(), true, f); };

// These take no FPSCR, so they raise no flags.
constexpr auto abs_ = []<class T>(T a) { return a & ~sign<T>; };
constexpr auto neg = [](auto a) { return FPNeg(a); };
constexpr auto expa = [](auto a) { return FPEXPA(a); };

// A constant in single and double precision. For half precision, the single-precision value is
// converted where it is used.
struct constant {
  F32 single;
  D64 dbl;
};
constexpr constant power_of_two(int exponent) {
  return {format<F32>::power_of_two(exponent), format<D64>::power_of_two(exponent)};
}
constexpr constant zero{0, 0};
constexpr constant half = power_of_two(-1);
constexpr constant one = power_of_two(0);
constexpr constant two = power_of_two(1);

template <class T>
T in_format(constant k, Ctx ctx) {
  if constexpr (std::is_same_v<T, F16>) {
    return convert_format<F32, F16>(ctx, k.single, FPRounding_ZERO);
  } else {
    return static_cast<T>(std::is_same_v<T, F32> ? k.single : k.dbl);
  }
}

// The two values of a one-bit immediate.
struct choice {
  constant clear, set;
};
constexpr choice half_or_one{half, one};
constexpr choice half_or_two{half, two};
constexpr choice zero_or_one{zero, one};

// The constant is converted for inactive elements too.
template <class T, class Operation>
[[gnu::noinline]] VecV merge_imm(const V& a, const P& g, bool flag, Ctx ctx, choice values,
                                 Operation op) {
  return unpredicated<T>(ctx, [&](unsigned e) {
    const T i = in_format<T>(flag ? values.set : values.clear, ctx);
    const T x = a.get<T>(e);
    return g.active<T>(e) ? static_cast<T>(compute(ctx, op, x, i)) : x;
  });
}

template <class T, class Operation>
[[gnu::noinline]] VecV merge_bits(const V& source, const P& g, const V& a, Ctx ctx, Operation op) {
  return merging<T>(source, g, ctx, [&](unsigned e) { return op(a.get<T>(e)); });
}

template <class T>
[[gnu::noinline]] VecV exponential(const V& a, Ctx ctx) {
  return unpredicated<T>(ctx, [&](unsigned e) { return expa(a.get<T>(e)); });
}

// FTSSEL: bit 0 of b selects 1.0 instead of a, and bit 1 negates the result.
template <class T>
[[gnu::noinline]] VecV trig_select(const V& a, const V& b, Ctx ctx) {
  constexpr T plus_one = format<T>::power_of_two(0);
  return unpredicated<T>(ctx, [&](unsigned e) {
    const T selector = b.get<T>(e);
    const T x = (selector & 1) != 0 ? plus_one : a.get<T>(e);
    return (selector & 2) != 0 ? FPNeg(x) : x;
  });
}

template <class T>
[[gnu::noinline]] VecV trig_multiply_add(const V& a, const V& b, unsigned i, Ctx ctx) {
  return each2<T>(a, b, ctx, [i](T x, T y, FPSCR& f) { return FPTRIMADD(i, x, y, f); });
}

template <class T>
VecV dup(U64 value, Ctx ctx) {
  return unpredicated<T>(ctx, [value](unsigned) { return value; });
}

template <class T>
[[gnu::noinline]] VecV dup_merging(const V& source, const P& g, U64 value, Ctx ctx) {
  return merging<T>(source, g, ctx, [value](unsigned) { return value; });
}

}  // namespace

VecV VecF16AddVVM(V a, P g, V b, Ctx c) { return merge2<F16>(a, g, b, c, add); }
VecV VecF32AddVVM(V a, P g, V b, Ctx c) { return merge2<F32>(a, g, b, c, add); }
VecV VecD64AddVVM(V a, P g, V b, Ctx c) { return merge2<D64>(a, g, b, c, add); }
VecV VecF16SubVVM(V a, P g, V b, Ctx c) { return merge2<F16>(a, g, b, c, sub); }
VecV VecF32SubVVM(V a, P g, V b, Ctx c) { return merge2<F32>(a, g, b, c, sub); }
VecV VecD64SubVVM(V a, P g, V b, Ctx c) { return merge2<D64>(a, g, b, c, sub); }
VecV VecF16SubRVVM(V a, P g, V b, Ctx c) { return merge2<F16>(a, g, b, c, subr); }
VecV VecF32SubRVVM(V a, P g, V b, Ctx c) { return merge2<F32>(a, g, b, c, subr); }
VecV VecD64SubRVVM(V a, P g, V b, Ctx c) { return merge2<D64>(a, g, b, c, subr); }
VecV VecF16MulVVM(V a, P g, V b, Ctx c) { return merge2<F16>(a, g, b, c, mul); }
VecV VecF32MulVVM(V a, P g, V b, Ctx c) { return merge2<F32>(a, g, b, c, mul); }
VecV VecD64MulVVM(V a, P g, V b, Ctx c) { return merge2<D64>(a, g, b, c, mul); }
VecV VecF16MulXVVM(V a, P g, V b, Ctx c) { return merge2<F16>(a, g, b, c, mulx); }
VecV VecF32MulXVVM(V a, P g, V b, Ctx c) { return merge2<F32>(a, g, b, c, mulx); }
VecV VecD64MulXVVM(V a, P g, V b, Ctx c) { return merge2<D64>(a, g, b, c, mulx); }

VecV VecF16DivVVM(V a, P g, V b, Ctx c) { return merge2<F16>(a, g, b, c, div_); }
VecV VecF32DivVVM(V a, P g, V b, Ctx c) { return merge2<F32>(a, g, b, c, div_); }
VecV VecD64DivVVM(V a, P g, V b, Ctx c) { return merge2<D64>(a, g, b, c, div_); }
VecV VecF16DivRVVM(V a, P g, V b, Ctx c) { return merge2<F16>(a, g, b, c, divr); }
VecV VecF32DivRVVM(V a, P g, V b, Ctx c) { return merge2<F32>(a, g, b, c, divr); }
VecV VecD64DivRVVM(V a, P g, V b, Ctx c) { return merge2<D64>(a, g, b, c, divr); }
VecV VecF16AbdVVM(V a, P g, V b, Ctx c) { return merge2<F16>(a, g, b, c, abd); }
VecV VecF32AbdVVM(V a, P g, V b, Ctx c) { return merge2<F32>(a, g, b, c, abd); }
VecV VecD64AbdVVM(V a, P g, V b, Ctx c) { return merge2<D64>(a, g, b, c, abd); }

VecV VecF16MaxVVM(V a, P g, V b, Ctx c) { return merge2<F16>(a, g, b, c, max); }
VecV VecF32MaxVVM(V a, P g, V b, Ctx c) { return merge2<F32>(a, g, b, c, max); }
VecV VecD64MaxVVM(V a, P g, V b, Ctx c) { return merge2<D64>(a, g, b, c, max); }
VecV VecF16MinVVM(V a, P g, V b, Ctx c) { return merge2<F16>(a, g, b, c, min); }
VecV VecF32MinVVM(V a, P g, V b, Ctx c) { return merge2<F32>(a, g, b, c, min); }
VecV VecD64MinVVM(V a, P g, V b, Ctx c) { return merge2<D64>(a, g, b, c, min); }
VecV VecF16MaxNumVVM(V a, P g, V b, Ctx c) { return merge2<F16>(a, g, b, c, maxnum); }
VecV VecF32MaxNumVVM(V a, P g, V b, Ctx c) { return merge2<F32>(a, g, b, c, maxnum); }
VecV VecD64MaxNumVVM(V a, P g, V b, Ctx c) { return merge2<D64>(a, g, b, c, maxnum); }
VecV VecF16MinNumVVM(V a, P g, V b, Ctx c) { return merge2<F16>(a, g, b, c, minnum); }
VecV VecF32MinNumVVM(V a, P g, V b, Ctx c) { return merge2<F32>(a, g, b, c, minnum); }
VecV VecD64MinNumVVM(V a, P g, V b, Ctx c) { return merge2<D64>(a, g, b, c, minnum); }

VecV VecF16ScaleVVM(V a, P g, V b, Ctx c) { return merge2<F16>(a, g, b, c, scale); }
VecV VecF32ScaleVVM(V a, P g, V b, Ctx c) { return merge2<F32>(a, g, b, c, scale); }
VecV VecD64ScaleVVM(V a, P g, V b, Ctx c) { return merge2<D64>(a, g, b, c, scale); }

VecV VecF16AddVVX(V a, V b, Ctx c) { return each2<F16>(a, b, c, add); }
VecV VecF32AddVVX(V a, V b, Ctx c) { return each2<F32>(a, b, c, add); }
VecV VecD64AddVVX(V a, V b, Ctx c) { return each2<D64>(a, b, c, add); }
VecV VecF16SubVVX(V a, V b, Ctx c) { return each2<F16>(a, b, c, sub); }
VecV VecF32SubVVX(V a, V b, Ctx c) { return each2<F32>(a, b, c, sub); }
VecV VecD64SubVVX(V a, V b, Ctx c) { return each2<D64>(a, b, c, sub); }
VecV VecF16MulVVX(V a, V b, Ctx c) { return each2<F16>(a, b, c, mul); }
VecV VecF32MulVVX(V a, V b, Ctx c) { return each2<F32>(a, b, c, mul); }
VecV VecD64MulVVX(V a, V b, Ctx c) { return each2<D64>(a, b, c, mul); }
VecV VecF16RecpSVV(V a, V b, Ctx c) { return each2<F16>(a, b, c, recps); }
VecV VecF32RecpSVV(V a, V b, Ctx c) { return each2<F32>(a, b, c, recps); }
VecV VecD64RecpSVV(V a, V b, Ctx c) { return each2<D64>(a, b, c, recps); }
VecV VecF16RSqrtSVV(V a, V b, Ctx c) { return each2<F16>(a, b, c, rsqrts); }
VecV VecF32RSqrtSVV(V a, V b, Ctx c) { return each2<F32>(a, b, c, rsqrts); }
VecV VecD64RSqrtSVV(V a, V b, Ctx c) { return each2<D64>(a, b, c, rsqrts); }
VecV VecF16TRISMULVV(V a, V b, Ctx c) { return each2<F16>(a, b, c, trismul); }
VecV VecF32TRISMULVV(V a, V b, Ctx c) { return each2<F32>(a, b, c, trismul); }
VecV VecD64TRISMULVV(V a, V b, Ctx c) { return each2<D64>(a, b, c, trismul); }

VecV VecF16TRISSELVV(V a, V b, Ctx c) { return trig_select<F16>(a, b, c); }
VecV VecF32TRISSELVV(V a, V b, Ctx c) { return trig_select<F32>(a, b, c); }
VecV VecD64TRISSELVV(V a, V b, Ctx c) { return trig_select<D64>(a, b, c); }

VecV VecF16TRIMADDVVI(V a, V b, unsigned i, Ctx c) { return trig_multiply_add<F16>(a, b, i, c); }
VecV VecF32TRIMADDVVI(V a, V b, unsigned i, Ctx c) { return trig_multiply_add<F32>(a, b, i, c); }
VecV VecD64TRIMADDVVI(V a, V b, unsigned i, Ctx c) { return trig_multiply_add<D64>(a, b, i, c); }

VecV VecF16AddVIM(V a, P g, bool i, Ctx c) { return merge_imm<F16>(a, g, i, c, half_or_one, add); }
VecV VecF32AddVIM(V a, P g, bool i, Ctx c) { return merge_imm<F32>(a, g, i, c, half_or_one, add); }
VecV VecD64AddVIM(V a, P g, bool i, Ctx c) { return merge_imm<D64>(a, g, i, c, half_or_one, add); }
VecV VecF16SubVIM(V a, P g, bool i, Ctx c) { return merge_imm<F16>(a, g, i, c, half_or_one, sub); }
VecV VecF32SubVIM(V a, P g, bool i, Ctx c) { return merge_imm<F32>(a, g, i, c, half_or_one, sub); }
VecV VecD64SubVIM(V a, P g, bool i, Ctx c) { return merge_imm<D64>(a, g, i, c, half_or_one, sub); }
VecV VecF16SubRVIM(V a, P g, bool i, Ctx c) {
  return merge_imm<F16>(a, g, i, c, half_or_one, subr);
}
VecV VecF32SubRVIM(V a, P g, bool i, Ctx c) {
  return merge_imm<F32>(a, g, i, c, half_or_one, subr);
}
VecV VecD64SubRVIM(V a, P g, bool i, Ctx c) {
  return merge_imm<D64>(a, g, i, c, half_or_one, subr);
}
VecV VecF16MulVIM(V a, P g, bool i, Ctx c) { return merge_imm<F16>(a, g, i, c, half_or_two, mul); }
VecV VecF32MulVIM(V a, P g, bool i, Ctx c) { return merge_imm<F32>(a, g, i, c, half_or_two, mul); }
VecV VecD64MulVIM(V a, P g, bool i, Ctx c) { return merge_imm<D64>(a, g, i, c, half_or_two, mul); }
VecV VecF16MaxVIM(V a, P g, bool i, Ctx c) { return merge_imm<F16>(a, g, i, c, zero_or_one, max); }
VecV VecF32MaxVIM(V a, P g, bool i, Ctx c) { return merge_imm<F32>(a, g, i, c, zero_or_one, max); }
VecV VecD64MaxVIM(V a, P g, bool i, Ctx c) { return merge_imm<D64>(a, g, i, c, zero_or_one, max); }
VecV VecF16MinVIM(V a, P g, bool i, Ctx c) { return merge_imm<F16>(a, g, i, c, zero_or_one, min); }
VecV VecF32MinVIM(V a, P g, bool i, Ctx c) { return merge_imm<F32>(a, g, i, c, zero_or_one, min); }
VecV VecD64MinVIM(V a, P g, bool i, Ctx c) { return merge_imm<D64>(a, g, i, c, zero_or_one, min); }
VecV VecF16MaxNumVIM(V a, P g, bool i, Ctx c) {
  return merge_imm<F16>(a, g, i, c, zero_or_one, maxnum);
}
VecV VecF32MaxNumVIM(V a, P g, bool i, Ctx c) {
  return merge_imm<F32>(a, g, i, c, zero_or_one, maxnum);
}
VecV VecD64MaxNumVIM(V a, P g, bool i, Ctx c) {
  return merge_imm<D64>(a, g, i, c, zero_or_one, maxnum);
}
VecV VecF16MinNumVIM(V a, P g, bool i, Ctx c) {
  return merge_imm<F16>(a, g, i, c, zero_or_one, minnum);
}
VecV VecF32MinNumVIM(V a, P g, bool i, Ctx c) {
  return merge_imm<F32>(a, g, i, c, zero_or_one, minnum);
}
VecV VecD64MinNumVIM(V a, P g, bool i, Ctx c) {
  return merge_imm<D64>(a, g, i, c, zero_or_one, minnum);
}

VecV VecF16AbsVM(V s, P g, V a, Ctx c) { return merge_bits<F16>(s, g, a, c, abs_); }
VecV VecF32AbsVM(V s, P g, V a, Ctx c) { return merge_bits<F32>(s, g, a, c, abs_); }
VecV VecD64AbsVM(V s, P g, V a, Ctx c) { return merge_bits<D64>(s, g, a, c, abs_); }
VecV VecF16NegVM(V s, P g, V a, Ctx c) { return merge_bits<F16>(s, g, a, c, neg); }
VecV VecF32NegVM(V s, P g, V a, Ctx c) { return merge_bits<F32>(s, g, a, c, neg); }
VecV VecD64NegVM(V s, P g, V a, Ctx c) { return merge_bits<D64>(s, g, a, c, neg); }

VecV VecF16SqrtVM(V s, P g, V a, Ctx c) { return merge1<F16>(s, g, a, c, sqrt_); }
VecV VecF32SqrtVM(V s, P g, V a, Ctx c) { return merge1<F32>(s, g, a, c, sqrt_); }
VecV VecD64SqrtVM(V s, P g, V a, Ctx c) { return merge1<D64>(s, g, a, c, sqrt_); }
VecV VecF16RecpXVM(V s, P g, V a, Ctx c) { return merge1<F16>(s, g, a, c, recpx); }
VecV VecF32RecpXVM(V s, P g, V a, Ctx c) { return merge1<F32>(s, g, a, c, recpx); }
VecV VecD64RecpXVM(V s, P g, V a, Ctx c) { return merge1<D64>(s, g, a, c, recpx); }

VecV VecF16FRIntNVM(V s, P g, V a, Ctx c) {
  return merge1<F16>(s, g, a, c, frint<FPRounding_TIEEVEN>);
}
VecV VecF32FRIntNVM(V s, P g, V a, Ctx c) {
  return merge1<F32>(s, g, a, c, frint<FPRounding_TIEEVEN>);
}
VecV VecD64FRIntNVM(V s, P g, V a, Ctx c) {
  return merge1<D64>(s, g, a, c, frint<FPRounding_TIEEVEN>);
}
VecV VecF16FRIntPVM(V s, P g, V a, Ctx c) {
  return merge1<F16>(s, g, a, c, frint<FPRounding_POSINF>);
}
VecV VecF32FRIntPVM(V s, P g, V a, Ctx c) {
  return merge1<F32>(s, g, a, c, frint<FPRounding_POSINF>);
}
VecV VecD64FRIntPVM(V s, P g, V a, Ctx c) {
  return merge1<D64>(s, g, a, c, frint<FPRounding_POSINF>);
}
VecV VecF16FRIntMVM(V s, P g, V a, Ctx c) {
  return merge1<F16>(s, g, a, c, frint<FPRounding_NEGINF>);
}
VecV VecF32FRIntMVM(V s, P g, V a, Ctx c) {
  return merge1<F32>(s, g, a, c, frint<FPRounding_NEGINF>);
}
VecV VecD64FRIntMVM(V s, P g, V a, Ctx c) {
  return merge1<D64>(s, g, a, c, frint<FPRounding_NEGINF>);
}
VecV VecF16FRIntZVM(V s, P g, V a, Ctx c) {
  return merge1<F16>(s, g, a, c, frint<FPRounding_ZERO>);
}
VecV VecF32FRIntZVM(V s, P g, V a, Ctx c) {
  return merge1<F32>(s, g, a, c, frint<FPRounding_ZERO>);
}
VecV VecD64FRIntZVM(V s, P g, V a, Ctx c) {
  return merge1<D64>(s, g, a, c, frint<FPRounding_ZERO>);
}
VecV VecF16FRIntAVM(V s, P g, V a, Ctx c) {
  return merge1<F16>(s, g, a, c, frint<FPRounding_TIEAWAY>);
}
VecV VecF32FRIntAVM(V s, P g, V a, Ctx c) {
  return merge1<F32>(s, g, a, c, frint<FPRounding_TIEAWAY>);
}
VecV VecD64FRIntAVM(V s, P g, V a, Ctx c) {
  return merge1<D64>(s, g, a, c, frint<FPRounding_TIEAWAY>);
}
VecV VecF16FRIntIVM(V s, P g, V a, Ctx c) { return merge1<F16>(s, g, a, c, frinti); }
VecV VecF32FRIntIVM(V s, P g, V a, Ctx c) { return merge1<F32>(s, g, a, c, frinti); }
VecV VecD64FRIntIVM(V s, P g, V a, Ctx c) { return merge1<D64>(s, g, a, c, frinti); }
VecV VecF16FRIntXVM(V s, P g, V a, Ctx c) { return merge1<F16>(s, g, a, c, frintx); }
VecV VecF32FRIntXVM(V s, P g, V a, Ctx c) { return merge1<F32>(s, g, a, c, frintx); }
VecV VecD64FRIntXVM(V s, P g, V a, Ctx c) { return merge1<D64>(s, g, a, c, frintx); }

VecV VecF16RecpEV(V a, Ctx c) { return each1<F16>(a, c, recpe); }
VecV VecF32RecpEV(V a, Ctx c) { return each1<F32>(a, c, recpe); }
VecV VecD64RecpEV(V a, Ctx c) { return each1<D64>(a, c, recpe); }
VecV VecF16RSqrtEV(V a, Ctx c) { return each1<F16>(a, c, rsqrte); }
VecV VecF32RSqrtEV(V a, Ctx c) { return each1<F32>(a, c, rsqrte); }
VecV VecD64RSqrtEV(V a, Ctx c) { return each1<D64>(a, c, rsqrte); }

VecV VecF16EXPAV(V a, Ctx c) { return exponential<F16>(a, c); }
VecV VecF32EXPAV(V a, Ctx c) { return exponential<F32>(a, c); }
VecV VecD64EXPAV(V a, Ctx c) { return exponential<D64>(a, c); }

VecV VecF16DupI(U64 i, Ctx c) { return dup<F16>(i, c); }
VecV VecF32DupI(U64 i, Ctx c) { return dup<F32>(i, c); }
VecV VecD64DupI(U64 i, Ctx c) { return dup<D64>(i, c); }

VecV VecF16DupIM(V s, P g, U64 i, Ctx c) { return dup_merging<F16>(s, g, i, c); }
VecV VecF32DupIM(V s, P g, U64 i, Ctx c) { return dup_merging<F32>(s, g, i, c); }
VecV VecD64DupIM(V s, P g, U64 i, Ctx c) { return dup_merging<D64>(s, g, i, c); }
