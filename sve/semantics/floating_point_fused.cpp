// Multiply-add, complex arithmetic, and products by an indexed element. A negation flips a sign bit
// before the operation, so NaN operands come back negated.
#include "sve/semantics/floating_point.h"
#include "sve/semantics/floating_point_elements.h"

using namespace sve;
using namespace sve::semantics;
using namespace sve::semantics::floating_point;

namespace {

// The operands are in the order of the instruction. In these, d is the addend,
constexpr auto fma_ = [](auto d, auto n, auto m, FPSCR& f) { return FPMulAdd(d, n, m, f); };
constexpr auto fms = [](auto d, auto n, auto m, FPSCR& f) { return FPMulAdd(d, FPNeg(n), m, f); };
constexpr auto fnma = [](auto d, auto n, auto m, FPSCR& f) {
  return FPMulAdd(FPNeg(d), FPNeg(n), m, f);
};
constexpr auto fnms = [](auto d, auto n, auto m, FPSCR& f) { return FPMulAdd(FPNeg(d), n, m, f); };
// and in these, d is a multiplicand.
constexpr auto fmadd = [](auto d, auto m, auto a, FPSCR& f) { return fma_(a, d, m, f); };
constexpr auto fmsub = [](auto d, auto m, auto a, FPSCR& f) { return fms(a, d, m, f); };
constexpr auto fnmadd = [](auto d, auto m, auto a, FPSCR& f) { return fnma(a, d, m, f); };
constexpr auto fnmsub = [](auto d, auto m, auto a, FPSCR& f) { return fnms(a, d, m, f); };

// Element `index` of the 128-bit segment that holds element e.
template <class T>
T in_segment(const V& m, unsigned e, unsigned index) {
  constexpr unsigned count = 16 / sizeof(T);
  return m.get<T>(e / count * count + index);
}

template <class T, class Operation>
[[gnu::noinline]] VecV each_indexed(const V& n, const V& m, const V& acc, unsigned i, Ctx ctx,
                                    Operation op) {
  return unpredicated<T>(ctx, [&](unsigned e) {
    return compute(ctx, op, acc.get<T>(e), n.get<T>(e), in_segment<T>(m, e, i));
  });
}

template <class T>
[[gnu::noinline]] VecV mul_indexed(const V& n, const V& m, unsigned i, Ctx ctx) {
  return unpredicated<T>(
      ctx, [&](unsigned e) { return compute(ctx, mul, n.get<T>(e), in_segment<T>(m, e, i)); });
}

// In a complex number the even element is the real part, and the odd one above it is the imaginary
// part.

constexpr bool is_real(unsigned e) { return e % 2 == 0; }

template <class T>
T negated_if(bool negate, T x) {
  return negate ? FPNeg(x) : x;
}

// FCADD: a plus b times i (rotation 0, 90 degrees) or -i (rotation 1, 270 degrees).
template <class T>
[[gnu::noinline]] VecV complex_add(const V& a, const P& g, const V& b, unsigned rotation, Ctx ctx) {
  return merging<T>(a, g, ctx, [&](unsigned e) {
    const bool negate = is_real(e) == (rotation == 0);
    return compute(ctx, add, a.get<T>(e), negated_if(negate, b.get<T>(e ^ 1)));
  });
}

// FCMLA: adds the real part of n times m, or the imaginary part of n times m times i. Rotations 2
// and 3, in units of 90 degrees, negate the product. m_element(e) is the part of m at position e.
template <class T, class MElement>
T complex_multiply_add(const V& acc, const V& n, unsigned rotation, Ctx ctx, unsigned e,
                       MElement m_element) {
  const unsigned part = rotation & 1;
  const bool negate = is_real(e) ? rotation == 1 || rotation == 2 : rotation >= 2;
  return compute(ctx, fma_, acc.get<T>(e), n.get<T>((e & ~1U) + part),
                 negated_if<T>(negate, m_element(e ^ part)));
}

template <class T>
[[gnu::noinline]] VecV complex_mla(const V& acc, const P& g, const V& n, const V& m,
                                   unsigned rotation, Ctx ctx) {
  const auto m_element = [&m](unsigned e) { return m.get<T>(e); };
  return merging<T>(acc, g, ctx, [&](unsigned e) {
    return complex_multiply_add<T>(acc, n, rotation, ctx, e, m_element);
  });
}

// FCMLA with the complex number of index i in each segment of m.
template <class T>
[[gnu::noinline]] VecV complex_mla_indexed(const V& n, const V& m, const V& acc, unsigned rotation,
                                           unsigned i, Ctx ctx) {
  const auto m_element = [&m, i](unsigned e) { return in_segment<T>(m, e, 2 * i + e % 2); };
  return unpredicated<T>(ctx, [&](unsigned e) {
    return complex_multiply_add<T>(acc, n, rotation, ctx, e, m_element);
  });
}

}  // namespace

