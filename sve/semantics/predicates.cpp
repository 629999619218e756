// Logic works on whole words, since it treats all lanes alike. Everything that depends on the order
// of lanes or elements is a loop in that order.
#include "sve/semantics/predicates.h"

#include <limits>

#include "sve/semantics/active_elements.h"
#include "sve/semantics/elements.h"
#include "sve/state/condition_flags.h"
#include "sve/state/predicate_pattern.h"

using namespace sve::semantics;

namespace {

using P = PredV;
using Context = CpuContext*;

void write_flag(CpuContext* ctx, std::uint32_t flag, bool value) {
  ctx->nzcv = value ? ctx->nzcv | flag : ctx->nzcv & ~flag;
}

// The results of the architecture's FirstActive, NoneActive and LastActive.
struct Test {
  bool first;  // the first active element is true, in its first lane
  bool none;   // no active element is true
  bool last;   // the last active element is true
};

Test test(const PredV& g, const PredV& r, int w, const CpuContext* ctx) {
  Test found{false, true, false};
  const int last = last_active(g, w, ctx);
  for (int e = 0; e <= last; ++e) {
    if (is_active(g, e, w) && element_lanes(r, e, w) != 0) found.none = false;
  }
  if (found.none) return found;
  found.first = is_active(r, first_active(g, w, ctx), w);
  found.last = element_lanes(r, last, w) != 0;
  return found;
}

void set_nzc(const PredV& g, const PredV& r, int w, CpuContext* ctx) {
  const Test found = test(g, r, w, ctx);
  write_flag(ctx, sve::flag_n, found.first);
  write_flag(ctx, sve::flag_z, found.none);
  write_flag(ctx, sve::flag_c, !found.last);
}

void set_nzcv(const PredV& g, const PredV& r, int w, CpuContext* ctx) {
  set_nzc(g, r, w, ctx);
  write_flag(ctx, sve::flag_v, false);
}

// All lanes of the vector.
PredV all_lanes(const CpuContext* ctx) {
  return generated<U8>(ctx, [](unsigned) { return true; });
}

// Sets the flags and returns the result of a Flg function.
PredV with_flags(const PredV& g, const PredV& result, int w, CpuContext* ctx) {
  set_nzcv(g, result, w, ctx);
  return result;
}

PredV with_flags(const PredV& g, const PredV& result, CpuContext* ctx) {
  return with_flags(g, result, 8, ctx);
}

// Lane-by-lane logic. `operation` works on words. Lanes outside the vector become 0.
template <class Operation>
PredV logic(const PredV& g, const PredV& a, const PredV& b, const CpuContext* ctx,
            Operation operation) {
  PredV result = all_lanes(ctx);
  for (int i = 0; i < 4; ++i) result.words[i] &= operation(g.words[i], a.words[i], b.words[i]);
  return result;
}

constexpr auto and_ = [](U64 g, U64 a, U64 b) { return g & a & b; };
constexpr auto bic = [](U64 g, U64 a, U64 b) { return g & a & ~b; };
constexpr auto or_ = [](U64 g, U64 a, U64 b) { return g & (a | b); };
constexpr auto orn = [](U64 g, U64 a, U64 b) { return g & (a | ~b); };
constexpr auto xor_ = [](U64 g, U64 a, U64 b) { return g & (a ^ b); };
constexpr auto nand = [](U64 g, U64 a, U64 b) { return g & ~(a & b); };
constexpr auto nor = [](U64 g, U64 a, U64 b) { return g & ~(a | b); };
constexpr auto select = [](U64 g, U64 a, U64 b) { return (g & a) | (~g & b); };

// Goes through the lanes in ascending order. Those active in g become lane(i). The others come from
// `inactive`.
template <class Lane>
PredV in_lane_order(const PredV& g, const PredV& inactive, const CpuContext* ctx, Lane lane) {
  return generated<U8>(ctx, [&](unsigned i) { return g.lane(i) ? lane(i) : inactive.lane(i); });
}

constexpr PredV none{};

// True up to and including the first active lane where a is set.
PredV break_after(const PredV& inactive, const PredV& g, const PredV& a, const CpuContext* ctx) {
  bool broken = false;
  return in_lane_order(g, inactive, ctx, [&](unsigned i) {
    const bool result = !broken;
    broken = broken || a.lane(i);
    return result;
  });
}

// True up to but not including the first active lane where a is set.
PredV break_before(const PredV& inactive, const PredV& g, const PredV& a, const CpuContext* ctx) {
  bool broken = false;
  return in_lane_order(g, inactive, ctx, [&](unsigned i) {
    broken = broken || a.lane(i);
    return !broken;
  });
}

// The value of p in the last lane active in g, or false if there is none.
bool last_active_lane(const PredV& g, const PredV& p, const CpuContext* ctx) {
  const int last = last_active(g, 8, ctx);
  return last >= 0 && p.lane(static_cast<unsigned>(last));
}

// The propagating breaks continue from where the partition a ended, and stop at b.
[[gnu::noinline]] PredV break_previous_after(const PredV& g, const PredV& a, const PredV& b,
                                             const CpuContext* ctx) {
  bool going = last_active_lane(g, a, ctx);
  return in_lane_order(g, none, ctx, [&](unsigned i) {
    const bool result = going;
    going = going && !b.lane(i);
    return result;
  });
}

[[gnu::noinline]] PredV break_previous_before(const PredV& g, const PredV& a, const PredV& b,
                                              const CpuContext* ctx) {
  bool going = last_active_lane(g, a, ctx);
  return in_lane_order(g, none, ctx, [&](unsigned i) {
    going = going && !b.lane(i);
    return going;
  });
}

// b if a is set in the last active lane, else nothing.
PredV break_next(const PredV& g, const PredV& a, const PredV& b, const CpuContext* ctx) {
  return last_active_lane(g, a, ctx) ? logic(all_lanes(ctx), b, b, ctx, and_) : none;
}

// The lanes of the FFR under g.
PredV ffr_where(const PredV& g, const CpuContext* ctx) {
  return logic(g, ctx->ffr, ctx->ffr, ctx, and_);
}

template <class T>
PredV ptrue(unsigned pattern, CpuContext* ctx) {
  const int n = static_cast<int>(ctx->elements<T>());
  const auto count = static_cast<unsigned>(VecTrueILength(pattern, n));
  return generated<T>(ctx, [count](unsigned e) { return e < count; });
}

template <class T>
PredV ptrues(unsigned pattern, CpuContext* ctx) {
  const PredV result = ptrue<T>(pattern, ctx);
  return with_flags(result, result, width<T>, ctx);
}

// The first element active in g after the last one active in a.
template <class T>
PredV next_active(const PredV& g, const PredV& a, CpuContext* ctx) {
  const int n = static_cast<int>(ctx->elements<T>());
  int next = last_active(a, width<T>, ctx) + 1;
  while (next < n && !g.active<T>(static_cast<unsigned>(next))) ++next;
  const PredV result =
      generated<T>(ctx, [next](unsigned e) { return static_cast<int>(e) == next; });
  return with_flags(g, result, width<T>, ctx);
}

// Permutes: element e of the result is element source(e, n) of the sequence a, b of 2n elements. An
// element takes all its lanes with it, whatever they hold.
template <class T, class Source>
PredV permuted(const PredV& a, const PredV& b, const CpuContext* ctx, Source source) {
  PredV result{};
  const unsigned n = ctx->elements<T>();
  for (unsigned e = 0; e < n; ++e) {
    const unsigned from = source(e, n);
    const PredV& p = from < n ? a : b;
    const U64 lanes = element_lanes(p, static_cast<int>(from % n), width<T>);
    result.words[e * sizeof(T) / 64] |= lanes << (e * sizeof(T) % 64);
  }
  return result;
}

constexpr auto reversed = [](unsigned e, unsigned n) { return n - 1 - e; };
constexpr auto zip1 = [](unsigned e, unsigned n) { return e % 2 * n + e / 2; };
constexpr auto zip2 = [](unsigned e, unsigned n) { return e % 2 * n + n / 2 + e / 2; };
constexpr auto uzp1 = [](unsigned e, unsigned /*n*/) { return 2 * e; };
constexpr auto uzp2 = [](unsigned e, unsigned /*n*/) { return 2 * e + 1; };
constexpr auto trn1 = [](unsigned e, unsigned n) { return e % 2 * n + e / 2 * 2; };
constexpr auto trn2 = [](unsigned e, unsigned n) { return e % 2 * n + e / 2 * 2 + 1; };

PredV unpacked(const PredV& a, unsigned first, const CpuContext* ctx) {
  return generated<U16>(ctx, [&a, first](unsigned e) { return a.lane(first + e); });
}

// The loop of a While: true as long as compare(op1 + e, op2) has been true.
template <class T, class Compare>
PredV while_loop(Int128 op1, Int128 op2, CpuContext* ctx, Compare compare) {
  bool last = true;
  return generated<T>(ctx, [&](unsigned e) {
    last = last && compare(op1 + e, op2);
    return last;
  });
}

template <class T>
PredV while_flags(const PredV& result, CpuContext* ctx) {
  const PredV mask = generated<T>(ctx, [](unsigned) { return true; });
  return with_flags(mask, result, width<T>, ctx);
}

// If op2 is the largest value of its type, a condition that includes equality can never fail.
template <class T, class Scalar>
PredV while_le(Scalar op1, Scalar op2, CpuContext* ctx) {
  const bool always = op2 == std::numeric_limits<Scalar>::max();
  const auto le = [always](Int128 x, Int128 y) { return always || x <= y; };
  return while_flags<T>(while_loop<T>(op1, op2, ctx, le), ctx);
}

template <class T, class Scalar>
PredV while_lt(Scalar op1, Scalar op2, CpuContext* ctx) {
  const auto lt = [](Int128 x, Int128 y) { return x < y; };
  return while_flags<T>(while_loop<T>(op1, op2, ctx, lt), ctx);
}

}  // namespace

