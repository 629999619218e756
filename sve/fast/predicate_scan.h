// Scans over unpacked predicates, and the condition flags that follow from them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "sve/state/access.h"

namespace sve::fast {

// The index of the first active element of type T from `i` on, elements<T> if there is none.
template <class T>
inline std::size_t next_active(const unsigned char* predicate, std::size_t i) {
  while (i < elements<T> && !active<T>(predicate, i)) ++i;
  return i;
}

// One past the index of the last active element of type T, 0 if there is none.
template <class T>
inline std::size_t end_of_active(const unsigned char* predicate) {
  std::size_t end = elements<T>;
  while (end > 0 && !active<T>(predicate, end - 1)) --end;
  return end;
}

// The flags of a predicate result: whether its first active element, any, and its last active
// element are true. The other bits of `nzcv` stay as they are.
inline void set_flags(cpu_state* state, bool first, bool any, bool last) {
  const std::uint64_t others = state->nzcv & ~std::uint64_t{flags_nzcv};
  state->nzcv = others | (first ? flag_n : 0) | (any ? 0 : flag_z) | (last ? 0 : flag_c);
}

// The flags of a predicate result of which every element of type T counts as active.
template <class T>
inline void set_flags_all_active(cpu_state* state, const unsigned char* result) {
  set_flags(state, active<T>(result, 0), next_active<T>(result, 0) < elements<T>,
            active<T>(result, elements<T> - 1));
}

}  // namespace sve::fast
