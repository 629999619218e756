// Less-than compares with zero use those of the library with the operands swapped.
#include "sve/semantics/floating_point.h"
#include "sve/semantics/floating_point_elements.h"

using namespace sve;
using namespace sve::semantics;
using namespace sve::semantics::floating_point;

namespace {

constexpr auto eq = [](auto a, auto b, FPSCR& f) { return FPCompareEQ(a, b, f); };
constexpr auto ne = [](auto a, auto b, FPSCR& f) { return !FPCompareEQ(a, b, f); };
constexpr auto ge = [](auto a, auto b, FPSCR& f) { return FPCompareGE(a, b, f); };
constexpr auto gt = [](auto a, auto b, FPSCR& f) { return FPCompareGT(a, b, f); };
constexpr auto le = [](auto a, auto b, FPSCR& f) { return FPCompareGE(b, a, f); };
constexpr auto lt = [](auto a, auto b, FPSCR& f) { return FPCompareGT(b, a, f); };
constexpr auto un = [](auto a, auto b, FPSCR& f) { return FPCompareUN(a, b, f); };

template <class T>
T magnitude(T x) {
  return static_cast<T>(x & ~sign<T>);
}
constexpr auto ac_ge = [](auto a, auto b, FPSCR& f) { return ge(magnitude(a), magnitude(b), f); };
constexpr auto ac_gt = [](auto a, auto b, FPSCR& f) { return gt(magnitude(a), magnitude(b), f); };

template <class T, class Condition>
[[gnu::noinline]] PredV compare(const P& g, const V& a, const V& b, Ctx ctx, Condition holds) {
  return generated<T>(ctx, [&](unsigned e) {
    return g.active<T>(e) && compute(ctx, holds, a.get<T>(e), b.get<T>(e));
  });
}

template <class T, class Condition>
[[gnu::noinline]] PredV compare_zero(const P& g, const V& a, Ctx ctx, Condition holds) {
  return generated<T>(
      ctx, [&](unsigned e) { return g.active<T>(e) && compute(ctx, holds, a.get<T>(e), T{0}); });
}

}  // namespace

PredV VecF16CmpEQVVZ(P g, V a, V b, Ctx c) { return compare<F16>(g, a, b, c, eq); }
PredV VecF32CmpEQVVZ(P g, V a, V b, Ctx c) { return compare<F32>(g, a, b, c, eq); }
PredV VecD64CmpEQVVZ(P g, V a, V b, Ctx c) { return compare<D64>(g, a, b, c, eq); }
PredV VecF16CmpNEVVZ(P g, V a, V b, Ctx c) { return compare<F16>(g, a, b, c, ne); }
PredV VecF32CmpNEVVZ(P g, V a, V b, Ctx c) { return compare<F32>(g, a, b, c, ne); }
PredV VecD64CmpNEVVZ(P g, V a, V b, Ctx c) { return compare<D64>(g, a, b, c, ne); }
PredV VecF16CmpGEVVZ(P g, V a, V b, Ctx c) { return compare<F16>(g, a, b, c, ge); }
PredV VecF32CmpGEVVZ(P g, V a, V b, Ctx c) { return compare<F32>(g, a, b, c, ge); }
PredV VecD64CmpGEVVZ(P g, V a, V b, Ctx c) { return compare<D64>(g, a, b, c, ge); }
PredV VecF16CmpGTVVZ(P g, V a, V b, Ctx c) { return compare<F16>(g, a, b, c, gt); }
PredV VecF32CmpGTVVZ(P g, V a, V b, Ctx c) { return compare<F32>(g, a, b, c, gt); }
PredV VecD64CmpGTVVZ(P g, V a, V b, Ctx c) { return compare<D64>(g, a, b, c, gt); }
PredV VecF16CmpUNVVZ(P g, V a, V b, Ctx c) { return compare<F16>(g, a, b, c, un); }
PredV VecF32CmpUNVVZ(P g, V a, V b, Ctx c) { return compare<F32>(g, a, b, c, un); }
PredV VecD64CmpUNVVZ(P g, V a, V b, Ctx c) { return compare<D64>(g, a, b, c, un); }

PredV VecF16AcGEVVZ(P g, V a, V b, Ctx c) { return compare<F16>(g, a, b, c, ac_ge); }
PredV VecF32AcGEVVZ(P g, V a, V b, Ctx c) { return compare<F32>(g, a, b, c, ac_ge); }
PredV VecD64AcGEVVZ(P g, V a, V b, Ctx c) { return compare<D64>(g, a, b, c, ac_ge); }
PredV VecF16AcGTVVZ(P g, V a, V b, Ctx c) { return compare<F16>(g, a, b, c, ac_gt); }
PredV VecF32AcGTVVZ(P g, V a, V b, Ctx c) { return compare<F32>(g, a, b, c, ac_gt); }
PredV VecD64AcGTVVZ(P g, V a, V b, Ctx c) { return compare<D64>(g, a, b, c, ac_gt); }

PredV VecF16CmpEQV0Z(P g, V a, Ctx c) { return compare_zero<F16>(g, a, c, eq); }
PredV VecF32CmpEQV0Z(P g, V a, Ctx c) { return compare_zero<F32>(g, a, c, eq); }
PredV VecD64CmpEQV0Z(P g, V a, Ctx c) { return compare_zero<D64>(g, a, c, eq); }
PredV VecF16CmpNEV0Z(P g, V a, Ctx c) { return compare_zero<F16>(g, a, c, ne); }
PredV VecF32CmpNEV0Z(P g, V a, Ctx c) { return compare_zero<F32>(g, a, c, ne); }
PredV VecD64CmpNEV0Z(P g, V a, Ctx c) { return compare_zero<D64>(g, a, c, ne); }
PredV VecF16CmpGEV0Z(P g, V a, Ctx c) { return compare_zero<F16>(g, a, c, ge); }
PredV VecF32CmpGEV0Z(P g, V a, Ctx c) { return compare_zero<F32>(g, a, c, ge); }
PredV VecD64CmpGEV0Z(P g, V a, Ctx c) { return compare_zero<D64>(g, a, c, ge); }
PredV VecF16CmpGTV0Z(P g, V a, Ctx c) { return compare_zero<F16>(g, a, c, gt); }
PredV VecF32CmpGTV0Z(P g, V a, Ctx c) { return compare_zero<F32>(g, a, c, gt); }
PredV VecD64CmpGTV0Z(P g, V a, Ctx c) { return compare_zero<D64>(g, a, c, gt); }
PredV VecF16CmpLEV0Z(P g, V a, Ctx c) { return compare_zero<F16>(g, a, c, le); }
PredV VecF32CmpLEV0Z(P g, V a, Ctx c) { return compare_zero<F32>(g, a, c, le); }
PredV VecD64CmpLEV0Z(P g, V a, Ctx c) { return compare_zero<D64>(g, a, c, le); }
PredV VecF16CmpLTV0Z(P g, V a, Ctx c) { return compare_zero<F16>(g, a, c, lt); }
PredV VecF32CmpLTV0Z(P g, V a, Ctx c) { return compare_zero<F32>(g, a, c, lt); }
PredV VecD64CmpLTV0Z(P g, V a, Ctx c) { return compare_zero<D64>(g, a, c, lt); }