void PredSetNZC(PredV g, PredV r, int w, CpuContext* ctx) { set_nzc(g, r, w, ctx); }

void PredSetNZCV(PredV g, PredV r, int w, CpuContext* ctx) { set_nzcv(g, r, w, ctx); }

void PredSetNC(PredV g, PredV r, int w, CpuContext* ctx) {
  if (first_active(g, w, ctx) < 0) return;
  const Test found = test(g, r, w, ctx);
  write_flag(ctx, sve::flag_n, found.first);
  write_flag(ctx, sve::flag_c, !found.last);
}

void PredSetNCV(PredV g, PredV r, int w, CpuContext* ctx) {
  const Test found = test(g, r, w, ctx);
  write_flag(ctx, sve::flag_n, found.first);
  write_flag(ctx, sve::flag_c, !found.last);
  write_flag(ctx, sve::flag_v, false);
}

int FindFirstActive(PredV p, int w, CpuContext* ctx) { return first_active(p, w, ctx); }
int FindLastActive(PredV p, int w, CpuContext* ctx) { return last_active(p, w, ctx); }

int VecTrueILength(unsigned long pattern, int n) {
  return static_cast<int>(
      sve::pattern_count(static_cast<unsigned>(pattern), static_cast<unsigned>(n)));
}

PredV VecPAndPPZ(P g, P a, P b, Context c) { return logic(g, a, b, c, and_); }
PredV VecPBicPPZ(P g, P a, P b, Context c) { return logic(g, a, b, c, bic); }
PredV VecPOrPPZ(P g, P a, P b, Context c) { return logic(g, a, b, c, or_); }
PredV VecPOrNPPZ(P g, P a, P b, Context c) { return logic(g, a, b, c, orn); }
PredV VecPXorPPZ(P g, P a, P b, Context c) { return logic(g, a, b, c, xor_); }
PredV VecPNandPPZ(P g, P a, P b, Context c) { return logic(g, a, b, c, nand); }
PredV VecPNorPPZ(P g, P a, P b, Context c) { return logic(g, a, b, c, nor); }
PredV VecPSelPP(P g, P a, P b, Context c) { return logic(g, a, b, c, select); }

