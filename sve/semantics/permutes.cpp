// Each operation is a rule for the index of the source element, or a fold over the active elements.
#include "sve/semantics/permutes.h"

#include <algorithm>
#include <limits>

#include "sve/semantics/active_elements.h"
#include "sve/semantics/elements.h"

using namespace sve::semantics;

namespace {

using V = VecV;
using P = PredV;
using Ctx = CpuContext*;

struct Quadword {
  U64 low, high;
};

// Every element e of the result is source(e).
template <class T, class Source>
VecV each(Ctx ctx, Source source) {
  VecV result;
  const unsigned n = ctx->elements<T>();
  for (unsigned e = 0; e < n; ++e) result.set<T>(e, source(e));
  return result;
}

// Element i of the sequence of a followed by b.
template <class T>
T of_both(const V& a, const V& b, unsigned i, Ctx ctx) {
  const unsigned n = ctx->elements<T>();
  return i < n ? a.get<T>(i) : b.get<T>(i - n);
}

template <class T>
[[gnu::noinline]] VecV compress(const P& g, const V& a, Ctx ctx) {
  VecV result = each<T>(ctx, [](unsigned) { return T{0}; });
  const unsigned n = ctx->elements<T>();
  for (unsigned e = 0, packed = 0; e < n; ++e) {
    if (g.active<T>(e)) result.set<T>(packed++, a.get<T>(e));
  }
  return result;
}

template <class T>
[[gnu::noinline]] VecV splice(const P& g, const V& a, const V& b, Ctx ctx) {
  const int first = first_active(g, width<T>, ctx);
  const int length = first < 0 ? 0 : last_active(g, width<T>, ctx) - first + 1;
  return each<T>(ctx, [&](unsigned e) {
    const int i = static_cast<int>(e);
    return i < length ? a.get<T>(e + static_cast<unsigned>(first))
                      : b.get<T>(static_cast<unsigned>(i - length));
  });
}

template <class T>
VecV insert(const V& a, U64 x, Ctx ctx) {
  return each<T>(ctx, [&](unsigned e) { return e == 0 ? static_cast<T>(x) : a.get<T>(e - 1); });
}

template <class T>
VecV transpose(const V& a, const V& b, unsigned part, Ctx ctx) {
  return each<T>(ctx, [&](unsigned e) { return (e % 2 == 0 ? a : b).get<T>((e & ~1U) + part); });
}

template <class T>
[[gnu::noinline]] VecV unzip(const V& a, const V& b, unsigned part, Ctx ctx) {
  return each<T>(ctx, [&](unsigned e) { return of_both<T>(a, b, 2 * e + part, ctx); });
}

template <class T>
[[gnu::noinline]] VecV zip(const V& a, const V& b, unsigned part, Ctx ctx) {
  const unsigned start = part * (ctx->elements<T>() / 2);
  return each<T>(ctx, [&](unsigned e) { return (e % 2 == 0 ? a : b).get<T>(start + e / 2); });
}

template <class T>
[[gnu::noinline]] VecV table(const V& a, const V& indices, Ctx ctx) {
  return each<T>(ctx, [&](unsigned e) {
    const T index = indices.get<T>(e);
    return index < ctx->elements<T>() ? a.get<T>(static_cast<unsigned>(index)) : T{0};
  });
}

template <class T, class Narrow>
[[gnu::noinline]] VecV unpack(const V& a, unsigned half, Ctx ctx) {
  const unsigned start = half * ctx->elements<T>();
  return each<T>(ctx, [&](unsigned e) { return T{a.get<Narrow>(start + e)}; });
}

template <class T>
[[gnu::noinline]] VecV reverse(const V& a, Ctx ctx) {
  return each<T>(ctx, [&](unsigned e) { return a.get<T>(ctx->elements<T>() - 1 - e); });
}

[[gnu::noinline]] VecV slide(const V& a, const V& b, unsigned i, Ctx ctx) {
  const unsigned start = i < ctx->elements<U8>() ? i : 0;
  return each<U8>(ctx, [&](unsigned e) { return of_both<U8>(a, b, start + e, ctx); });
}

template <class T>
[[gnu::noinline]] VecV broadcast_element(const V& a, unsigned i, Ctx ctx) {
  const T value = i < ctx->elements<T>() ? a.get<T>(i) : T{};
  return each<T>(ctx, [&](unsigned) { return value; });
}

// If no element is active, the last one counts as found, so that the one after it is element 0.
template <class T>
unsigned last_index(const P& g, Ctx ctx) {
  const int last = last_active(g, width<T>, ctx);
  return last < 0 ? ctx->elements<T>() - 1 : static_cast<unsigned>(last);
}

template <class T>
[[gnu::noinline]] U64 last(const P& g, const V& a, Ctx ctx) {
  return a.get<T>(last_index<T>(g, ctx));
}

template <class T>
[[gnu::noinline]] U64 last_after(const P& g, const V& a, Ctx ctx) {
  return a.get<T>((last_index<T>(g, ctx) + 1) % ctx->elements<T>());
}

[[gnu::noinline]] U64 conditional(const P& g, U64 old, U64 found, int element_width, Ctx ctx) {
  return last_active(g, element_width, ctx) < 0 ? old : found;
}

template <class T>
[[gnu::noinline]] VecV conditional_broadcast_of(const P& g, const V& old, U64 found, Ctx ctx) {
  const bool any = last_active(g, width<T>, ctx) >= 0;
  return each<T>(ctx, [&](unsigned e) { return any ? static_cast<T>(found) : old.get<T>(e); });
}

// Folds the active elements into `start`. The result is extended as its type says.
template <class T, class Accumulator, class Fold>
[[gnu::noinline]] U64 reduce(const P& g, const V& a, Accumulator start, Ctx ctx, Fold fold) {
  const unsigned n = ctx->elements<T>();
  for (unsigned e = 0; e < n; ++e) {
    if (g.active<T>(e)) start = static_cast<Accumulator>(fold(start, a.get<T>(e)));
  }
  return static_cast<U64>(start);
}

template <class T>
constexpr T lowest = std::numeric_limits<T>::lowest();
template <class T>
constexpr T highest = std::numeric_limits<T>::max();

constexpr auto sum = [](U64 total, auto x) { return total + static_cast<U64>(x); };
constexpr auto and_ = [](auto a, auto b) { return a & b; };
constexpr auto or_ = [](auto a, auto b) { return a | b; };
constexpr auto xor_ = [](auto a, auto b) { return a ^ b; };
constexpr auto max = [](auto a, auto b) { return std::max(a, b); };
constexpr auto min = [](auto a, auto b) { return std::min(a, b); };

}  // namespace

