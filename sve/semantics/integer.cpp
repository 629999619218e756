// An operation is one expression on elements of the tag's type. Int widens an element, and the
// result is truncated when it is stored.
#include "sve/semantics/integer.h"

#include "sve/semantics/elements.h"

using namespace sve::semantics;

namespace {

using V = VecV;
using P = PredV;
using Ctx = CpuContext*;

// Modulo 2 to the power 128. The product of two unsigned 64-bit elements needs that range.
Int128 product(Int128 a, Int128 b) {
  return static_cast<Int128>(static_cast<unsigned __int128>(a) * static_cast<unsigned __int128>(b));
}

// A shift amount is always unsigned, whatever the tag.
template <class T>
Int128 amount(T x) {
  return static_cast<std::make_unsigned_t<T>>(x);
}

constexpr auto add = [](auto a, auto b) { return Int(a) + Int(b); };
constexpr auto sub = [](auto a, auto b) { return Int(a) - Int(b); };
constexpr auto subr = [](auto a, auto b) { return Int(b) - Int(a); };
constexpr auto abd = [](auto a, auto b) { return AbsInt(Int(a) - Int(b)); };
constexpr auto mul = [](auto a, auto b) { return product(a, b); };
constexpr auto mulh = []<class T>(T a, T b) { return ShiftRightInt(product(a, b), width<T>); };
constexpr auto max = []<class T>(T a, T b) {
  return Max(bits(a), bits(b), width<T>, is_unsigned<T>);
};
constexpr auto min = []<class T>(T a, T b) {
  return Min(bits(a), bits(b), width<T>, is_unsigned<T>);
};
constexpr auto div_ = [](auto a, auto b) { return b == 0 ? 0 : Int(a) / Int(b); };
constexpr auto divr = [](auto a, auto b) { return div_(b, a); };
constexpr auto mla = [](auto a, auto b, auto d) { return Int(a) + product(b, d); };
constexpr auto mls = [](auto a, auto b, auto d) { return Int(a) - product(b, d); };
constexpr auto mad = [](auto a, auto b, auto d) { return Int(d) + product(a, b); };
constexpr auto msb = [](auto a, auto b, auto d) { return Int(d) - product(a, b); };

constexpr auto and_ = [](auto a, auto b) { return a & b; };
constexpr auto or_ = [](auto a, auto b) { return a | b; };
constexpr auto xor_ = [](auto a, auto b) { return a ^ b; };
constexpr auto bic = [](auto a, auto b) { return a & ~b; };

constexpr auto abs_ = [](auto x) { return AbsInt(Int(x)); };
constexpr auto neg = [](auto x) { return NegInt(Int(x)); };
constexpr auto cls = []<class T>(T x) { return CountLeadingSignBits(x, width<T>); };
constexpr auto clz = []<class T>(T x) { return CountLeadingZeroBits(x, width<T>); };
constexpr auto cnt = []<class T>(T x) { return BitCount(x, width<T>); };
constexpr auto cnot = [](auto x) { return x == 0 ? 1 : 0; };
constexpr auto not_ = [](auto x) { return ~x; };
constexpr auto extend8 = []<class T>(T x) { return Int(bits(x), 8, is_unsigned<T>); };
constexpr auto extend16 = []<class T>(T x) { return Int(bits(x), 16, is_unsigned<T>); };
constexpr auto extend32 = []<class T>(T x) { return Int(bits(x), 32, is_unsigned<T>); };
constexpr auto rev1 = []<class T>(T x) { return Reverse(x, width<T>, 1); };
constexpr auto rev2 = []<class T>(T x) { return Reverse(x, width<T>, 2); };
constexpr auto rev4 = []<class T>(T x) { return Reverse(x, width<T>, 4); };
constexpr auto rbit = []<class T>(T x) { return BitReverse(x, width<T>); };

// The second operand of a shift may be wider than the first.
constexpr auto shl = [](auto a, auto b) { return ShiftLeftInt(Int(a), amount(b)); };
constexpr auto shr = [](auto a, auto b) { return ShiftRightInt(Int(a), amount(b)); };
constexpr auto shlr = [](auto a, auto b) { return shl(b, a); };
constexpr auto shrr = [](auto a, auto b) { return shr(b, a); };
constexpr auto shift_divide = [](auto a, auto i) {
  const Int128 x = a < 0 ? Int(a) + ShiftLeftInt(1, i) - 1 : Int(a);
  return ShiftRightInt(x, i);
};

template <int K>
constexpr auto lea = [](auto a, auto b) { return Int(a) + Int(b) * K; };
template <int K>
constexpr auto lea_sxtw = [](U64 a, U64 b) { return Int(a) + Int(static_cast<S32>(b)) * K; };
template <int K>
constexpr auto lea_uxtw = [](U64 a, U64 b) { return Int(a) + Int(static_cast<U32>(b)) * K; };

// Operand shapes. Those named `each` have no predicate, and those named `merge` are merging.

template <class T, class Operation>
[[gnu::noinline]] VecV each2(const V& a, const V& b, Ctx ctx, Operation op) {
  return unpredicated<T>(ctx, [&](unsigned e) { return op(a.get<T>(e), b.get<T>(e)); });
}

template <class T, class Operation>
[[gnu::noinline]] VecV each_imm(const V& a, S64 i, Ctx ctx, Operation op) {
  return unpredicated<T>(ctx, [&](unsigned e) { return op(a.get<T>(e), static_cast<T>(i)); });
}

template <class T, class Operation>
[[gnu::noinline]] VecV each_wide(const V& a, const V& b, Ctx ctx, Operation op) {
  return unpredicated<T>(ctx,
                         [&](unsigned e) { return op(a.get<T>(e), covering_element<T>(b, e)); });
}

template <class T, class Operation>
[[gnu::noinline]] VecV merge1(const V& source, const P& g, const V& x, Ctx ctx, Operation op) {
  return merging<T>(source, g, ctx, [&](unsigned e) { return op(x.get<T>(e)); });
}

template <class T, class Operation>
[[gnu::noinline]] VecV merge2(const V& a, const P& g, const V& b, Ctx ctx, Operation op) {
  return merging<T>(a, g, ctx, [&](unsigned e) { return op(a.get<T>(e), b.get<T>(e)); });
}

template <class T, class Operation>
[[gnu::noinline]] VecV merge3(const V& a, const P& g, const V& b, const V& d, Ctx ctx,
                              Operation op) {
  return merging<T>(a, g, ctx,
                    [&](unsigned e) { return op(a.get<T>(e), b.get<T>(e), d.get<T>(e)); });
}

template <class T, class Operation>
[[gnu::noinline]] VecV merge_imm(const V& a, const P& g, S64 i, Ctx ctx, Operation op) {
  return merging<T>(a, g, ctx, [&](unsigned e) { return op(a.get<T>(e), static_cast<T>(i)); });
}

template <class T, class Operation>
[[gnu::noinline]] VecV merge_wide(const V& a, const P& g, const V& b, Ctx ctx, Operation op) {
  return merging<T>(a, g, ctx,
                    [&](unsigned e) { return op(a.get<T>(e), covering_element<T>(b, e)); });
}

// The sum of `acc` and the products of four narrow elements each. The narrow elements of b are
// those of its element b_element(e).
template <class T, class Narrow, class BElement>
VecV dot_of(const V& a, const V& b, const V& acc, Ctx ctx, BElement b_element) {
  return unpredicated<T>(ctx, [&](unsigned e) {
    Int128 sum = 0;
    for (unsigned j = 0; j < 4; ++j) {
      sum += Int(a.get<Narrow>(4 * e + j)) * Int(b.get<Narrow>(4 * b_element(e) + j));
    }
    return sum + Int(acc.get<T>(e));
  });
}

template <class T, class Narrow>
[[gnu::noinline]] VecV dot(const V& a, const V& b, const V& acc, Ctx ctx) {
  return dot_of<T, Narrow>(a, b, acc, ctx, [](unsigned e) { return e; });
}

template <class T, class Narrow>
[[gnu::noinline]] VecV dot(const V& a, const V& b, const V& acc, unsigned index, Ctx ctx) {
  constexpr unsigned in_segment = 16 / sizeof(T);
  return dot_of<T, Narrow>(a, b, acc, ctx,
                           [index](unsigned e) { return e / in_segment * in_segment + index; });
}

constexpr VecV zero{};
constexpr PredV all{{~U64{0}, ~U64{0}, ~U64{0}, ~U64{0}}};

template <class T>
VecV dup(U64 x, Ctx ctx) {
  return unpredicated<T>(ctx, [x](unsigned) { return x; });
}

template <class T>
VecV start_step(U64 start, U64 step, Ctx ctx) {
  return unpredicated<T>(ctx, [=](unsigned e) { return start + e * step; });
}

template <class T>
[[gnu::noinline]] VecV select(const P& g, const V& a, const V& b, Ctx ctx) {
  return merging<T>(b, g, ctx, [&a](unsigned e) { return a.get<T>(e); });
}

}  // namespace