VecV VecF16FMAVVVM(V d, P g, V n, V m, Ctx c) { return merge3<F16>(d, g, n, m, c, fma_); }
VecV VecF32FMAVVVM(V d, P g, V n, V m, Ctx c) { return merge3<F32>(d, g, n, m, c, fma_); }
VecV VecD64FMAVVVM(V d, P g, V n, V m, Ctx c) { return merge3<D64>(d, g, n, m, c, fma_); }
VecV VecF16FMSVVVM(V d, P g, V n, V m, Ctx c) { return merge3<F16>(d, g, n, m, c, fms); }
VecV VecF32FMSVVVM(V d, P g, V n, V m, Ctx c) { return merge3<F32>(d, g, n, m, c, fms); }
VecV VecD64FMSVVVM(V d, P g, V n, V m, Ctx c) { return merge3<D64>(d, g, n, m, c, fms); }
VecV VecF16FNMAVVVM(V d, P g, V n, V m, Ctx c) { return merge3<F16>(d, g, n, m, c, fnma); }
VecV VecF32FNMAVVVM(V d, P g, V n, V m, Ctx c) { return merge3<F32>(d, g, n, m, c, fnma); }
VecV VecD64FNMAVVVM(V d, P g, V n, V m, Ctx c) { return merge3<D64>(d, g, n, m, c, fnma); }
VecV VecF16FNMSVVVM(V d, P g, V n, V m, Ctx c) { return merge3<F16>(d, g, n, m, c, fnms); }
VecV VecF32FNMSVVVM(V d, P g, V n, V m, Ctx c) { return merge3<F32>(d, g, n, m, c, fnms); }
VecV VecD64FNMSVVVM(V d, P g, V n, V m, Ctx c) { return merge3<D64>(d, g, n, m, c, fnms); }

VecV VecF16FMADDVVVM(V d, P g, V m, V a, Ctx c) { return merge3<F16>(d, g, m, a, c, fmadd); }
VecV VecF32FMADDVVVM(V d, P g, V m, V a, Ctx c) { return merge3<F32>(d, g, m, a, c, fmadd); }
VecV VecD64FMADDVVVM(V d, P g, V m, V a, Ctx c) { return merge3<D64>(d, g, m, a, c, fmadd); }
VecV VecF16FMSUBVVVM(V d, P g, V m, V a, Ctx c) { return merge3<F16>(d, g, m, a, c, fmsub); }
VecV VecF32FMSUBVVVM(V d, P g, V m, V a, Ctx c) { return merge3<F32>(d, g, m, a, c, fmsub); }
VecV VecD64FMSUBVVVM(V d, P g, V m, V a, Ctx c) { return merge3<D64>(d, g, m, a, c, fmsub); }
VecV VecF16FNMADDVVVM(V d, P g, V m, V a, Ctx c) { return merge3<F16>(d, g, m, a, c, fnmadd); }
VecV VecF32FNMADDVVVM(V d, P g, V m, V a, Ctx c) { return merge3<F32>(d, g, m, a, c, fnmadd); }
VecV VecD64FNMADDVVVM(V d, P g, V m, V a, Ctx c) { return merge3<D64>(d, g, m, a, c, fnmadd); }
VecV VecF16FNMSUBVVVM(V d, P g, V m, V a, Ctx c) { return merge3<F16>(d, g, m, a, c, fnmsub); }
VecV VecF32FNMSUBVVVM(V d, P g, V m, V a, Ctx c) { return merge3<F32>(d, g, m, a, c, fnmsub); }
VecV VecD64FNMSUBVVVM(V d, P g, V m, V a, Ctx c) { return merge3<D64>(d, g, m, a, c, fnmsub); }

VecV VecF16FMAVVVIX(V n, V m, V acc, unsigned i, Ctx c) {
  return each_indexed<F16>(n, m, acc, i, c, fma_);
}
VecV VecF32FMAVVVIX(V n, V m, V acc, unsigned i, Ctx c) {
  return each_indexed<F32>(n, m, acc, i, c, fma_);
}
VecV VecD64FMAVVVIX(V n, V m, V acc, unsigned i, Ctx c) {
  return each_indexed<D64>(n, m, acc, i, c, fma_);
}
VecV VecF16FMSVVVIX(V n, V m, V acc, unsigned i, Ctx c) {
  return each_indexed<F16>(n, m, acc, i, c, fms);
}
VecV VecF32FMSVVVIX(V n, V m, V acc, unsigned i, Ctx c) {
  return each_indexed<F32>(n, m, acc, i, c, fms);
}
VecV VecD64FMSVVVIX(V n, V m, V acc, unsigned i, Ctx c) {
  return each_indexed<D64>(n, m, acc, i, c, fms);
}

VecV VecF16MulVVIX(V n, V m, unsigned i, Ctx c) { return mul_indexed<F16>(n, m, i, c); }
VecV VecF32MulVVIX(V n, V m, unsigned i, Ctx c) { return mul_indexed<F32>(n, m, i, c); }
VecV VecD64MulVVIX(V n, V m, unsigned i, Ctx c) { return mul_indexed<D64>(n, m, i, c); }

VecV VecF16FCADDVVM(V a, P g, V b, unsigned r, Ctx c) { return complex_add<F16>(a, g, b, r, c); }
VecV VecF32FCADDVVM(V a, P g, V b, unsigned r, Ctx c) { return complex_add<F32>(a, g, b, r, c); }
VecV VecD64FCADDVVM(V a, P g, V b, unsigned r, Ctx c) { return complex_add<D64>(a, g, b, r, c); }

VecV VecF16FCMLAVVVM(V acc, P g, V n, V m, unsigned r, Ctx c) {
  return complex_mla<F16>(acc, g, n, m, r, c);
}
VecV VecF32FCMLAVVVM(V acc, P g, V n, V m, unsigned r, Ctx c) {
  return complex_mla<F32>(acc, g, n, m, r, c);
}
VecV VecD64FCMLAVVVM(V acc, P g, V n, V m, unsigned r, Ctx c) {
  return complex_mla<D64>(acc, g, n, m, r, c);
}

VecV VecF16FCMLAVVVIX(V n, V m, V acc, unsigned r, unsigned i, Ctx c) {
  return complex_mla_indexed<F16>(n, m, acc, r, i, c);
}
VecV VecF32FCMLAVVVIX(V n, V m, V acc, unsigned r, unsigned i, Ctx c) {
  return complex_mla_indexed<F32>(n, m, acc, r, i, c);
}
