// Which elements of w bits are active in a packed predicate. PredSetNZCV, FindFirstActive and
// similar functions are built from these. Unlike them, these functions copy no predicate.
#pragma once

#include "sve/semantics/integer_helpers.h"
#include "sve/semantics/semantics.h"

namespace sve::semantics {

// Elements of w bits in a vector.
inline int element_count(int w, const CpuContext* ctx) {
  return static_cast<int>(ctx->vl * 64 / static_cast<unsigned>(w));
}

// All lanes of element e of w bits, the first lane lowest.
inline std::uint64_t element_lanes(const PredV& p, int e, int w) {
  const unsigned first = static_cast<unsigned>(e * w / 8);
  return (p.words[first / 64] >> (first % 64)) & ones(w / 8);
}

inline bool is_active(const PredV& p, int e, int w) { return (element_lanes(p, e, w) & 1) != 0; }

inline int first_active(const PredV& p, int w, const CpuContext* ctx) {
  const int n = element_count(w, ctx);
  for (int e = 0; e < n; ++e) {
    if (is_active(p, e, w)) return e;
  }
  return -1;
}

inline int last_active(const PredV& p, int w, const CpuContext* ctx) {
  for (int e = element_count(w, ctx) - 1; e >= 0; --e) {
    if (is_active(p, e, w)) return e;
  }
  return -1;
}

}  // namespace sve::semantics