VecV VecU8AbdVVM(V a, P g, V b, Ctx c) { return merge2<U8>(a, g, b, c, abd); }
VecV VecU16AbdVVM(V a, P g, V b, Ctx c) { return merge2<U16>(a, g, b, c, abd); }
VecV VecU32AbdVVM(V a, P g, V b, Ctx c) { return merge2<U32>(a, g, b, c, abd); }
VecV VecU64AbdVVM(V a, P g, V b, Ctx c) { return merge2<U64>(a, g, b, c, abd); }
VecV VecS8AbdVVM(V a, P g, V b, Ctx c) { return merge2<S8>(a, g, b, c, abd); }
VecV VecS16AbdVVM(V a, P g, V b, Ctx c) { return merge2<S16>(a, g, b, c, abd); }
VecV VecS32AbdVVM(V a, P g, V b, Ctx c) { return merge2<S32>(a, g, b, c, abd); }
VecV VecS64AbdVVM(V a, P g, V b, Ctx c) { return merge2<S64>(a, g, b, c, abd); }

VecV VecU8MulHVVM(V a, P g, V b, Ctx c) { return merge2<U8>(a, g, b, c, mulh); }
VecV VecU16MulHVVM(V a, P g, V b, Ctx c) { return merge2<U16>(a, g, b, c, mulh); }
VecV VecU32MulHVVM(V a, P g, V b, Ctx c) { return merge2<U32>(a, g, b, c, mulh); }
VecV VecU64MulHVVM(V a, P g, V b, Ctx c) { return merge2<U64>(a, g, b, c, mulh); }
VecV VecS8MulHVVM(V a, P g, V b, Ctx c) { return merge2<S8>(a, g, b, c, mulh); }
VecV VecS16MulHVVM(V a, P g, V b, Ctx c) { return merge2<S16>(a, g, b, c, mulh); }
VecV VecS32MulHVVM(V a, P g, V b, Ctx c) { return merge2<S32>(a, g, b, c, mulh); }
VecV VecS64MulHVVM(V a, P g, V b, Ctx c) { return merge2<S64>(a, g, b, c, mulh); }

VecV VecU8AddVVM(V a, P g, V b, Ctx c) { return merge2<U8>(a, g, b, c, add); }
VecV VecU16AddVVM(V a, P g, V b, Ctx c) { return merge2<U16>(a, g, b, c, add); }
VecV VecU32AddVVM(V a, P g, V b, Ctx c) { return merge2<U32>(a, g, b, c, add); }
VecV VecU64AddVVM(V a, P g, V b, Ctx c) { return merge2<U64>(a, g, b, c, add); }
VecV VecU8SubVVM(V a, P g, V b, Ctx c) { return merge2<U8>(a, g, b, c, sub); }
VecV VecU16SubVVM(V a, P g, V b, Ctx c) { return merge2<U16>(a, g, b, c, sub); }
VecV VecU32SubVVM(V a, P g, V b, Ctx c) { return merge2<U32>(a, g, b, c, sub); }
VecV VecU64SubVVM(V a, P g, V b, Ctx c) { return merge2<U64>(a, g, b, c, sub); }
VecV VecU8SubRVVM(V a, P g, V b, Ctx c) { return merge2<U8>(a, g, b, c, subr); }
VecV VecU16SubRVVM(V a, P g, V b, Ctx c) { return merge2<U16>(a, g, b, c, subr); }
VecV VecU32SubRVVM(V a, P g, V b, Ctx c) { return merge2<U32>(a, g, b, c, subr); }
VecV VecU64SubRVVM(V a, P g, V b, Ctx c) { return merge2<U64>(a, g, b, c, subr); }
VecV VecS8MulVVM(V a, P g, V b, Ctx c) { return merge2<S8>(a, g, b, c, mul); }
VecV VecS16MulVVM(V a, P g, V b, Ctx c) { return merge2<S16>(a, g, b, c, mul); }
VecV VecS32MulVVM(V a, P g, V b, Ctx c) { return merge2<S32>(a, g, b, c, mul); }
VecV VecS64MulVVM(V a, P g, V b, Ctx c) { return merge2<S64>(a, g, b, c, mul); }

