// The shapes of the semantic functions: which elements are computed, and what the others become. A
// family consists of one of these shapes with its element expression.
//
// An exported function takes its vectors by value and passes them on by reference. Where the
// function that gets them is marked [[gnu::noinline]], it compiles to a better loop than it would
// inside the exported function: GCC has more trouble addressing an element of a parameter than one
// of a reference.
#pragma once

#include <cstdint>
#include <type_traits>

#include "sve/semantics/integer_helpers.h"
#include "sve/semantics/semantics.h"
#include "sve/state/integers.h"

namespace sve::semantics {

using namespace integers;

// The w and u arguments of the integer helpers for a tag's type.
template <class T>
inline constexpr int width = 8 * sizeof(T);
template <class T>
inline constexpr int is_unsigned = std::is_unsigned_v<T> ? 1 : 0;

// The element as an integer, signed or unsigned as its tag says.
template <class T>
constexpr Int128 Int(T x) {
  return x;
}

// The wide operand of element e of type T: the 64-bit element that covers it.
template <class T>
auto covering_element(const VecV& wide, unsigned e) {
  using Wide = std::conditional_t<std::is_unsigned_v<T>, U64, S64>;
  return wide.get<Wide>(static_cast<unsigned>(e * sizeof(T) / sizeof(Wide)));
}

// X forms: every element e is operation(e).
template <class T, class Operation>
VecV unpredicated(const CpuContext* ctx, Operation operation) {
  VecV result;
  const unsigned n = ctx->elements<T>();
  for (unsigned e = 0; e < n; ++e) result.set<T>(e, static_cast<T>(operation(e)));
  return result;
}

// M forms: operation(e) where g is active, else the merge source's element.
template <class T, class Operation>
VecV merging(const VecV& merge, const PredV& g, const CpuContext* ctx, Operation operation) {
  return unpredicated<T>(ctx, [&](unsigned e) {
    return g.active<T>(e) ? static_cast<T>(operation(e)) : merge.get<T>(e);
  });
}

// Z forms: operation(e) where g is active, else 0.
template <class T, class Operation>
VecV zeroing(const PredV& g, const CpuContext* ctx, Operation operation) {
  return unpredicated<T>(
      ctx, [&](unsigned e) { return g.active<T>(e) ? static_cast<T>(operation(e)) : T{0}; });
}

// Functions that generate predicates: the first lane of element e is truth(e), and all other lanes
// are 0.
template <class T, class Truth>
PredV generated(const CpuContext* ctx, Truth truth) {
  PredV result{};
  const unsigned n = ctx->elements<T>();
  for (unsigned e = 0; e < n; ++e) result.set_active<T>(e, truth(e));
  return result;
}

}  // namespace sve::semantics
