// Scans over unpacked predicates, and the condition flags that follow from them. They stop at the
// first match and examine eight bytes at a time. Most predicates begin active, and a compare that
// finds nothing, as in the loop of a string search, should not take a branch for each element.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "sve/fast/element_loops.h"
#include "sve/state/access.h"

namespace sve::fast {

// The predicate bits of the elements of type T in eight bytes of a predicate.
template <class T>
inline constexpr std::uint64_t predicate_bits = ~std::uint64_t{0} /
                                                std::numeric_limits<std::make_unsigned_t<T>>::max();

template <class T>
inline std::uint64_t active_bits(const unsigned char* predicate, std::size_t word) {
  return element<std::uint64_t>(predicate, word) & predicate_bits<T>;
}

// The index of the first active element of type T from `i` on, or elements<T> if there is none.
template <class T>
inline std::size_t next_active(const unsigned char* predicate, std::size_t i) {
  std::uint64_t wanted = ~std::uint64_t{0} << (i * sizeof(T) % 8 * 8);
  for (std::size_t word = i * sizeof(T) / 8; word < elements<std::uint64_t>; ++word) {
    const std::uint64_t found = active_bits<T>(predicate, word) & wanted;
    if (found != 0) return (word * 8 + std::countr_zero(found) / 8) / sizeof(T);
    wanted = ~std::uint64_t{0};
  }
  return elements<T>;
}

// One past the index of the last active element of type T, or 0 if there is none.
template <class T>
inline std::size_t end_of_active(const unsigned char* predicate) {
  for (std::size_t word = elements<std::uint64_t>; word > 0; --word) {
    const std::uint64_t found = active_bits<T>(predicate, word - 1);
    if (found != 0) return (word * 8 - std::countl_zero(found) / 8 - 1) / sizeof(T) + 1;
  }
  return 0;
}

// The index of the first element of type T that is active in both predicates, or elements<T> if
// there is none.
template <class T>
inline std::size_t first_in_both(const unsigned char* a, const unsigned char* b) {
  for (std::size_t word = 0; word < elements<std::uint64_t>; ++word) {
    const std::uint64_t found = active_bits<T>(a, word) & element<std::uint64_t>(b, word);
    if (found != 0) return (word * 8 + std::countr_zero(found) / 8) / sizeof(T);
  }
  return elements<T>;
}

template <class T>
inline bool any_in_both(const unsigned char* a, const unsigned char* b) {
  return first_in_both<T>(a, b) < elements<T>;
}

// Writes value(i, first) as each group i of a predicate. `first` is 1 in the first `count` elements
// of type T and 0 in all others. Elements are compared with the last of those, not with `count`: a
// count of 256 bytes does not fit in a byte.
template <class T, class Value>
inline void write_by_first(unsigned char* predicate, unsigned count, Value value) {
  const auto last = broadcast<group<T>>(static_cast<T>(count - 1));
  const T truth = count != 0 ? 1 : 0;
  write_series<T>(predicate, 0, 1, [=](std::size_t i, group<T> series) {
    return value(i, (group<T>)(series <= last) & truth);
  });
}

// Makes the first `count` elements of type T true and all others false, in all their bytes.
template <class T>
inline void set_first_elements(unsigned char* predicate, unsigned count) {
  write_by_first<T>(predicate, count, [](std::size_t, group<T> first) { return first; });
}

// Sets the flags of a predicate result: whether its first active element, any active element and
// its last active element are true. The other bits of `nzcv` stay as they are.
inline void set_flags(cpu_state* state, bool first, bool any, bool last) {
  const std::uint64_t others = state->nzcv & ~std::uint64_t{flags_nzcv};
  state->nzcv = others | (first ? flag_n : 0) | (any ? 0 : flag_z) | (last ? 0 : flag_c);
}

// Sets the flags of a predicate result, with every element of type T counted as active.
template <class T>
inline void set_flags_all_active(cpu_state* state, const unsigned char* result) {
  set_flags(state, active<T>(result, 0), any_in_both<T>(result, result),
            active<T>(result, elements<T> - 1));
}

}  // namespace sve::fast