PredV VecPAndFlgPPZ(P g, P a, P b, Context c) { return with_flags(g, logic(g, a, b, c, and_), c); }
PredV VecPBicFlgPPZ(P g, P a, P b, Context c) { return with_flags(g, logic(g, a, b, c, bic), c); }
PredV VecPOrFlgPPZ(P g, P a, P b, Context c) { return with_flags(g, logic(g, a, b, c, or_), c); }
PredV VecPOrNFlgPPZ(P g, P a, P b, Context c) { return with_flags(g, logic(g, a, b, c, orn), c); }
PredV VecPXorFlgPPZ(P g, P a, P b, Context c) { return with_flags(g, logic(g, a, b, c, xor_), c); }
PredV VecPNandFlgPPZ(P g, P a, P b, Context c) { return with_flags(g, logic(g, a, b, c, nand), c); }
PredV VecPNorFlgPPZ(P g, P a, P b, Context c) { return with_flags(g, logic(g, a, b, c, nor), c); }

PredV VecPFalse(CpuContext* /*ctx*/) { return none; }
PredV VecPReadFFSRP(CpuContext* ctx) { return ffr_where(all_lanes(ctx), ctx); }
PredV VecPActualP(P g, Context c) { return ffr_where(g, c); }
PredV VecPActualFlgP(P g, Context c) { return with_flags(g, ffr_where(g, c), c); }
void VecPWriteFFSRP(PredV value, CpuContext* ctx) { ctx->ffr = value; }
void VecPClearFFSR(CpuContext* ctx) { ctx->ffr = all_lanes(ctx); }

