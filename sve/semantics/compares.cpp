// A compare is one expression on two values of the same signedness.
#include "sve/semantics/compares.h"

#include "sve/semantics/elements.h"
#include "sve/semantics/predicates.h"
#include "sve/state/condition_flags.h"

using namespace sve::semantics;

namespace {

using V = VecV;
using P = PredV;
using Ctx = CpuContext*;

constexpr auto eq = [](auto a, auto b) { return a == b; };
constexpr auto ne = [](auto a, auto b) { return a != b; };
constexpr auto ge = [](auto a, auto b) { return a >= b; };
constexpr auto gt = [](auto a, auto b) { return a > b; };
constexpr auto le = [](auto a, auto b) { return a <= b; };
constexpr auto lt = [](auto a, auto b) { return a < b; };

// Element e is active in g and truth(e).
template <class T, class Truth>
PredV governed(const P& g, Ctx ctx, Truth truth) {
  const PredV result = generated<T>(ctx, [&](unsigned e) { return g.active<T>(e) && truth(e); });
  PredSetNZCV(g, result, width<T>, ctx);
  return result;
}

template <class T, class Condition>
[[gnu::noinline]] PredV compare(const P& g, const V& a, const V& b, Ctx ctx, Condition holds) {
  return governed<T>(g, ctx, [&](unsigned e) { return holds(a.get<T>(e), b.get<T>(e)); });
}

template <class T, class Condition>
[[gnu::noinline]] PredV compare_imm(const P& g, const V& a, T i, Ctx ctx, Condition holds) {
  return governed<T>(g, ctx, [&](unsigned e) { return holds(a.get<T>(e), i); });
}

template <class T, class Condition>
[[gnu::noinline]] PredV compare_wide(const P& g, const V& a, const V& b, Ctx ctx, Condition holds) {
  return governed<T>(
      g, ctx, [&](unsigned e) { return holds(Int(a.get<T>(e)), Int(covering_element<T>(b, e))); });
}

void terminate(bool condition, Ctx ctx) {
  const bool carry = (ctx->nzcv & sve::flag_c) != 0;
  ctx->nzcv &= ~(sve::flag_n | sve::flag_v);
  if (condition) ctx->nzcv |= sve::flag_n;
  if (!condition && !carry) ctx->nzcv |= sve::flag_v;
}

}  // namespace

void VecU32CTermEQ(U32 x, U32 y, Ctx c) { terminate(x == y, c); }
void VecU64CTermEQ(U64 x, U64 y, Ctx c) { terminate(x == y, c); }
void VecU32CTermNE(U32 x, U32 y, Ctx c) { terminate(x != y, c); }
void VecU64CTermNE(U64 x, U64 y, Ctx c) { terminate(x != y, c); }