VecV VecU32CompressVV(P g, V a, Ctx c) { return compress<U32>(g, a, c); }
VecV VecU64CompressVV(P g, V a, Ctx c) { return compress<U64>(g, a, c); }

VecV VecU8SpliceVV(P g, V a, V b, Ctx c) { return splice<U8>(g, a, b, c); }
VecV VecU16SpliceVV(P g, V a, V b, Ctx c) { return splice<U16>(g, a, b, c); }
VecV VecU32SpliceVV(P g, V a, V b, Ctx c) { return splice<U32>(g, a, b, c); }
VecV VecU64SpliceVV(P g, V a, V b, Ctx c) { return splice<U64>(g, a, b, c); }

VecV VecU8InsertS(V a, U64 x, Ctx c) { return insert<U8>(a, x, c); }
VecV VecU16InsertS(V a, U64 x, Ctx c) { return insert<U16>(a, x, c); }
VecV VecU32InsertS(V a, U64 x, Ctx c) { return insert<U32>(a, x, c); }
VecV VecU64InsertS(V a, U64 x, Ctx c) { return insert<U64>(a, x, c); }
VecV VecB8InsertS(V a, U64 x, Ctx c) { return insert<U8>(a, x, c); }
VecV VecH16InsertS(V a, U64 x, Ctx c) { return insert<U16>(a, x, c); }
VecV VecF32InsertS(V a, U64 x, Ctx c) { return insert<U32>(a, x, c); }
VecV VecD64InsertS(V a, U64 x, Ctx c) { return insert<U64>(a, x, c); }