void VecPTestPZ(P g, P tested, Context c) { PredSetNZCV(g, tested, 8, c); }

PredV VecPSetFirstActiveP(P g, P a, Context c) {
  const int first = first_active(g, 8, c);
  const PredV result = generated<U8>(
      c, [&a, first](unsigned i) { return static_cast<int>(i) == first || a.lane(i); });
  return with_flags(g, result, c);
}

PredV VecP8GenNextP(P g, P a, Context c) { return next_active<U8>(g, a, c); }
PredV VecP16GenNextP(P g, P a, Context c) { return next_active<U16>(g, a, c); }
PredV VecP32GenNextP(P g, P a, Context c) { return next_active<U32>(g, a, c); }
PredV VecP64GenNextP(P g, P a, Context c) { return next_active<U64>(g, a, c); }

PredV VecPBreakAPZ(P g, P a, Context c) { return break_after(none, g, a, c); }
PredV VecPBreakAPM(P merge, P g, P a, Context c) { return break_after(merge, g, a, c); }
PredV VecPBreakAFlgPZ(P g, P a, Context c) { return with_flags(g, break_after(none, g, a, c), c); }
PredV VecPBreakBPZ(P g, P a, Context c) { return break_before(none, g, a, c); }
PredV VecPBreakBPM(P merge, P g, P a, Context c) { return break_before(merge, g, a, c); }
PredV VecPBreakBFlgPZ(P g, P a, Context c) { return with_flags(g, break_before(none, g, a, c), c); }

PredV VecPBreakNextPZ(P g, P a, P b, Context c) { return break_next(g, a, b, c); }
PredV VecPBreakNextFlgPZ(P g, P a, P b, Context c) {
  return with_flags(all_lanes(c), break_next(g, a, b, c), c);
}
PredV VecPBreakPrevAPZ(P g, P a, P b, Context c) { return break_previous_after(g, a, b, c); }
PredV VecPBreakPrevAFlgPZ(P g, P a, P b, Context c) {
  return with_flags(g, break_previous_after(g, a, b, c), c);
}
PredV VecPBreakPrevBPZ(P g, P a, P b, Context c) { return break_previous_before(g, a, b, c); }
PredV VecPBreakPrevBFlgPZ(P g, P a, P b, Context c) {
  return with_flags(g, break_previous_before(g, a, b, c), c);
}

