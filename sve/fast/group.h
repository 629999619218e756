// The units in which the fast paths work through a vector: an element of its own, or a group of 16
// bytes as one value of the compiler's vector type. Operators on a group work on its elements,
// modular and without promotion, compares give a mask of all ones and zeros, and ?: selects by such
// a mask. So a loop over element<Unit>(vector, i), and an operation written with operators, serve
// both; on groups they compile to the processor's vector instructions without a branch.
#pragma once

#include <type_traits>

#include "sve/state/access.h"

namespace sve::fast {

template <class T>
struct group_type {
  using type [[gnu::vector_size(group_bytes)]] = T;
};

// A group of elements of type T.
template <class T>
using group = typename group_type<T>::type;

// An element of its own.
template <class T>
using single = T;

// Groups, but doublewords one by one: for operations that the vector unit lacks at that width, such
// as the multiplication.
template <class T>
using group_but_single_d = std::conditional_t<sizeof(T) == 8, T, group<T>>;

template <class Unit>
struct unit_traits {
  using element_type = Unit;
  using signed_unit = std::make_signed_t<Unit>;
};

template <class Unit>
requires(!std::is_integral_v<Unit>) struct unit_traits<Unit> {
  using element_type = std::remove_reference_t<decltype(std::declval<Unit&>()[0])>;
  using signed_unit = group<std::make_signed_t<element_type>>;
};

template <class Unit>
inline constexpr unsigned element_bits = sizeof(typename unit_traits<Unit>::element_type) * 8;

// The same bits as signed elements.
template <class Unit>
inline auto as_signed(Unit unit) {
  return (typename unit_traits<Unit>::signed_unit)unit;
}

// The same value in every element of a unit.
template <class Unit>
inline Unit broadcast(typename unit_traits<Unit>::element_type value) {
  return Unit{} + value;
}

// The governing bits of unit i as a condition for ?:.
template <class Unit>
inline auto governing(const unsigned char* predicate, std::size_t i) {
  return (element<Unit>(predicate, i) & 1) != 0;
}

}  // namespace sve::fast