VecV VecU8Trn1VV(V a, V b, Ctx c) { return transpose<U8>(a, b, 0, c); }
VecV VecU16Trn1VV(V a, V b, Ctx c) { return transpose<U16>(a, b, 0, c); }
VecV VecU32Trn1VV(V a, V b, Ctx c) { return transpose<U32>(a, b, 0, c); }
VecV VecU64Trn1VV(V a, V b, Ctx c) { return transpose<U64>(a, b, 0, c); }
VecV VecU8Trn2VV(V a, V b, Ctx c) { return transpose<U8>(a, b, 1, c); }
VecV VecU16Trn2VV(V a, V b, Ctx c) { return transpose<U16>(a, b, 1, c); }
VecV VecU32Trn2VV(V a, V b, Ctx c) { return transpose<U32>(a, b, 1, c); }
VecV VecU64Trn2VV(V a, V b, Ctx c) { return transpose<U64>(a, b, 1, c); }

VecV VecU8Uzp1VV(V a, V b, Ctx c) { return unzip<U8>(a, b, 0, c); }
VecV VecU16Uzp1VV(V a, V b, Ctx c) { return unzip<U16>(a, b, 0, c); }
VecV VecU32Uzp1VV(V a, V b, Ctx c) { return unzip<U32>(a, b, 0, c); }
VecV VecU64Uzp1VV(V a, V b, Ctx c) { return unzip<U64>(a, b, 0, c); }
VecV VecU8Uzp2VV(V a, V b, Ctx c) { return unzip<U8>(a, b, 1, c); }
VecV VecU16Uzp2VV(V a, V b, Ctx c) { return unzip<U16>(a, b, 1, c); }
VecV VecU32Uzp2VV(V a, V b, Ctx c) { return unzip<U32>(a, b, 1, c); }
VecV VecU64Uzp2VV(V a, V b, Ctx c) { return unzip<U64>(a, b, 1, c); }

VecV VecU8Zip1VV(V a, V b, Ctx c) { return zip<U8>(a, b, 0, c); }
VecV VecU16Zip1VV(V a, V b, Ctx c) { return zip<U16>(a, b, 0, c); }
VecV VecU32Zip1VV(V a, V b, Ctx c) { return zip<U32>(a, b, 0, c); }
VecV VecU64Zip1VV(V a, V b, Ctx c) { return zip<U64>(a, b, 0, c); }
VecV VecU8Zip2VV(V a, V b, Ctx c) { return zip<U8>(a, b, 1, c); }
VecV VecU16Zip2VV(V a, V b, Ctx c) { return zip<U16>(a, b, 1, c); }
VecV VecU32Zip2VV(V a, V b, Ctx c) { return zip<U32>(a, b, 1, c); }
VecV VecU64Zip2VV(V a, V b, Ctx c) { return zip<U64>(a, b, 1, c); }

VecV VecU8TblVV(V a, V b, Ctx c) { return table<U8>(a, b, c); }
VecV VecU16TblVV(V a, V b, Ctx c) { return table<U16>(a, b, c); }
VecV VecU32TblVV(V a, V b, Ctx c) { return table<U32>(a, b, c); }
VecV VecU64TblVV(V a, V b, Ctx c) { return table<U64>(a, b, c); }

VecV VecU16UnpackLoV(V a, Ctx c) { return unpack<U16, U8>(a, 0, c); }
VecV VecU32UnpackLoV(V a, Ctx c) { return unpack<U32, U16>(a, 0, c); }
VecV VecU64UnpackLoV(V a, Ctx c) { return unpack<U64, U32>(a, 0, c); }
VecV VecS16UnpackLoV(V a, Ctx c) { return unpack<S16, S8>(a, 0, c); }
VecV VecS32UnpackLoV(V a, Ctx c) { return unpack<S32, S16>(a, 0, c); }
VecV VecS64UnpackLoV(V a, Ctx c) { return unpack<S64, S32>(a, 0, c); }
VecV VecU16UnpackHiV(V a, Ctx c) { return unpack<U16, U8>(a, 1, c); }
VecV VecU32UnpackHiV(V a, Ctx c) { return unpack<U32, U16>(a, 1, c); }
VecV VecU64UnpackHiV(V a, Ctx c) { return unpack<U64, U32>(a, 1, c); }
VecV VecS16UnpackHiV(V a, Ctx c) { return unpack<S16, S8>(a, 1, c); }
VecV VecS32UnpackHiV(V a, Ctx c) { return unpack<S32, S16>(a, 1, c); }
VecV VecS64UnpackHiV(V a, Ctx c) { return unpack<S64, S32>(a, 1, c); }