PredV VecP8TrueI(unsigned pattern, Context c) { return ptrue<U8>(pattern, c); }
PredV VecP16TrueI(unsigned pattern, Context c) { return ptrue<U16>(pattern, c); }
PredV VecP32TrueI(unsigned pattern, Context c) { return ptrue<U32>(pattern, c); }
PredV VecP64TrueI(unsigned pattern, Context c) { return ptrue<U64>(pattern, c); }
PredV VecP8TrueFlgI(unsigned pattern, Context c) { return ptrues<U8>(pattern, c); }
PredV VecP16TrueFlgI(unsigned pattern, Context c) { return ptrues<U16>(pattern, c); }
PredV VecP32TrueFlgI(unsigned pattern, Context c) { return ptrues<U32>(pattern, c); }
PredV VecP64TrueFlgI(unsigned pattern, Context c) { return ptrues<U64>(pattern, c); }

PredV VecP8ReverseP(P a, Context c) { return permuted<U8>(a, a, c, reversed); }
PredV VecP16ReverseP(P a, Context c) { return permuted<U16>(a, a, c, reversed); }
PredV VecP32ReverseP(P a, Context c) { return permuted<U32>(a, a, c, reversed); }
PredV VecP64ReverseP(P a, Context c) { return permuted<U64>(a, a, c, reversed); }
PredV VecPUnpackLoP(P a, Context c) { return unpacked(a, 0, c); }
PredV VecPUnpackHiP(P a, Context c) { return unpacked(a, c->elements<U16>(), c); }
PredV VecP8Zip1PP(P a, P b, Context c) { return permuted<U8>(a, b, c, zip1); }
PredV VecP16Zip1PP(P a, P b, Context c) { return permuted<U16>(a, b, c, zip1); }
PredV VecP32Zip1PP(P a, P b, Context c) { return permuted<U32>(a, b, c, zip1); }
PredV VecP64Zip1PP(P a, P b, Context c) { return permuted<U64>(a, b, c, zip1); }
PredV VecP8Zip2PP(P a, P b, Context c) { return permuted<U8>(a, b, c, zip2); }
PredV VecP16Zip2PP(P a, P b, Context c) { return permuted<U16>(a, b, c, zip2); }
PredV VecP32Zip2PP(P a, P b, Context c) { return permuted<U32>(a, b, c, zip2); }
PredV VecP64Zip2PP(P a, P b, Context c) { return permuted<U64>(a, b, c, zip2); }
PredV VecP8Uzp1PP(P a, P b, Context c) { return permuted<U8>(a, b, c, uzp1); }
PredV VecP16Uzp1PP(P a, P b, Context c) { return permuted<U16>(a, b, c, uzp1); }
PredV VecP32Uzp1PP(P a, P b, Context c) { return permuted<U32>(a, b, c, uzp1); }
PredV VecP64Uzp1PP(P a, P b, Context c) { return permuted<U64>(a, b, c, uzp1); }
PredV VecP8Uzp2PP(P a, P b, Context c) { return permuted<U8>(a, b, c, uzp2); }
PredV VecP16Uzp2PP(P a, P b, Context c) { return permuted<U16>(a, b, c, uzp2); }
PredV VecP32Uzp2PP(P a, P b, Context c) { return permuted<U32>(a, b, c, uzp2); }
PredV VecP64Uzp2PP(P a, P b, Context c) { return permuted<U64>(a, b, c, uzp2); }
PredV VecP8Trn1PP(P a, P b, Context c) { return permuted<U8>(a, b, c, trn1); }
PredV VecP16Trn1PP(P a, P b, Context c) { return permuted<U16>(a, b, c, trn1); }
PredV VecP32Trn1PP(P a, P b, Context c) { return permuted<U32>(a, b, c, trn1); }
PredV VecP64Trn1PP(P a, P b, Context c) { return permuted<U64>(a, b, c, trn1); }
PredV VecP8Trn2PP(P a, P b, Context c) { return permuted<U8>(a, b, c, trn2); }
PredV VecP16Trn2PP(P a, P b, Context c) { return permuted<U16>(a, b, c, trn2); }
PredV VecP32Trn2PP(P a, P b, Context c) { return permuted<U32>(a, b, c, trn2); }
PredV VecP64Trn2PP(P a, P b, Context c) { return permuted<U64>(a, b, c, trn2); }