VecV VecU8MaxVVM(V a, P g, V b, Ctx c) { return merge2<U8>(a, g, b, c, max); }
VecV VecU16MaxVVM(V a, P g, V b, Ctx c) { return merge2<U16>(a, g, b, c, max); }
VecV VecU32MaxVVM(V a, P g, V b, Ctx c) { return merge2<U32>(a, g, b, c, max); }
VecV VecU64MaxVVM(V a, P g, V b, Ctx c) { return merge2<U64>(a, g, b, c, max); }
VecV VecS8MaxVVM(V a, P g, V b, Ctx c) { return merge2<S8>(a, g, b, c, max); }
VecV VecS16MaxVVM(V a, P g, V b, Ctx c) { return merge2<S16>(a, g, b, c, max); }
VecV VecS32MaxVVM(V a, P g, V b, Ctx c) { return merge2<S32>(a, g, b, c, max); }
VecV VecS64MaxVVM(V a, P g, V b, Ctx c) { return merge2<S64>(a, g, b, c, max); }
VecV VecU8MinVVM(V a, P g, V b, Ctx c) { return merge2<U8>(a, g, b, c, min); }
VecV VecU16MinVVM(V a, P g, V b, Ctx c) { return merge2<U16>(a, g, b, c, min); }
VecV VecU32MinVVM(V a, P g, V b, Ctx c) { return merge2<U32>(a, g, b, c, min); }
VecV VecU64MinVVM(V a, P g, V b, Ctx c) { return merge2<U64>(a, g, b, c, min); }
VecV VecS8MinVVM(V a, P g, V b, Ctx c) { return merge2<S8>(a, g, b, c, min); }
VecV VecS16MinVVM(V a, P g, V b, Ctx c) { return merge2<S16>(a, g, b, c, min); }
VecV VecS32MinVVM(V a, P g, V b, Ctx c) { return merge2<S32>(a, g, b, c, min); }
VecV VecS64MinVVM(V a, P g, V b, Ctx c) { return merge2<S64>(a, g, b, c, min); }

VecV VecU32DivVVM(V a, P g, V b, Ctx c) { return merge2<U32>(a, g, b, c, div_); }
VecV VecU64DivVVM(V a, P g, V b, Ctx c) { return merge2<U64>(a, g, b, c, div_); }
VecV VecS32DivVVM(V a, P g, V b, Ctx c) { return merge2<S32>(a, g, b, c, div_); }
VecV VecS64DivVVM(V a, P g, V b, Ctx c) { return merge2<S64>(a, g, b, c, div_); }
VecV VecU32DivRVVM(V a, P g, V b, Ctx c) { return merge2<U32>(a, g, b, c, divr); }
VecV VecU64DivRVVM(V a, P g, V b, Ctx c) { return merge2<U64>(a, g, b, c, divr); }
VecV VecS32DivRVVM(V a, P g, V b, Ctx c) { return merge2<S32>(a, g, b, c, divr); }
VecV VecS64DivRVVM(V a, P g, V b, Ctx c) { return merge2<S64>(a, g, b, c, divr); }

VecV VecS8MLAVVVM(V a, P g, V b, V d, Ctx c) { return merge3<S8>(a, g, b, d, c, mla); }
VecV VecS16MLAVVVM(V a, P g, V b, V d, Ctx c) { return merge3<S16>(a, g, b, d, c, mla); }
VecV VecS32MLAVVVM(V a, P g, V b, V d, Ctx c) { return merge3<S32>(a, g, b, d, c, mla); }
VecV VecS64MLAVVVM(V a, P g, V b, V d, Ctx c) { return merge3<S64>(a, g, b, d, c, mla); }
VecV VecS8MLSVVVM(V a, P g, V b, V d, Ctx c) { return merge3<S8>(a, g, b, d, c, mls); }
VecV VecS16MLSVVVM(V a, P g, V b, V d, Ctx c) { return merge3<S16>(a, g, b, d, c, mls); }
VecV VecS32MLSVVVM(V a, P g, V b, V d, Ctx c) { return merge3<S32>(a, g, b, d, c, mls); }
VecV VecS64MLSVVVM(V a, P g, V b, V d, Ctx c) { return merge3<S64>(a, g, b, d, c, mls); }
VecV VecS8MADDVVVM(V a, P g, V b, V d, Ctx c) { return merge3<S8>(a, g, b, d, c, mad); }
VecV VecS16MADDVVVM(V a, P g, V b, V d, Ctx c) { return merge3<S16>(a, g, b, d, c, mad); }
VecV VecS32MADDVVVM(V a, P g, V b, V d, Ctx c) { return merge3<S32>(a, g, b, d, c, mad); }
VecV VecS64MADDVVVM(V a, P g, V b, V d, Ctx c) { return merge3<S64>(a, g, b, d, c, mad); }
VecV VecS8MSUBVVVM(V a, P g, V b, V d, Ctx c) { return merge3<S8>(a, g, b, d, c, msb); }
VecV VecS16MSUBVVVM(V a, P g, V b, V d, Ctx c) { return merge3<S16>(a, g, b, d, c, msb); }
VecV VecS32MSUBVVVM(V a, P g, V b, V d, Ctx c) { return merge3<S32>(a, g, b, d, c, msb); }
VecV VecS64MSUBVVVM(V a, P g, V b, V d, Ctx c) { return merge3<S64>(a, g, b, d, c, msb); }