VecV VecU8ReverseV(V a, Ctx c) { return reverse<U8>(a, c); }
VecV VecU16ReverseV(V a, Ctx c) { return reverse<U16>(a, c); }
VecV VecU32ReverseV(V a, Ctx c) { return reverse<U32>(a, c); }
VecV VecU64ReverseV(V a, Ctx c) { return reverse<U64>(a, c); }

VecV VecU8SlideVI(V a, V b, unsigned i, Ctx c) { return slide(a, b, i, c); }

VecV VecU8ExtDupVI(V a, unsigned i, Ctx c) { return broadcast_element<U8>(a, i, c); }
VecV VecU16ExtDupVI(V a, unsigned i, Ctx c) { return broadcast_element<U16>(a, i, c); }
VecV VecU32ExtDupVI(V a, unsigned i, Ctx c) { return broadcast_element<U32>(a, i, c); }
VecV VecU64ExtDupVI(V a, unsigned i, Ctx c) { return broadcast_element<U64>(a, i, c); }
VecV VecU128ExtDupVI(V a, unsigned i, Ctx c) { return broadcast_element<Quadword>(a, i, c); }

U64 VecU8LastAV(P g, V a, Ctx c) { return last_after<U8>(g, a, c); }
U64 VecU16LastAV(P g, V a, Ctx c) { return last_after<U16>(g, a, c); }
U64 VecU32LastAV(P g, V a, Ctx c) { return last_after<U32>(g, a, c); }
U64 VecU64LastAV(P g, V a, Ctx c) { return last_after<U64>(g, a, c); }
U64 VecB8LastAV(P g, V a, Ctx c) { return last_after<U8>(g, a, c); }
U64 VecH16LastAV(P g, V a, Ctx c) { return last_after<U16>(g, a, c); }
U64 VecF32LastAV(P g, V a, Ctx c) { return last_after<U32>(g, a, c); }
U64 VecD64LastAV(P g, V a, Ctx c) { return last_after<U64>(g, a, c); }

U64 VecU8LastBV(P g, V a, Ctx c) { return last<U8>(g, a, c); }
U64 VecU16LastBV(P g, V a, Ctx c) { return last<U16>(g, a, c); }
U64 VecU32LastBV(P g, V a, Ctx c) { return last<U32>(g, a, c); }
U64 VecU64LastBV(P g, V a, Ctx c) { return last<U64>(g, a, c); }
U64 VecB8LastBV(P g, V a, Ctx c) { return last<U8>(g, a, c); }
U64 VecH16LastBV(P g, V a, Ctx c) { return last<U16>(g, a, c); }
U64 VecF32LastBV(P g, V a, Ctx c) { return last<U32>(g, a, c); }
U64 VecD64LastBV(P g, V a, Ctx c) { return last<U64>(g, a, c); }