PredV VecS8While4LESS(S32 op1, S32 op2, Context c) { return while_le<U8>(op1, op2, c); }
PredV VecS16While4LESS(S32 op1, S32 op2, Context c) { return while_le<U16>(op1, op2, c); }
PredV VecS32While4LESS(S32 op1, S32 op2, Context c) { return while_le<U32>(op1, op2, c); }
PredV VecS64While4LESS(S32 op1, S32 op2, Context c) { return while_le<U64>(op1, op2, c); }
PredV VecU8While4LESS(U32 op1, U32 op2, Context c) { return while_le<U8>(op1, op2, c); }
PredV VecU16While4LESS(U32 op1, U32 op2, Context c) { return while_le<U16>(op1, op2, c); }
PredV VecU32While4LESS(U32 op1, U32 op2, Context c) { return while_le<U32>(op1, op2, c); }
PredV VecU64While4LESS(U32 op1, U32 op2, Context c) { return while_le<U64>(op1, op2, c); }
PredV VecS8While8LESS(S64 op1, S64 op2, Context c) { return while_le<U8>(op1, op2, c); }
PredV VecS16While8LESS(S64 op1, S64 op2, Context c) { return while_le<U16>(op1, op2, c); }
PredV VecS32While8LESS(S64 op1, S64 op2, Context c) { return while_le<U32>(op1, op2, c); }
PredV VecS64While8LESS(S64 op1, S64 op2, Context c) { return while_le<U64>(op1, op2, c); }
PredV VecU8While8LESS(U64 op1, U64 op2, Context c) { return while_le<U8>(op1, op2, c); }
PredV VecU16While8LESS(U64 op1, U64 op2, Context c) { return while_le<U16>(op1, op2, c); }
PredV VecU32While8LESS(U64 op1, U64 op2, Context c) { return while_le<U32>(op1, op2, c); }
PredV VecU64While8LESS(U64 op1, U64 op2, Context c) { return while_le<U64>(op1, op2, c); }
PredV VecS8While4LTSS(S32 op1, S32 op2, Context c) { return while_lt<U8>(op1, op2, c); }
PredV VecS16While4LTSS(S32 op1, S32 op2, Context c) { return while_lt<U16>(op1, op2, c); }
PredV VecS32While4LTSS(S32 op1, S32 op2, Context c) { return while_lt<U32>(op1, op2, c); }
PredV VecS64While4LTSS(S32 op1, S32 op2, Context c) { return while_lt<U64>(op1, op2, c); }
PredV VecU8While4LTSS(U32 op1, U32 op2, Context c) { return while_lt<U8>(op1, op2, c); }
PredV VecU16While4LTSS(U32 op1, U32 op2, Context c) { return while_lt<U16>(op1, op2, c); }
PredV VecU32While4LTSS(U32 op1, U32 op2, Context c) { return while_lt<U32>(op1, op2, c); }
PredV VecU64While4LTSS(U32 op1, U32 op2, Context c) { return while_lt<U64>(op1, op2, c); }
PredV VecS8While8LTSS(S64 op1, S64 op2, Context c) { return while_lt<U8>(op1, op2, c); }
PredV VecS16While8LTSS(S64 op1, S64 op2, Context c) { return while_lt<U16>(op1, op2, c); }
PredV VecS32While8LTSS(S64 op1, S64 op2, Context c) { return while_lt<U32>(op1, op2, c); }
PredV VecS64While8LTSS(S64 op1, S64 op2, Context c) { return while_lt<U64>(op1, op2, c); }
PredV VecU8While8LTSS(U64 op1, U64 op2, Context c) { return while_lt<U8>(op1, op2, c); }
PredV VecU16While8LTSS(U64 op1, U64 op2, Context c) { return while_lt<U16>(op1, op2, c); }
PredV VecU32While8LTSS(U64 op1, U64 op2, Context c) { return while_lt<U32>(op1, op2, c); }
PredV VecU64While8LTSS(U64 op1, U64 op2, Context c) { return while_lt<U64>(op1, op2, c); }