VecV VecU8AndVVM(V a, P g, V b, Ctx c) { return merge2<U8>(a, g, b, c, and_); }
VecV VecU16AndVVM(V a, P g, V b, Ctx c) { return merge2<U16>(a, g, b, c, and_); }
VecV VecU32AndVVM(V a, P g, V b, Ctx c) { return merge2<U32>(a, g, b, c, and_); }
VecV VecU64AndVVM(V a, P g, V b, Ctx c) { return merge2<U64>(a, g, b, c, and_); }
VecV VecU8OrVVM(V a, P g, V b, Ctx c) { return merge2<U8>(a, g, b, c, or_); }
VecV VecU16OrVVM(V a, P g, V b, Ctx c) { return merge2<U16>(a, g, b, c, or_); }
VecV VecU32OrVVM(V a, P g, V b, Ctx c) { return merge2<U32>(a, g, b, c, or_); }
VecV VecU64OrVVM(V a, P g, V b, Ctx c) { return merge2<U64>(a, g, b, c, or_); }
VecV VecU8XorVVM(V a, P g, V b, Ctx c) { return merge2<U8>(a, g, b, c, xor_); }
VecV VecU16XorVVM(V a, P g, V b, Ctx c) { return merge2<U16>(a, g, b, c, xor_); }
VecV VecU32XorVVM(V a, P g, V b, Ctx c) { return merge2<U32>(a, g, b, c, xor_); }
VecV VecU64XorVVM(V a, P g, V b, Ctx c) { return merge2<U64>(a, g, b, c, xor_); }
VecV VecU8BicVVM(V a, P g, V b, Ctx c) { return merge2<U8>(a, g, b, c, bic); }
VecV VecU16BicVVM(V a, P g, V b, Ctx c) { return merge2<U16>(a, g, b, c, bic); }
VecV VecU32BicVVM(V a, P g, V b, Ctx c) { return merge2<U32>(a, g, b, c, bic); }
VecV VecU64BicVVM(V a, P g, V b, Ctx c) { return merge2<U64>(a, g, b, c, bic); }

VecV VecS8AbsVM(V m, P g, V x, Ctx c) { return merge1<S8>(m, g, x, c, abs_); }
VecV VecS16AbsVM(V m, P g, V x, Ctx c) { return merge1<S16>(m, g, x, c, abs_); }
VecV VecS32AbsVM(V m, P g, V x, Ctx c) { return merge1<S32>(m, g, x, c, abs_); }
VecV VecS64AbsVM(V m, P g, V x, Ctx c) { return merge1<S64>(m, g, x, c, abs_); }
VecV VecS8NegVM(V m, P g, V x, Ctx c) { return merge1<S8>(m, g, x, c, neg); }
VecV VecS16NegVM(V m, P g, V x, Ctx c) { return merge1<S16>(m, g, x, c, neg); }
VecV VecS32NegVM(V m, P g, V x, Ctx c) { return merge1<S32>(m, g, x, c, neg); }
VecV VecS64NegVM(V m, P g, V x, Ctx c) { return merge1<S64>(m, g, x, c, neg); }

VecV VecU8ClsVM(V m, P g, V x, Ctx c) { return merge1<U8>(m, g, x, c, cls); }
VecV VecU16ClsVM(V m, P g, V x, Ctx c) { return merge1<U16>(m, g, x, c, cls); }
VecV VecU32ClsVM(V m, P g, V x, Ctx c) { return merge1<U32>(m, g, x, c, cls); }
VecV VecU64ClsVM(V m, P g, V x, Ctx c) { return merge1<U64>(m, g, x, c, cls); }
VecV VecU8ClzVM(V m, P g, V x, Ctx c) { return merge1<U8>(m, g, x, c, clz); }
VecV VecU16ClzVM(V m, P g, V x, Ctx c) { return merge1<U16>(m, g, x, c, clz); }
VecV VecU32ClzVM(V m, P g, V x, Ctx c) { return merge1<U32>(m, g, x, c, clz); }
VecV VecU64ClzVM(V m, P g, V x, Ctx c) { return merge1<U64>(m, g, x, c, clz); }
VecV VecU8CntVM(V m, P g, V x, Ctx c) { return merge1<U8>(m, g, x, c, cnt); }
VecV VecU16CntVM(V m, P g, V x, Ctx c) { return merge1<U16>(m, g, x, c, cnt); }
VecV VecU32CntVM(V m, P g, V x, Ctx c) { return merge1<U32>(m, g, x, c, cnt); }
VecV VecU64CntVM(V m, P g, V x, Ctx c) { return merge1<U64>(m, g, x, c, cnt); }

VecV VecU8NotVM(V m, P g, V x, Ctx c) { return merge1<U8>(m, g, x, c, cnot); }
VecV VecU16NotVM(V m, P g, V x, Ctx c) { return merge1<U16>(m, g, x, c, cnot); }
VecV VecU32NotVM(V m, P g, V x, Ctx c) { return merge1<U32>(m, g, x, c, cnot); }
VecV VecU64NotVM(V m, P g, V x, Ctx c) { return merge1<U64>(m, g, x, c, cnot); }
VecV VecU8InvVM(V m, P g, V x, Ctx c) { return merge1<U8>(m, g, x, c, not_); }
VecV VecU16InvVM(V m, P g, V x, Ctx c) { return merge1<U16>(m, g, x, c, not_); }
VecV VecU32InvVM(V m, P g, V x, Ctx c) { return merge1<U32>(m, g, x, c, not_); }
VecV VecU64InvVM(V m, P g, V x, Ctx c) { return merge1<U64>(m, g, x, c, not_); }

VecV VecU16Extnd12VM(V m, P g, V x, Ctx c) { return merge1<U16>(m, g, x, c, extend8); }
VecV VecS16Extnd12VM(V m, P g, V x, Ctx c) { return merge1<S16>(m, g, x, c, extend8); }
VecV VecU32Extnd14VM(V m, P g, V x, Ctx c) { return merge1<U32>(m, g, x, c, extend8); }
VecV VecS32Extnd14VM(V m, P g, V x, Ctx c) { return merge1<S32>(m, g, x, c, extend8); }
VecV VecU64Extnd18VM(V m, P g, V x, Ctx c) { return merge1<U64>(m, g, x, c, extend8); }
VecV VecS64Extnd18VM(V m, P g, V x, Ctx c) { return merge1<S64>(m, g, x, c, extend8); }
VecV VecU32Extnd24VM(V m, P g, V x, Ctx c) { return merge1<U32>(m, g, x, c, extend16); }
VecV VecS32Extnd24VM(V m, P g, V x, Ctx c) { return merge1<S32>(m, g, x, c, extend16); }
VecV VecU64Extnd28VM(V m, P g, V x, Ctx c) { return merge1<U64>(m, g, x, c, extend16); }
VecV VecS64Extnd28VM(V m, P g, V x, Ctx c) { return merge1<S64>(m, g, x, c, extend16); }
VecV VecU64Extnd48VM(V m, P g, V x, Ctx c) { return merge1<U64>(m, g, x, c, extend32); }
VecV VecS64Extnd48VM(V m, P g, V x, Ctx c) { return merge1<S64>(m, g, x, c, extend32); }