PredV VecS8CmpFlgEQVVZ(P g, V a, V b, Ctx c) { return compare<S8>(g, a, b, c, eq); }
PredV VecS16CmpFlgEQVVZ(P g, V a, V b, Ctx c) { return compare<S16>(g, a, b, c, eq); }
PredV VecS32CmpFlgEQVVZ(P g, V a, V b, Ctx c) { return compare<S32>(g, a, b, c, eq); }
PredV VecS64CmpFlgEQVVZ(P g, V a, V b, Ctx c) { return compare<S64>(g, a, b, c, eq); }
PredV VecS8CmpFlgNEVVZ(P g, V a, V b, Ctx c) { return compare<S8>(g, a, b, c, ne); }
PredV VecS16CmpFlgNEVVZ(P g, V a, V b, Ctx c) { return compare<S16>(g, a, b, c, ne); }
PredV VecS32CmpFlgNEVVZ(P g, V a, V b, Ctx c) { return compare<S32>(g, a, b, c, ne); }
PredV VecS64CmpFlgNEVVZ(P g, V a, V b, Ctx c) { return compare<S64>(g, a, b, c, ne); }
PredV VecU8CmpFlgGEVVZ(P g, V a, V b, Ctx c) { return compare<U8>(g, a, b, c, ge); }
PredV VecU16CmpFlgGEVVZ(P g, V a, V b, Ctx c) { return compare<U16>(g, a, b, c, ge); }
PredV VecU32CmpFlgGEVVZ(P g, V a, V b, Ctx c) { return compare<U32>(g, a, b, c, ge); }
PredV VecU64CmpFlgGEVVZ(P g, V a, V b, Ctx c) { return compare<U64>(g, a, b, c, ge); }
PredV VecS8CmpFlgGEVVZ(P g, V a, V b, Ctx c) { return compare<S8>(g, a, b, c, ge); }
PredV VecS16CmpFlgGEVVZ(P g, V a, V b, Ctx c) { return compare<S16>(g, a, b, c, ge); }
PredV VecS32CmpFlgGEVVZ(P g, V a, V b, Ctx c) { return compare<S32>(g, a, b, c, ge); }
PredV VecS64CmpFlgGEVVZ(P g, V a, V b, Ctx c) { return compare<S64>(g, a, b, c, ge); }
PredV VecU8CmpFlgGTVVZ(P g, V a, V b, Ctx c) { return compare<U8>(g, a, b, c, gt); }
PredV VecU16CmpFlgGTVVZ(P g, V a, V b, Ctx c) { return compare<U16>(g, a, b, c, gt); }
PredV VecU32CmpFlgGTVVZ(P g, V a, V b, Ctx c) { return compare<U32>(g, a, b, c, gt); }
PredV VecU64CmpFlgGTVVZ(P g, V a, V b, Ctx c) { return compare<U64>(g, a, b, c, gt); }
PredV VecS8CmpFlgGTVVZ(P g, V a, V b, Ctx c) { return compare<S8>(g, a, b, c, gt); }
PredV VecS16CmpFlgGTVVZ(P g, V a, V b, Ctx c) { return compare<S16>(g, a, b, c, gt); }
PredV VecS32CmpFlgGTVVZ(P g, V a, V b, Ctx c) { return compare<S32>(g, a, b, c, gt); }
PredV VecS64CmpFlgGTVVZ(P g, V a, V b, Ctx c) { return compare<S64>(g, a, b, c, gt); }

