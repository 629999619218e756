// The loops of the fast paths: what is the same for every operation of a shape.
//
// A result is built in a temporary and copied to its register in one block, so that any operand may
// be the destination. The loops have constant trip counts and select instead of branching: for each
// group of 16 bytes the loads, one mask from the predicate, the operation, a select and a store;
// what is computed for inactive elements is discarded. Units of one element branch instead.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "sve/fast/forms.h"
#include "sve/fast/group.h"
#include "sve/state/access.h"
#include "sve/state/integers.h"

namespace sve::fast {

// The operand types, under the letters that the names of the fast paths have for them.
using rc = aarch64_decode_rc;
using form::mask64;
using form::P;
using form::R;
using form::R_or_SP;
using form::Z;
using namespace integers;

template <class T>
inline constexpr unsigned size_code = std::countr_zero(sizeof(T));

// Calls `loop` for the element type that has the given size code, as the given kind of unit. The
// types are tried in their order, and the last takes all codes that are left.
template <template <class> class Unit, class T, class... Others, class Loop>
inline rc by_size_among(unsigned size, Loop loop) {
  if constexpr (sizeof...(Others) > 0) {
    if (size != size_code<T>) return by_size_among<Unit, Others...>(size, loop);
  }
  loop.template operator()<Unit<T>>();
  return aarch64_decode_ok;
}

template <template <class> class Unit, class Loop>
inline rc by_size(unsigned size, Loop loop) {
  return by_size_among<Unit, std::uint32_t, std::uint64_t, std::uint16_t, std::uint8_t>(size, loop);
}

// Writes value(i) as each unit i of a register directly: for what reads no other vector.
template <class Unit, class Value>
inline rc write_in_place(unsigned char* destination, Value value) {
  for (std::size_t i = 0; i < elements<Unit>; ++i) set_element<Unit>(destination, i, value(i));
  return aarch64_decode_ok;
}

// Writes value(i) as each unit i of a register, by way of the temporary.
template <class Unit, class Value>
inline rc write_units(unsigned char* destination, Value value) {
  alignas(group_bytes) unsigned char result[vector_bytes];
  write_in_place<Unit>(result, value);
  std::memcpy(destination, result, vector_bytes);
  return aarch64_decode_ok;
}

// zd = op(sources...).
template <class Unit, class Op, class... Sources>
inline rc compute(cpu_state* state, Z zd, Op op, Sources... sources) {
  return write_units<Unit>(state->z[zd.num], [=](std::size_t i) {
    return (Unit)op(element<Unit>(state->z[sources.num], i)...);
  });
}

// zd = op(sources...) where pg, else the element of `otherwise`.
template <class Unit, class Op, class... Sources>
inline rc select(cpu_state* state, Z zd, P pg, Z otherwise, Op op, Sources... sources) {
  return write_units<Unit>(state->z[zd.num], [=](std::size_t i) {
    return governing<Unit>(state->p[pg.num], i)
               ? (Unit)op(element<Unit>(state->z[sources.num], i)...)
               : element<Unit>(state->z[otherwise.num], i);
  });
}

// zd = op(sources...) where pg; the other elements keep their old value.
template <class Unit, class Op, class... Sources>
inline rc merge(cpu_state* state, Z zd, P pg, Op op, Sources... sources) {
  return select<Unit>(state, zd, pg, zd, op, sources...);
}

// zd = op(sources...) where pg; the other elements become 0.
template <class Unit, class Op, class... Sources>
inline rc zero_inactive(cpu_state* state, Z zd, P pg, Op op, Sources... sources) {
  return write_units<Unit>(state->z[zd.num], [=](std::size_t i) {
    return governing<Unit>(state->p[pg.num], i)
               ? (Unit)op(element<Unit>(state->z[sources.num], i)...)
               : Unit{};
  });
}

// compute and merge at the element type of a size code.
template <template <class> class UnitKind = group, class Op, class... Sources>
inline rc compute_by_size(cpu_state* state, unsigned size, Z zd, Op op, Sources... sources) {
  return by_size<UnitKind>(size, [=]<class Unit>() { compute<Unit>(state, zd, op, sources...); });
}

template <template <class> class UnitKind = group, class Op, class... Sources>
inline rc merge_by_size(cpu_state* state, unsigned size, Z zd, P pg, Op op, Sources... sources) {
  return by_size<UnitKind>(size, [=]<class Unit>() { merge<Unit>(state, zd, pg, op, sources...); });
}

}  // namespace sve::fast