VecV VecU16Rev1V(V m, P g, V x, Ctx c) { return merge1<U16>(m, g, x, c, rev1); }
VecV VecU32Rev1V(V m, P g, V x, Ctx c) { return merge1<U32>(m, g, x, c, rev1); }
VecV VecU64Rev1V(V m, P g, V x, Ctx c) { return merge1<U64>(m, g, x, c, rev1); }
VecV VecU32Rev2V(V m, P g, V x, Ctx c) { return merge1<U32>(m, g, x, c, rev2); }
VecV VecU64Rev2V(V m, P g, V x, Ctx c) { return merge1<U64>(m, g, x, c, rev2); }
VecV VecU64Rev4V(V m, P g, V x, Ctx c) { return merge1<U64>(m, g, x, c, rev4); }
VecV VecU8RBitVM(V m, P g, V x, Ctx c) { return merge1<U8>(m, g, x, c, rbit); }
VecV VecU16RBitVM(V m, P g, V x, Ctx c) { return merge1<U16>(m, g, x, c, rbit); }
VecV VecU32RBitVM(V m, P g, V x, Ctx c) { return merge1<U32>(m, g, x, c, rbit); }
VecV VecU64RBitVM(V m, P g, V x, Ctx c) { return merge1<U64>(m, g, x, c, rbit); }

VecV VecU8MaxVIX(V a, S64 i, Ctx c) { return each_imm<U8>(a, i, c, max); }
VecV VecU16MaxVIX(V a, S64 i, Ctx c) { return each_imm<U16>(a, i, c, max); }
VecV VecU32MaxVIX(V a, S64 i, Ctx c) { return each_imm<U32>(a, i, c, max); }
VecV VecU64MaxVIX(V a, S64 i, Ctx c) { return each_imm<U64>(a, i, c, max); }
VecV VecS8MaxVIX(V a, S64 i, Ctx c) { return each_imm<S8>(a, i, c, max); }
VecV VecS16MaxVIX(V a, S64 i, Ctx c) { return each_imm<S16>(a, i, c, max); }
VecV VecS32MaxVIX(V a, S64 i, Ctx c) { return each_imm<S32>(a, i, c, max); }
VecV VecS64MaxVIX(V a, S64 i, Ctx c) { return each_imm<S64>(a, i, c, max); }
VecV VecU8MinVIX(V a, S64 i, Ctx c) { return each_imm<U8>(a, i, c, min); }
VecV VecU16MinVIX(V a, S64 i, Ctx c) { return each_imm<U16>(a, i, c, min); }
VecV VecU32MinVIX(V a, S64 i, Ctx c) { return each_imm<U32>(a, i, c, min); }
VecV VecU64MinVIX(V a, S64 i, Ctx c) { return each_imm<U64>(a, i, c, min); }
VecV VecS8MinVIX(V a, S64 i, Ctx c) { return each_imm<S8>(a, i, c, min); }
VecV VecS16MinVIX(V a, S64 i, Ctx c) { return each_imm<S16>(a, i, c, min); }
VecV VecS32MinVIX(V a, S64 i, Ctx c) { return each_imm<S32>(a, i, c, min); }
VecV VecS64MinVIX(V a, S64 i, Ctx c) { return each_imm<S64>(a, i, c, min); }
VecV VecU8AddVIX(V a, S64 i, Ctx c) { return each_imm<U8>(a, i, c, add); }
VecV VecU16AddVIX(V a, S64 i, Ctx c) { return each_imm<U16>(a, i, c, add); }
VecV VecU32AddVIX(V a, S64 i, Ctx c) { return each_imm<U32>(a, i, c, add); }
VecV VecU64AddVIX(V a, S64 i, Ctx c) { return each_imm<U64>(a, i, c, add); }
VecV VecU8SubVIX(V a, S64 i, Ctx c) { return each_imm<U8>(a, i, c, sub); }
VecV VecU16SubVIX(V a, S64 i, Ctx c) { return each_imm<U16>(a, i, c, sub); }
VecV VecU32SubVIX(V a, S64 i, Ctx c) { return each_imm<U32>(a, i, c, sub); }
VecV VecU64SubVIX(V a, S64 i, Ctx c) { return each_imm<U64>(a, i, c, sub); }
VecV VecU8SubRVIX(V a, S64 i, Ctx c) { return each_imm<U8>(a, i, c, subr); }
VecV VecU16SubRVIX(V a, S64 i, Ctx c) { return each_imm<U16>(a, i, c, subr); }
VecV VecU32SubRVIX(V a, S64 i, Ctx c) { return each_imm<U32>(a, i, c, subr); }
VecV VecU64SubRVIX(V a, S64 i, Ctx c) { return each_imm<U64>(a, i, c, subr); }
VecV VecS8MulVIX(V a, S64 i, Ctx c) { return each_imm<S8>(a, i, c, mul); }
VecV VecS16MulVIX(V a, S64 i, Ctx c) { return each_imm<S16>(a, i, c, mul); }
VecV VecS32MulVIX(V a, S64 i, Ctx c) { return each_imm<S32>(a, i, c, mul); }
VecV VecS64MulVIX(V a, S64 i, Ctx c) { return each_imm<S64>(a, i, c, mul); }
VecV VecU64AndVIX(V a, S64 i, Ctx c) { return each_imm<U64>(a, i, c, and_); }
VecV VecU64OrVIX(V a, S64 i, Ctx c) { return each_imm<U64>(a, i, c, or_); }
VecV VecU64XorVIX(V a, S64 i, Ctx c) { return each_imm<U64>(a, i, c, xor_); }

VecV VecU8AddVVX(V a, V b, Ctx c) { return each2<U8>(a, b, c, add); }
VecV VecU16AddVVX(V a, V b, Ctx c) { return each2<U16>(a, b, c, add); }
VecV VecU32AddVVX(V a, V b, Ctx c) { return each2<U32>(a, b, c, add); }
VecV VecU64AddVVX(V a, V b, Ctx c) { return each2<U64>(a, b, c, add); }
VecV VecU8SubVVX(V a, V b, Ctx c) { return each2<U8>(a, b, c, sub); }
VecV VecU16SubVVX(V a, V b, Ctx c) { return each2<U16>(a, b, c, sub); }
VecV VecU32SubVVX(V a, V b, Ctx c) { return each2<U32>(a, b, c, sub); }
VecV VecU64SubVVX(V a, V b, Ctx c) { return each2<U64>(a, b, c, sub); }
VecV VecU64AndVVX(V a, V b, Ctx c) { return each2<U64>(a, b, c, and_); }
VecV VecU64OrVVX(V a, V b, Ctx c) { return each2<U64>(a, b, c, or_); }
VecV VecU64XorVVX(V a, V b, Ctx c) { return each2<U64>(a, b, c, xor_); }
VecV VecU64BicVVX(V a, V b, Ctx c) { return each2<U64>(a, b, c, bic); }

