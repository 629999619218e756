// A sum depends on the order of its additions: FADDA adds one element after the other. The other
// reductions combine neighbours, then the results of neighbours, and so on.
#include <bit>

#include "sve/fp/format.h"
#include "sve/semantics/floating_point.h"
#include "sve/semantics/floating_point_elements.h"

using namespace sve;
using namespace sve::semantics;
using namespace sve::semantics::floating_point;

namespace {

// The identities: the values that leave the other operand unchanged in a sum, a maximum, a minimum,
// and the maximum and minimum that prefer numbers.
template <class T>
constexpr T zero = 0;
template <class T>
constexpr T minus_infinity = format<T>::infinity | sign<T>;
template <class T>
constexpr T plus_infinity = format<T>::infinity;
template <class T>
constexpr T nan = format<T>::default_nan;

template <class T>
[[gnu::noinline]] U64 sum_in_order(const P& g, U64 start, const V& a, Ctx ctx) {
  T sum = static_cast<T>(start);
  const unsigned n = ctx->elements<T>();
  for (unsigned e = 0; e < n; ++e) {
    if (g.active<T>(e)) sum = compute(ctx, add, sum, a.get<T>(e));
  }
  return sum;
}

// The identity stands in for inactive elements, and pads the vector to a power of two.
template <class T, class Operation>
[[gnu::noinline]] U64 tree(const P& g, const V& a, T identity, Ctx ctx, Operation op) {
  T x[sizeof(VecV) / sizeof(T)];
  const unsigned n = ctx->elements<T>();
  unsigned count = std::bit_ceil(n);
  for (unsigned e = 0; e < count; ++e) x[e] = e < n && g.active<T>(e) ? a.get<T>(e) : identity;
  for (; count > 1; count /= 2) {
    for (unsigned j = 0; j < count / 2; ++j) x[j] = compute(ctx, op, x[2 * j], x[2 * j + 1]);
  }
  return x[0];
}

}  // namespace

U64 VecF16AddReduceAV(P g, U64 start, V a, Ctx c) { return sum_in_order<F16>(g, start, a, c); }
U64 VecF32AddReduceAV(P g, U64 start, V a, Ctx c) { return sum_in_order<F32>(g, start, a, c); }
U64 VecD64AddReduceAV(P g, U64 start, V a, Ctx c) { return sum_in_order<D64>(g, start, a, c); }

U64 VecF16AddReduceFV(P g, V a, Ctx c) { return tree<F16>(g, a, zero<F16>, c, add); }
U64 VecF32AddReduceFV(P g, V a, Ctx c) { return tree<F32>(g, a, zero<F32>, c, add); }
U64 VecD64AddReduceFV(P g, V a, Ctx c) { return tree<D64>(g, a, zero<D64>, c, add); }
U64 VecF16MaxReduceFV(P g, V a, Ctx c) { return tree<F16>(g, a, minus_infinity<F16>, c, max); }
U64 VecF32MaxReduceFV(P g, V a, Ctx c) { return tree<F32>(g, a, minus_infinity<F32>, c, max); }
U64 VecD64MaxReduceFV(P g, V a, Ctx c) { return tree<D64>(g, a, minus_infinity<D64>, c, max); }
U64 VecF16MinReduceFV(P g, V a, Ctx c) { return tree<F16>(g, a, plus_infinity<F16>, c, min); }
U64 VecF32MinReduceFV(P g, V a, Ctx c) { return tree<F32>(g, a, plus_infinity<F32>, c, min); }
U64 VecD64MinReduceFV(P g, V a, Ctx c) { return tree<D64>(g, a, plus_infinity<D64>, c, min); }
U64 VecF16MaxNumReduceFV(P g, V a, Ctx c) { return tree<F16>(g, a, nan<F16>, c, maxnum); }
U64 VecF32MaxNumReduceFV(P g, V a, Ctx c) { return tree<F32>(g, a, nan<F32>, c, maxnum); }
U64 VecD64MaxNumReduceFV(P g, V a, Ctx c) { return tree<D64>(g, a, nan<D64>, c, maxnum); }
U64 VecF16MinNumReduceFV(P g, V a, Ctx c) { return tree<F16>(g, a, nan<F16>, c, minnum); }
U64 VecF32MinNumReduceFV(P g, V a, Ctx c) { return tree<F32>(g, a, nan<F32>, c, minnum); }
U64 VecD64MinNumReduceFV(P g, V a, Ctx c) { return tree<D64>(g, a, nan<D64>, c, minnum); }
