// A source narrower than the element is in its low bits. So is a narrower result, which is extended
// to the element as its type is signed or unsigned.
#include <type_traits>

#include "sve/semantics/floating_point.h"
#include "sve/semantics/floating_point_elements.h"

using namespace sve;
using namespace sve::semantics;
using namespace sve::semantics::floating_point;

namespace {

// SCVTF, UCVTF.
template <class Element, class From, class To>
[[gnu::noinline]] VecV from_integer(const V& source, const P& g, const V& a, Ctx ctx) {
  return merging<Element>(source, g, ctx, [&](unsigned e) {
    const auto convert = [](From x, FPSCR& f) {
      return fplibFixedToFP<To>(static_cast<unsigned long>(x), 0, std::is_unsigned_v<From>,
                                f.rounding(), f);
    };
    return compute(ctx, convert, static_cast<From>(a.get<Element>(e)));
  });
}

// FCVTZS, FCVTZU.
template <class Element, class From, class To>
[[gnu::noinline]] VecV to_integer(const V& source, const P& g, const V& a, Ctx ctx) {
  return merging<Element>(source, g, ctx, [&](unsigned e) {
    const auto convert = [](From x, FPSCR& f) {
      return fplibFPToFixed<From, std::make_unsigned_t<To>>(x, 0, std::is_unsigned_v<To>,
                                                            FPRounding_ZERO, f);
    };
    return static_cast<To>(compute(ctx, convert, static_cast<From>(a.get<Element>(e))));
  });
}

// FCVT. The element is the wider of the two formats.
template <class From, class To>
[[gnu::noinline]] VecV convert(const V& source, const P& g, const V& a, Ctx ctx) {
  using Element = std::conditional_t<(sizeof(From) > sizeof(To)), From, To>;
  return merging<Element>(source, g, ctx, [&](unsigned e) {
    return convert_format<From, To>(ctx, static_cast<From>(a.get<Element>(e)),
                                    FPSCR{ctx->fpcr}.rounding());
  });
}

}  // namespace

VecV VecF16FromS2VM(V s, P g, V a, Ctx c) { return from_integer<U16, S16, F16>(s, g, a, c); }
VecV VecF16FromU2VM(V s, P g, V a, Ctx c) { return from_integer<U16, U16, F16>(s, g, a, c); }
VecV VecF16FromS4VM(V s, P g, V a, Ctx c) { return from_integer<U32, S32, F16>(s, g, a, c); }
VecV VecF16FromU4VM(V s, P g, V a, Ctx c) { return from_integer<U32, U32, F16>(s, g, a, c); }
VecV VecF16FromS8VM(V s, P g, V a, Ctx c) { return from_integer<U64, S64, F16>(s, g, a, c); }
VecV VecF16FromU8VM(V s, P g, V a, Ctx c) { return from_integer<U64, U64, F16>(s, g, a, c); }
VecV VecF32FromS4VM(V s, P g, V a, Ctx c) { return from_integer<U32, S32, F32>(s, g, a, c); }
VecV VecF32FromU4VM(V s, P g, V a, Ctx c) { return from_integer<U32, U32, F32>(s, g, a, c); }
VecV VecF64FromS8VM(V s, P g, V a, Ctx c) { return from_integer<U64, S64, F32>(s, g, a, c); }
VecV VecF64FromU8VM(V s, P g, V a, Ctx c) { return from_integer<U64, U64, F32>(s, g, a, c); }
VecV VecD64FromS4VM(V s, P g, V a, Ctx c) { return from_integer<U64, S32, D64>(s, g, a, c); }
VecV VecD64FromU4VM(V s, P g, V a, Ctx c) { return from_integer<U64, U32, D64>(s, g, a, c); }
VecV VecD64FromS8VM(V s, P g, V a, Ctx c) { return from_integer<U64, S64, D64>(s, g, a, c); }
VecV VecD64FromU8VM(V s, P g, V a, Ctx c) { return from_integer<U64, U64, D64>(s, g, a, c); }

VecV VecS16_2FromHVM(V s, P g, V a, Ctx c) { return to_integer<U16, F16, S16>(s, g, a, c); }
VecV VecU16_2FromHVM(V s, P g, V a, Ctx c) { return to_integer<U16, F16, U16>(s, g, a, c); }
VecV VecS32_4FromHVM(V s, P g, V a, Ctx c) { return to_integer<U32, F16, S32>(s, g, a, c); }
VecV VecU32_4FromHVM(V s, P g, V a, Ctx c) { return to_integer<U32, F16, U32>(s, g, a, c); }
VecV VecS64_8FromHVM(V s, P g, V a, Ctx c) { return to_integer<U64, F16, S64>(s, g, a, c); }
VecV VecU64_8FromHVM(V s, P g, V a, Ctx c) { return to_integer<U64, F16, U64>(s, g, a, c); }
VecV VecS32_4FromFVM(V s, P g, V a, Ctx c) { return to_integer<U32, F32, S32>(s, g, a, c); }
VecV VecU32_4FromFVM(V s, P g, V a, Ctx c) { return to_integer<U32, F32, U32>(s, g, a, c); }
VecV VecS64_8FromFVM(V s, P g, V a, Ctx c) { return to_integer<U64, F32, S64>(s, g, a, c); }
VecV VecU64_8FromFVM(V s, P g, V a, Ctx c) { return to_integer<U64, F32, U64>(s, g, a, c); }
VecV VecS64_4FromDVM(V s, P g, V a, Ctx c) { return to_integer<U64, D64, S32>(s, g, a, c); }
VecV VecU64_4FromDVM(V s, P g, V a, Ctx c) { return to_integer<U64, D64, U32>(s, g, a, c); }
VecV VecS64_8FromDVM(V s, P g, V a, Ctx c) { return to_integer<U64, D64, S64>(s, g, a, c); }
VecV VecU64_8FromDVM(V s, P g, V a, Ctx c) { return to_integer<U64, D64, U64>(s, g, a, c); }

VecV VecH32TruncFVM(V s, P g, V a, Ctx c) { return convert<F32, F16>(s, g, a, c); }
VecV VecH64TruncDVM(V s, P g, V a, Ctx c) { return convert<D64, F16>(s, g, a, c); }
VecV VecF64TruncDVM(V s, P g, V a, Ctx c) { return convert<D64, F32>(s, g, a, c); }
VecV VecF32ExtndHVM(V s, P g, V a, Ctx c) { return convert<F16, F32>(s, g, a, c); }
VecV VecD64ExtndHVM(V s, P g, V a, Ctx c) { return convert<F16, D64>(s, g, a, c); }
VecV VecD64ExtndFVM(V s, P g, V a, Ctx c) { return convert<F32, D64>(s, g, a, c); }