VecV VecU8ShrVIM(V a, P g, S64 i, Ctx c) { return merge_imm<U8>(a, g, i, c, shr); }
VecV VecU16ShrVIM(V a, P g, S64 i, Ctx c) { return merge_imm<U16>(a, g, i, c, shr); }
VecV VecU32ShrVIM(V a, P g, S64 i, Ctx c) { return merge_imm<U32>(a, g, i, c, shr); }
VecV VecU64ShrVIM(V a, P g, S64 i, Ctx c) { return merge_imm<U64>(a, g, i, c, shr); }
VecV VecS8ShrVIM(V a, P g, S64 i, Ctx c) { return merge_imm<S8>(a, g, i, c, shr); }
VecV VecS16ShrVIM(V a, P g, S64 i, Ctx c) { return merge_imm<S16>(a, g, i, c, shr); }
VecV VecS32ShrVIM(V a, P g, S64 i, Ctx c) { return merge_imm<S32>(a, g, i, c, shr); }
VecV VecS64ShrVIM(V a, P g, S64 i, Ctx c) { return merge_imm<S64>(a, g, i, c, shr); }
VecV VecU8ShrVIX(V a, S64 i, Ctx c) { return each_imm<U8>(a, i, c, shr); }
VecV VecU16ShrVIX(V a, S64 i, Ctx c) { return each_imm<U16>(a, i, c, shr); }
VecV VecU32ShrVIX(V a, S64 i, Ctx c) { return each_imm<U32>(a, i, c, shr); }
VecV VecU64ShrVIX(V a, S64 i, Ctx c) { return each_imm<U64>(a, i, c, shr); }
VecV VecS8ShrVIX(V a, S64 i, Ctx c) { return each_imm<S8>(a, i, c, shr); }
VecV VecS16ShrVIX(V a, S64 i, Ctx c) { return each_imm<S16>(a, i, c, shr); }
VecV VecS32ShrVIX(V a, S64 i, Ctx c) { return each_imm<S32>(a, i, c, shr); }
VecV VecS64ShrVIX(V a, S64 i, Ctx c) { return each_imm<S64>(a, i, c, shr); }
VecV VecU8ShlVIM(V a, P g, S64 i, Ctx c) { return merge_imm<U8>(a, g, i, c, shl); }
VecV VecU16ShlVIM(V a, P g, S64 i, Ctx c) { return merge_imm<U16>(a, g, i, c, shl); }
VecV VecU32ShlVIM(V a, P g, S64 i, Ctx c) { return merge_imm<U32>(a, g, i, c, shl); }
VecV VecU64ShlVIM(V a, P g, S64 i, Ctx c) { return merge_imm<U64>(a, g, i, c, shl); }
VecV VecU8ShlVIX(V a, S64 i, Ctx c) { return each_imm<U8>(a, i, c, shl); }
VecV VecU16ShlVIX(V a, S64 i, Ctx c) { return each_imm<U16>(a, i, c, shl); }
VecV VecU32ShlVIX(V a, S64 i, Ctx c) { return each_imm<U32>(a, i, c, shl); }
VecV VecU64ShlVIX(V a, S64 i, Ctx c) { return each_imm<U64>(a, i, c, shl); }

VecV VecS8ShrDVIM(V a, P g, S64 i, Ctx c) { return merge_imm<S8>(a, g, i, c, shift_divide); }
VecV VecS16ShrDVIM(V a, P g, S64 i, Ctx c) { return merge_imm<S16>(a, g, i, c, shift_divide); }
VecV VecS32ShrDVIM(V a, P g, S64 i, Ctx c) { return merge_imm<S32>(a, g, i, c, shift_divide); }
VecV VecS64ShrDVIM(V a, P g, S64 i, Ctx c) { return merge_imm<S64>(a, g, i, c, shift_divide); }

VecV VecU8ShrVVM(V a, P g, V b, Ctx c) { return merge2<U8>(a, g, b, c, shr); }
VecV VecU16ShrVVM(V a, P g, V b, Ctx c) { return merge2<U16>(a, g, b, c, shr); }
VecV VecU32ShrVVM(V a, P g, V b, Ctx c) { return merge2<U32>(a, g, b, c, shr); }
VecV VecU64ShrVVM(V a, P g, V b, Ctx c) { return merge2<U64>(a, g, b, c, shr); }
VecV VecS8ShrVVM(V a, P g, V b, Ctx c) { return merge2<S8>(a, g, b, c, shr); }
VecV VecS16ShrVVM(V a, P g, V b, Ctx c) { return merge2<S16>(a, g, b, c, shr); }
VecV VecS32ShrVVM(V a, P g, V b, Ctx c) { return merge2<S32>(a, g, b, c, shr); }
VecV VecS64ShrVVM(V a, P g, V b, Ctx c) { return merge2<S64>(a, g, b, c, shr); }
VecV VecU8ShlVVM(V a, P g, V b, Ctx c) { return merge2<U8>(a, g, b, c, shl); }
VecV VecU16ShlVVM(V a, P g, V b, Ctx c) { return merge2<U16>(a, g, b, c, shl); }
VecV VecU32ShlVVM(V a, P g, V b, Ctx c) { return merge2<U32>(a, g, b, c, shl); }
VecV VecU64ShlVVM(V a, P g, V b, Ctx c) { return merge2<U64>(a, g, b, c, shl); }
VecV VecU8ShrRVVM(V a, P g, V b, Ctx c) { return merge2<U8>(a, g, b, c, shrr); }
VecV VecU16ShrRVVM(V a, P g, V b, Ctx c) { return merge2<U16>(a, g, b, c, shrr); }
VecV VecU32ShrRVVM(V a, P g, V b, Ctx c) { return merge2<U32>(a, g, b, c, shrr); }
VecV VecU64ShrRVVM(V a, P g, V b, Ctx c) { return merge2<U64>(a, g, b, c, shrr); }
VecV VecS8ShrRVVM(V a, P g, V b, Ctx c) { return merge2<S8>(a, g, b, c, shrr); }
VecV VecS16ShrRVVM(V a, P g, V b, Ctx c) { return merge2<S16>(a, g, b, c, shrr); }
VecV VecS32ShrRVVM(V a, P g, V b, Ctx c) { return merge2<S32>(a, g, b, c, shrr); }
VecV VecS64ShrRVVM(V a, P g, V b, Ctx c) { return merge2<S64>(a, g, b, c, shrr); }
VecV VecU8ShlRVVM(V a, P g, V b, Ctx c) { return merge2<U8>(a, g, b, c, shlr); }
VecV VecU16ShlRVVM(V a, P g, V b, Ctx c) { return merge2<U16>(a, g, b, c, shlr); }
VecV VecU32ShlRVVM(V a, P g, V b, Ctx c) { return merge2<U32>(a, g, b, c, shlr); }
VecV VecU64ShlRVVM(V a, P g, V b, Ctx c) { return merge2<U64>(a, g, b, c, shlr); }