U64 VecU8CondXASV(P g, U64 old, V a, Ctx c) {
  return conditional(g, old, last_after<U8>(g, a, c), width<U8>, c);
}
U64 VecU16CondXASV(P g, U64 old, V a, Ctx c) {
  return conditional(g, old, last_after<U16>(g, a, c), width<U16>, c);
}
U64 VecU32CondXASV(P g, U64 old, V a, Ctx c) {
  return conditional(g, old, last_after<U32>(g, a, c), width<U32>, c);
}
U64 VecU64CondXASV(P g, U64 old, V a, Ctx c) {
  return conditional(g, old, last_after<U64>(g, a, c), width<U64>, c);
}
U64 VecB8CondXASV(P g, U64 old, V a, Ctx c) {
  return conditional(g, old, last_after<U8>(g, a, c), width<U8>, c);
}
U64 VecH16CondXASV(P g, U64 old, V a, Ctx c) {
  return conditional(g, old, last_after<U16>(g, a, c), width<U16>, c);
}
U64 VecF32CondXASV(P g, U64 old, V a, Ctx c) {
  return conditional(g, old, last_after<U32>(g, a, c), width<U32>, c);
}
U64 VecD64CondXASV(P g, U64 old, V a, Ctx c) {
  return conditional(g, old, last_after<U64>(g, a, c), width<U64>, c);
}
U64 VecU8CondXBSV(P g, U64 old, V a, Ctx c) {
  return conditional(g, old, last<U8>(g, a, c), width<U8>, c);
}
U64 VecU16CondXBSV(P g, U64 old, V a, Ctx c) {
  return conditional(g, old, last<U16>(g, a, c), width<U16>, c);
}
U64 VecU32CondXBSV(P g, U64 old, V a, Ctx c) {
  return conditional(g, old, last<U32>(g, a, c), width<U32>, c);
}
U64 VecU64CondXBSV(P g, U64 old, V a, Ctx c) {
  return conditional(g, old, last<U64>(g, a, c), width<U64>, c);
}
U64 VecB8CondXBSV(P g, U64 old, V a, Ctx c) {
  return conditional(g, old, last<U8>(g, a, c), width<U8>, c);
}
U64 VecH16CondXBSV(P g, U64 old, V a, Ctx c) {
  return conditional(g, old, last<U16>(g, a, c), width<U16>, c);
}
U64 VecF32CondXBSV(P g, U64 old, V a, Ctx c) {
  return conditional(g, old, last<U32>(g, a, c), width<U32>, c);
}
U64 VecD64CondXBSV(P g, U64 old, V a, Ctx c) {
  return conditional(g, old, last<U64>(g, a, c), width<U64>, c);
}

VecV VecU8VCondXAVV(P g, V old, V a, Ctx c) {
  return conditional_broadcast_of<U8>(g, old, last_after<U8>(g, a, c), c);
}
VecV VecU16VCondXAVV(P g, V old, V a, Ctx c) {
  return conditional_broadcast_of<U16>(g, old, last_after<U16>(g, a, c), c);
}
VecV VecU32VCondXAVV(P g, V old, V a, Ctx c) {
  return conditional_broadcast_of<U32>(g, old, last_after<U32>(g, a, c), c);
}
VecV VecU64VCondXAVV(P g, V old, V a, Ctx c) {
  return conditional_broadcast_of<U64>(g, old, last_after<U64>(g, a, c), c);
}
VecV VecU8VCondXBVV(P g, V old, V a, Ctx c) {
  return conditional_broadcast_of<U8>(g, old, last<U8>(g, a, c), c);
}
VecV VecU16VCondXBVV(P g, V old, V a, Ctx c) {
  return conditional_broadcast_of<U16>(g, old, last<U16>(g, a, c), c);
}
VecV VecU32VCondXBVV(P g, V old, V a, Ctx c) {
  return conditional_broadcast_of<U32>(g, old, last<U32>(g, a, c), c);
}
VecV VecU64VCondXBVV(P g, V old, V a, Ctx c) {
  return conditional_broadcast_of<U64>(g, old, last<U64>(g, a, c), c);
}

U64 VecU8AddReduceV(P g, V a, Ctx c) { return reduce<U8>(g, a, U64{0}, c, sum); }
U64 VecU16AddReduceV(P g, V a, Ctx c) { return reduce<U16>(g, a, U64{0}, c, sum); }
U64 VecU32AddReduceV(P g, V a, Ctx c) { return reduce<U32>(g, a, U64{0}, c, sum); }
U64 VecU64AddReduceV(P g, V a, Ctx c) { return reduce<U64>(g, a, U64{0}, c, sum); }
U64 VecS8AddReduceV(P g, V a, Ctx c) { return reduce<S8>(g, a, U64{0}, c, sum); }
U64 VecS16AddReduceV(P g, V a, Ctx c) { return reduce<S16>(g, a, U64{0}, c, sum); }
U64 VecS32AddReduceV(P g, V a, Ctx c) { return reduce<S32>(g, a, U64{0}, c, sum); }

