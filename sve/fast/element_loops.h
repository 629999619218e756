// The loops of the fast paths: what is the same for every operation of a shape.
//
// A result is built in a temporary and copied to its register in one block, so that any operand may
// be the destination. The loops have constant trip counts and select instead of branching: for each
// group of 16 bytes the loads, one mask from the predicate, the operation, a select and a store;
// what is computed for inactive elements is discarded. Units of one element branch instead.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "sve/fast/forms.h"
#include "sve/fast/group.h"
#include "sve/state/access.h"

namespace sve::fast {

// The operand types, under the letters that the names of the fast paths have for them.
using rc = aarch64_decode_rc;
using form::mask64;
using form::P;
using form::R;
using form::R_or_SP;
using form::Z;

// Calls `loop` for the element type of a size code, as the given kind of unit: the one place where
// size codes are told apart.
template <template <class> class Unit, class Loop>
inline rc by_size(unsigned size, Loop loop) {
  if (size == S) {
    loop.template operator()<Unit<std::uint32_t>>();
  } else if (size == D) {
    loop.template operator()<Unit<std::uint64_t>>();
  } else if (size == H) {
    loop.template operator()<Unit<std::uint16_t>>();
  } else {
    loop.template operator()<Unit<std::uint8_t>>();
  }
  return aarch64_decode_ok;
}

// Writes value(i) as each unit i of a register, by way of the temporary.
template <class Unit, class Value>
inline rc write_units(unsigned char* destination, Value value) {
  alignas(group_bytes) unsigned char result[vector_bytes];
  for (std::size_t i = 0; i < elements<Unit>; ++i) set_element<Unit>(result, i, value(i));
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

// zd = op(sources...) where pg, else `otherwise`.
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

}  // namespace sve::fast