VecV VecU8ShrVWM(V a, P g, V b, Ctx c) { return merge_wide<U8>(a, g, b, c, shr); }
VecV VecU16ShrVWM(V a, P g, V b, Ctx c) { return merge_wide<U16>(a, g, b, c, shr); }
VecV VecU32ShrVWM(V a, P g, V b, Ctx c) { return merge_wide<U32>(a, g, b, c, shr); }
VecV VecS8ShrVWM(V a, P g, V b, Ctx c) { return merge_wide<S8>(a, g, b, c, shr); }
VecV VecS16ShrVWM(V a, P g, V b, Ctx c) { return merge_wide<S16>(a, g, b, c, shr); }
VecV VecS32ShrVWM(V a, P g, V b, Ctx c) { return merge_wide<S32>(a, g, b, c, shr); }
VecV VecU8ShrVWX(V a, V b, Ctx c) { return each_wide<U8>(a, b, c, shr); }
VecV VecU16ShrVWX(V a, V b, Ctx c) { return each_wide<U16>(a, b, c, shr); }
VecV VecU32ShrVWX(V a, V b, Ctx c) { return each_wide<U32>(a, b, c, shr); }
VecV VecS8ShrVWX(V a, V b, Ctx c) { return each_wide<S8>(a, b, c, shr); }
VecV VecS16ShrVWX(V a, V b, Ctx c) { return each_wide<S16>(a, b, c, shr); }
VecV VecS32ShrVWX(V a, V b, Ctx c) { return each_wide<S32>(a, b, c, shr); }
VecV VecU8ShlVWM(V a, P g, V b, Ctx c) { return merge_wide<U8>(a, g, b, c, shl); }
VecV VecU16ShlVWM(V a, P g, V b, Ctx c) { return merge_wide<U16>(a, g, b, c, shl); }
VecV VecU32ShlVWM(V a, P g, V b, Ctx c) { return merge_wide<U32>(a, g, b, c, shl); }
VecV VecU8ShlVWX(V a, V b, Ctx c) { return each_wide<U8>(a, b, c, shl); }
VecV VecU16ShlVWX(V a, V b, Ctx c) { return each_wide<U16>(a, b, c, shl); }
VecV VecU32ShlVWX(V a, V b, Ctx c) { return each_wide<U32>(a, b, c, shl); }

VecV VecU32LEA1VV(V a, V b, Ctx c) { return each2<U32>(a, b, c, lea<1>); }
VecV VecU64LEA1VV(V a, V b, Ctx c) { return each2<U64>(a, b, c, lea<1>); }
VecV VecU32LEA2VV(V a, V b, Ctx c) { return each2<U32>(a, b, c, lea<2>); }
VecV VecU64LEA2VV(V a, V b, Ctx c) { return each2<U64>(a, b, c, lea<2>); }
VecV VecU32LEA4VV(V a, V b, Ctx c) { return each2<U32>(a, b, c, lea<4>); }
VecV VecU64LEA4VV(V a, V b, Ctx c) { return each2<U64>(a, b, c, lea<4>); }
VecV VecU32LEA8VV(V a, V b, Ctx c) { return each2<U32>(a, b, c, lea<8>); }
VecV VecU64LEA8VV(V a, V b, Ctx c) { return each2<U64>(a, b, c, lea<8>); }
VecV VecU64LEA1XVV(V a, V b, Ctx c) { return each2<U64>(a, b, c, lea_sxtw<1>); }
VecV VecU64LEA2XVV(V a, V b, Ctx c) { return each2<U64>(a, b, c, lea_sxtw<2>); }
VecV VecU64LEA4XVV(V a, V b, Ctx c) { return each2<U64>(a, b, c, lea_sxtw<4>); }
VecV VecU64LEA8XVV(V a, V b, Ctx c) { return each2<U64>(a, b, c, lea_sxtw<8>); }
VecV VecU64LEA1YVV(V a, V b, Ctx c) { return each2<U64>(a, b, c, lea_uxtw<1>); }
VecV VecU64LEA2YVV(V a, V b, Ctx c) { return each2<U64>(a, b, c, lea_uxtw<2>); }
VecV VecU64LEA4YVV(V a, V b, Ctx c) { return each2<U64>(a, b, c, lea_uxtw<4>); }
VecV VecU64LEA8YVV(V a, V b, Ctx c) { return each2<U64>(a, b, c, lea_uxtw<8>); }

VecV VecU32DotVVVX(V a, V b, V acc, Ctx c) { return dot<U32, U8>(a, b, acc, c); }
VecV VecS32DotVVVX(V a, V b, V acc, Ctx c) { return dot<S32, S8>(a, b, acc, c); }
VecV VecU64DotVVVX(V a, V b, V acc, Ctx c) { return dot<U64, U16>(a, b, acc, c); }
VecV VecS64DotVVVX(V a, V b, V acc, Ctx c) { return dot<S64, S16>(a, b, acc, c); }
VecV VecU32DotVVVIX(V a, V b, V acc, unsigned i, Ctx c) { return dot<U32, U8>(a, b, acc, i, c); }
VecV VecS32DotVVVIX(V a, V b, V acc, unsigned i, Ctx c) { return dot<S32, S8>(a, b, acc, i, c); }
VecV VecU64DotVVVIX(V a, V b, V acc, unsigned i, Ctx c) { return dot<U64, U16>(a, b, acc, i, c); }
VecV VecS64DotVVVIX(V a, V b, V acc, unsigned i, Ctx c) { return dot<S64, S16>(a, b, acc, i, c); }