PredV VecS8CmpFlgEQVIZ(P g, V a, S8 i, Ctx c) { return compare_imm<S8>(g, a, i, c, eq); }
PredV VecS16CmpFlgEQVIZ(P g, V a, S16 i, Ctx c) { return compare_imm<S16>(g, a, i, c, eq); }
PredV VecS32CmpFlgEQVIZ(P g, V a, S32 i, Ctx c) { return compare_imm<S32>(g, a, i, c, eq); }
PredV VecS64CmpFlgEQVIZ(P g, V a, S64 i, Ctx c) { return compare_imm<S64>(g, a, i, c, eq); }
PredV VecS8CmpFlgNEVIZ(P g, V a, S8 i, Ctx c) { return compare_imm<S8>(g, a, i, c, ne); }
PredV VecS16CmpFlgNEVIZ(P g, V a, S16 i, Ctx c) { return compare_imm<S16>(g, a, i, c, ne); }
PredV VecS32CmpFlgNEVIZ(P g, V a, S32 i, Ctx c) { return compare_imm<S32>(g, a, i, c, ne); }
PredV VecS64CmpFlgNEVIZ(P g, V a, S64 i, Ctx c) { return compare_imm<S64>(g, a, i, c, ne); }
PredV VecU8CmpFlgGEVIZ(P g, V a, U8 i, Ctx c) { return compare_imm<U8>(g, a, i, c, ge); }
PredV VecU16CmpFlgGEVIZ(P g, V a, U16 i, Ctx c) { return compare_imm<U16>(g, a, i, c, ge); }
PredV VecU32CmpFlgGEVIZ(P g, V a, U32 i, Ctx c) { return compare_imm<U32>(g, a, i, c, ge); }
PredV VecU64CmpFlgGEVIZ(P g, V a, U64 i, Ctx c) { return compare_imm<U64>(g, a, i, c, ge); }
PredV VecS8CmpFlgGEVIZ(P g, V a, S8 i, Ctx c) { return compare_imm<S8>(g, a, i, c, ge); }
PredV VecS16CmpFlgGEVIZ(P g, V a, S16 i, Ctx c) { return compare_imm<S16>(g, a, i, c, ge); }
PredV VecS32CmpFlgGEVIZ(P g, V a, S32 i, Ctx c) { return compare_imm<S32>(g, a, i, c, ge); }
PredV VecS64CmpFlgGEVIZ(P g, V a, S64 i, Ctx c) { return compare_imm<S64>(g, a, i, c, ge); }
PredV VecU8CmpFlgGTVIZ(P g, V a, U8 i, Ctx c) { return compare_imm<U8>(g, a, i, c, gt); }
PredV VecU16CmpFlgGTVIZ(P g, V a, U16 i, Ctx c) { return compare_imm<U16>(g, a, i, c, gt); }
PredV VecU32CmpFlgGTVIZ(P g, V a, U32 i, Ctx c) { return compare_imm<U32>(g, a, i, c, gt); }
PredV VecU64CmpFlgGTVIZ(P g, V a, U64 i, Ctx c) { return compare_imm<U64>(g, a, i, c, gt); }
PredV VecS8CmpFlgGTVIZ(P g, V a, S8 i, Ctx c) { return compare_imm<S8>(g, a, i, c, gt); }
PredV VecS16CmpFlgGTVIZ(P g, V a, S16 i, Ctx c) { return compare_imm<S16>(g, a, i, c, gt); }
PredV VecS32CmpFlgGTVIZ(P g, V a, S32 i, Ctx c) { return compare_imm<S32>(g, a, i, c, gt); }
PredV VecS64CmpFlgGTVIZ(P g, V a, S64 i, Ctx c) { return compare_imm<S64>(g, a, i, c, gt); }
PredV VecU8CmpFlgLEVIZ(P g, V a, U8 i, Ctx c) { return compare_imm<U8>(g, a, i, c, le); }
PredV VecU16CmpFlgLEVIZ(P g, V a, U16 i, Ctx c) { return compare_imm<U16>(g, a, i, c, le); }
PredV VecU32CmpFlgLEVIZ(P g, V a, U32 i, Ctx c) { return compare_imm<U32>(g, a, i, c, le); }
PredV VecU64CmpFlgLEVIZ(P g, V a, U64 i, Ctx c) { return compare_imm<U64>(g, a, i, c, le); }
PredV VecS8CmpFlgLEVIZ(P g, V a, S8 i, Ctx c) { return compare_imm<S8>(g, a, i, c, le); }
PredV VecS16CmpFlgLEVIZ(P g, V a, S16 i, Ctx c) { return compare_imm<S16>(g, a, i, c, le); }
PredV VecS32CmpFlgLEVIZ(P g, V a, S32 i, Ctx c) { return compare_imm<S32>(g, a, i, c, le); }
PredV VecS64CmpFlgLEVIZ(P g, V a, S64 i, Ctx c) { return compare_imm<S64>(g, a, i, c, le); }
PredV VecU8CmpFlgLTVIZ(P g, V a, U8 i, Ctx c) { return compare_imm<U8>(g, a, i, c, lt); }
PredV VecU16CmpFlgLTVIZ(P g, V a, U16 i, Ctx c) { return compare_imm<U16>(g, a, i, c, lt); }
PredV VecU32CmpFlgLTVIZ(P g, V a, U32 i, Ctx c) { return compare_imm<U32>(g, a, i, c, lt); }
PredV VecU64CmpFlgLTVIZ(P g, V a, U64 i, Ctx c) { return compare_imm<U64>(g, a, i, c, lt); }
PredV VecS8CmpFlgLTVIZ(P g, V a, S8 i, Ctx c) { return compare_imm<S8>(g, a, i, c, lt); }
PredV VecS16CmpFlgLTVIZ(P g, V a, S16 i, Ctx c) { return compare_imm<S16>(g, a, i, c, lt); }
PredV VecS32CmpFlgLTVIZ(P g, V a, S32 i, Ctx c) { return compare_imm<S32>(g, a, i, c, lt); }
PredV VecS64CmpFlgLTVIZ(P g, V a, S64 i, Ctx c) { return compare_imm<S64>(g, a, i, c, lt); }

