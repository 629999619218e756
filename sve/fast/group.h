// The units in which the fast paths process a vector: a single element, or a group of 16 bytes as
// one value of the compiler's vector type. Operators on a group work on its elements, modulo their
// width and without promotion. Compares give a mask of all ones and zeros, and ?: selects by such a
// mask. So one loop over element<Unit>(vector, i), and one operation written with operators, serve
// both kinds. On groups they compile to the processor's vector instructions without a branch.
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

// A single element.
template <class T>
using single = T;

// Groups, except that doublewords are processed one by one: for operations that the vector unit
// lacks at that width, such as the multiplication.
template <class T>
using group_but_single_d = std::conditional_t<sizeof(T) == 8, T, group<T>>;

template <class Unit>
inline constexpr bool is_single = std::is_integral_v<Unit>;

template <class Unit>
struct unit_traits {
  using element_type = Unit;
  using signed_unit = std::make_signed_t<Unit>;
};

template <class Unit>
requires(!is_single<Unit>) struct unit_traits<Unit> {
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

// Group i of a vector. The compiler can merge two neighbouring accesses by a group's own type into
// one instruction for 32 bytes, but not two accesses by memcpy.
template <class Group>
struct group_access {
  using type [[gnu::may_alias, gnu::aligned(1)]] = Group;
};

template <class Unit>
inline Unit load_unit(const unsigned char* vector, std::size_t i) {
  if constexpr (is_single<Unit>)
    return element<Unit>(vector, i);
  else
    return reinterpret_cast<const typename group_access<Unit>::type*>(vector)[i];
}

template <class Unit>
inline void store_unit(unsigned char* vector, std::size_t i, Unit value) {
  if constexpr (is_single<Unit>)
    set_element<Unit>(vector, i, value);
  else
    reinterpret_cast<typename group_access<Unit>::type*>(vector)[i] = value;
}

// The governing bits of group i, as a mask of all ones and zeros.
template <class Group>
inline Group governing_mask(const unsigned char* predicate, std::size_t i) {
  return (Group)((load_unit<Group>(predicate, i) & 1) != 0);
}

// The result of `active` if the governing bit of unit i is 1, else that of `inactive`. For a group
// both are computed. The select is written in a form that the compiler recognises as one.
template <class Unit, class Active, class Inactive>
inline Unit where_governed(const unsigned char* predicate, std::size_t i, Active active,
                           Inactive inactive) {
  if constexpr (is_single<Unit>) {
    return sve::active<Unit>(predicate, i) ? active() : inactive();
  } else {
    const Unit a = active(), b = inactive();
    return ((a ^ b) & governing_mask<Unit>(predicate, i)) ^ b;
  }
}

}  // namespace sve::fast