VecV VecS8DupI(U64 i, Ctx c) { return dup<S8>(i, c); }
VecV VecS16DupI(U64 i, Ctx c) { return dup<S16>(i, c); }
VecV VecS32DupI(U64 i, Ctx c) { return dup<S32>(i, c); }
VecV VecS64DupI(U64 i, Ctx c) { return dup<S64>(i, c); }
VecV VecU8DupS(U64 x, Ctx c) { return dup<U8>(x, c); }
VecV VecU16DupS(U64 x, Ctx c) { return dup<U16>(x, c); }
VecV VecU32DupS(U64 x, Ctx c) { return dup<U32>(x, c); }
VecV VecU64DupS(U64 x, Ctx c) { return dup<U64>(x, c); }
VecV VecS64DupMaskI(U64 mask, Ctx c) { return dup<S64>(mask, c); }
VecV VecS8DupIM(V a, P g, U64 i, Ctx c) { return select<S8>(g, dup<S8>(i, c), a, c); }
VecV VecS16DupIM(V a, P g, U64 i, Ctx c) { return select<S16>(g, dup<S16>(i, c), a, c); }
VecV VecS32DupIM(V a, P g, U64 i, Ctx c) { return select<S32>(g, dup<S32>(i, c), a, c); }
VecV VecS64DupIM(V a, P g, U64 i, Ctx c) { return select<S64>(g, dup<S64>(i, c), a, c); }
VecV VecU8DupSM(V a, P g, U64 x, Ctx c) { return select<U8>(g, dup<U8>(x, c), a, c); }
VecV VecU16DupSM(V a, P g, U64 x, Ctx c) { return select<U16>(g, dup<U16>(x, c), a, c); }
VecV VecU32DupSM(V a, P g, U64 x, Ctx c) { return select<U32>(g, dup<U32>(x, c), a, c); }
VecV VecU64DupSM(V a, P g, U64 x, Ctx c) { return select<U64>(g, dup<U64>(x, c), a, c); }
VecV VecB8DupSM(V a, P g, U64 x, Ctx c) { return select<U8>(g, dup<U8>(x, c), a, c); }
VecV VecH16DupSM(V a, P g, U64 x, Ctx c) { return select<U16>(g, dup<U16>(x, c), a, c); }
VecV VecF32DupSM(V a, P g, U64 x, Ctx c) { return select<U32>(g, dup<U32>(x, c), a, c); }
VecV VecD64DupSM(V a, P g, U64 x, Ctx c) { return select<U64>(g, dup<U64>(x, c), a, c); }
VecV VecS8DupIZ(P g, U64 i, Ctx c) { return select<S8>(g, dup<S8>(i, c), zero, c); }
VecV VecS16DupIZ(P g, U64 i, Ctx c) { return select<S16>(g, dup<S16>(i, c), zero, c); }
VecV VecS32DupIZ(P g, U64 i, Ctx c) { return select<S32>(g, dup<S32>(i, c), zero, c); }
VecV VecS64DupIZ(P g, U64 i, Ctx c) { return select<S64>(g, dup<S64>(i, c), zero, c); }

VecV VecS8IndexII(U64 start, U64 step, Ctx c) { return start_step<S8>(start, step, c); }
VecV VecS16IndexII(U64 start, U64 step, Ctx c) { return start_step<S16>(start, step, c); }
VecV VecS32IndexII(U64 start, U64 step, Ctx c) { return start_step<S32>(start, step, c); }
VecV VecS64IndexII(U64 start, U64 step, Ctx c) { return start_step<S64>(start, step, c); }
VecV VecS8IndexIS(U64 start, U64 step, Ctx c) { return start_step<S8>(start, step, c); }
VecV VecS16IndexIS(U64 start, U64 step, Ctx c) { return start_step<S16>(start, step, c); }
VecV VecS32IndexIS(U64 start, U64 step, Ctx c) { return start_step<S32>(start, step, c); }
VecV VecS64IndexIS(U64 start, U64 step, Ctx c) { return start_step<S64>(start, step, c); }
VecV VecS8IndexSI(U64 start, U64 step, Ctx c) { return start_step<S8>(start, step, c); }
VecV VecS16IndexSI(U64 start, U64 step, Ctx c) { return start_step<S16>(start, step, c); }
VecV VecS32IndexSI(U64 start, U64 step, Ctx c) { return start_step<S32>(start, step, c); }
VecV VecS64IndexSI(U64 start, U64 step, Ctx c) { return start_step<S64>(start, step, c); }
VecV VecS8IndexSS(U64 start, U64 step, Ctx c) { return start_step<S8>(start, step, c); }
VecV VecS16IndexSS(U64 start, U64 step, Ctx c) { return start_step<S16>(start, step, c); }
VecV VecS32IndexSS(U64 start, U64 step, Ctx c) { return start_step<S32>(start, step, c); }
VecV VecS64IndexSS(U64 start, U64 step, Ctx c) { return start_step<S64>(start, step, c); }

VecV VecU8MovePrefix1VM(V a, P g, V b, Ctx c) { return select<U8>(g, b, a, c); }
VecV VecU16MovePrefix1VM(V a, P g, V b, Ctx c) { return select<U16>(g, b, a, c); }
VecV VecU32MovePrefix1VM(V a, P g, V b, Ctx c) { return select<U32>(g, b, a, c); }
VecV VecU64MovePrefix1VM(V a, P g, V b, Ctx c) { return select<U64>(g, b, a, c); }
VecV VecU8MovePrefix1VZ(P g, V b, Ctx c) { return select<U8>(g, b, zero, c); }
VecV VecU16MovePrefix1VZ(P g, V b, Ctx c) { return select<U16>(g, b, zero, c); }
VecV VecU32MovePrefix1VZ(P g, V b, Ctx c) { return select<U32>(g, b, zero, c); }
VecV VecU64MovePrefix1VZ(P g, V b, Ctx c) { return select<U64>(g, b, zero, c); }
VecV VecU32SpecialMoveV(V a, Ctx c) { return select<U32>(all, a, zero, c); }
VecV VecU8SelVV(P g, V a, V b, Ctx c) { return select<U8>(g, a, b, c); }
VecV VecU16SelVV(P g, V a, V b, Ctx c) { return select<U16>(g, a, b, c); }
VecV VecU32SelVV(P g, V a, V b, Ctx c) { return select<U32>(g, a, b, c); }
VecV VecU64SelVV(P g, V a, V b, Ctx c) { return select<U64>(g, a, b, c); }