PredV VecS8CmpFlgEQVWZ(P g, V a, V b, Ctx c) { return compare_wide<S8>(g, a, b, c, eq); }
PredV VecS16CmpFlgEQVWZ(P g, V a, V b, Ctx c) { return compare_wide<S16>(g, a, b, c, eq); }
PredV VecS32CmpFlgEQVWZ(P g, V a, V b, Ctx c) { return compare_wide<S32>(g, a, b, c, eq); }
PredV VecS8CmpFlgNEVWZ(P g, V a, V b, Ctx c) { return compare_wide<S8>(g, a, b, c, ne); }
PredV VecS16CmpFlgNEVWZ(P g, V a, V b, Ctx c) { return compare_wide<S16>(g, a, b, c, ne); }
PredV VecS32CmpFlgNEVWZ(P g, V a, V b, Ctx c) { return compare_wide<S32>(g, a, b, c, ne); }
PredV VecU8CmpFlgGEVWZ(P g, V a, V b, Ctx c) { return compare_wide<U8>(g, a, b, c, ge); }
PredV VecU16CmpFlgGEVWZ(P g, V a, V b, Ctx c) { return compare_wide<U16>(g, a, b, c, ge); }
PredV VecU32CmpFlgGEVWZ(P g, V a, V b, Ctx c) { return compare_wide<U32>(g, a, b, c, ge); }
PredV VecS8CmpFlgGEVWZ(P g, V a, V b, Ctx c) { return compare_wide<S8>(g, a, b, c, ge); }
PredV VecS16CmpFlgGEVWZ(P g, V a, V b, Ctx c) { return compare_wide<S16>(g, a, b, c, ge); }
PredV VecS32CmpFlgGEVWZ(P g, V a, V b, Ctx c) { return compare_wide<S32>(g, a, b, c, ge); }
PredV VecU8CmpFlgGTVWZ(P g, V a, V b, Ctx c) { return compare_wide<U8>(g, a, b, c, gt); }
PredV VecU16CmpFlgGTVWZ(P g, V a, V b, Ctx c) { return compare_wide<U16>(g, a, b, c, gt); }
PredV VecU32CmpFlgGTVWZ(P g, V a, V b, Ctx c) { return compare_wide<U32>(g, a, b, c, gt); }
PredV VecS8CmpFlgGTVWZ(P g, V a, V b, Ctx c) { return compare_wide<S8>(g, a, b, c, gt); }
PredV VecS16CmpFlgGTVWZ(P g, V a, V b, Ctx c) { return compare_wide<S16>(g, a, b, c, gt); }
PredV VecS32CmpFlgGTVWZ(P g, V a, V b, Ctx c) { return compare_wide<S32>(g, a, b, c, gt); }
PredV VecU8CmpFlgLEVWZ(P g, V a, V b, Ctx c) { return compare_wide<U8>(g, a, b, c, le); }
PredV VecU16CmpFlgLEVWZ(P g, V a, V b, Ctx c) { return compare_wide<U16>(g, a, b, c, le); }
PredV VecU32CmpFlgLEVWZ(P g, V a, V b, Ctx c) { return compare_wide<U32>(g, a, b, c, le); }
PredV VecS8CmpFlgLEVWZ(P g, V a, V b, Ctx c) { return compare_wide<S8>(g, a, b, c, le); }
PredV VecS16CmpFlgLEVWZ(P g, V a, V b, Ctx c) { return compare_wide<S16>(g, a, b, c, le); }
PredV VecS32CmpFlgLEVWZ(P g, V a, V b, Ctx c) { return compare_wide<S32>(g, a, b, c, le); }
PredV VecU8CmpFlgLTVWZ(P g, V a, V b, Ctx c) { return compare_wide<U8>(g, a, b, c, lt); }
PredV VecU16CmpFlgLTVWZ(P g, V a, V b, Ctx c) { return compare_wide<U16>(g, a, b, c, lt); }
PredV VecU32CmpFlgLTVWZ(P g, V a, V b, Ctx c) { return compare_wide<U32>(g, a, b, c, lt); }
PredV VecS8CmpFlgLTVWZ(P g, V a, V b, Ctx c) { return compare_wide<S8>(g, a, b, c, lt); }
PredV VecS16CmpFlgLTVWZ(P g, V a, V b, Ctx c) { return compare_wide<S16>(g, a, b, c, lt); }
PredV VecS32CmpFlgLTVWZ(P g, V a, V b, Ctx c) { return compare_wide<S32>(g, a, b, c, lt); }