U64 VecU8AndReduceV(P g, V a, Ctx c) { return reduce<U8>(g, a, highest<U8>, c, and_); }
U64 VecU16AndReduceV(P g, V a, Ctx c) { return reduce<U16>(g, a, highest<U16>, c, and_); }
U64 VecU32AndReduceV(P g, V a, Ctx c) { return reduce<U32>(g, a, highest<U32>, c, and_); }
U64 VecU64AndReduceV(P g, V a, Ctx c) { return reduce<U64>(g, a, highest<U64>, c, and_); }
U64 VecU8OrReduceV(P g, V a, Ctx c) { return reduce<U8>(g, a, U8{0}, c, or_); }
U64 VecU16OrReduceV(P g, V a, Ctx c) { return reduce<U16>(g, a, U16{0}, c, or_); }
U64 VecU32OrReduceV(P g, V a, Ctx c) { return reduce<U32>(g, a, U32{0}, c, or_); }
U64 VecU64OrReduceV(P g, V a, Ctx c) { return reduce<U64>(g, a, U64{0}, c, or_); }
U64 VecU8XorReduceV(P g, V a, Ctx c) { return reduce<U8>(g, a, U8{0}, c, xor_); }
U64 VecU16XorReduceV(P g, V a, Ctx c) { return reduce<U16>(g, a, U16{0}, c, xor_); }
U64 VecU32XorReduceV(P g, V a, Ctx c) { return reduce<U32>(g, a, U32{0}, c, xor_); }
U64 VecU64XorReduceV(P g, V a, Ctx c) { return reduce<U64>(g, a, U64{0}, c, xor_); }

U64 VecU8MaxReduceV(P g, V a, Ctx c) { return reduce<U8>(g, a, lowest<U8>, c, max); }
U64 VecU16MaxReduceV(P g, V a, Ctx c) { return reduce<U16>(g, a, lowest<U16>, c, max); }
U64 VecU32MaxReduceV(P g, V a, Ctx c) { return reduce<U32>(g, a, lowest<U32>, c, max); }
U64 VecU64MaxReduceV(P g, V a, Ctx c) { return reduce<U64>(g, a, lowest<U64>, c, max); }
U64 VecS8MaxReduceV(P g, V a, Ctx c) { return reduce<S8>(g, a, lowest<S8>, c, max); }
U64 VecS16MaxReduceV(P g, V a, Ctx c) { return reduce<S16>(g, a, lowest<S16>, c, max); }
U64 VecS32MaxReduceV(P g, V a, Ctx c) { return reduce<S32>(g, a, lowest<S32>, c, max); }
U64 VecS64MaxReduceV(P g, V a, Ctx c) { return reduce<S64>(g, a, lowest<S64>, c, max); }
U64 VecU8MinReduceV(P g, V a, Ctx c) { return reduce<U8>(g, a, highest<U8>, c, min); }
U64 VecU16MinReduceV(P g, V a, Ctx c) { return reduce<U16>(g, a, highest<U16>, c, min); }
U64 VecU32MinReduceV(P g, V a, Ctx c) { return reduce<U32>(g, a, highest<U32>, c, min); }
U64 VecU64MinReduceV(P g, V a, Ctx c) { return reduce<U64>(g, a, highest<U64>, c, min); }
U64 VecS8MinReduceV(P g, V a, Ctx c) { return reduce<S8>(g, a, highest<S8>, c, min); }
U64 VecS16MinReduceV(P g, V a, Ctx c) { return reduce<S16>(g, a, highest<S16>, c, min); }
U64 VecS32MinReduceV(P g, V a, Ctx c) { return reduce<S32>(g, a, highest<S32>, c, min); }
U64 VecS64MinReduceV(P g, V a, Ctx c) { return reduce<S64>(g, a, highest<S64>, c, min); }
