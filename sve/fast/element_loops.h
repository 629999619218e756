// The loops of the fast paths: the part that all operations of a shape share.
//
// Any operand may be the destination. If unit i of the result depends only on unit i of each
// operand, it is written as soon as it is computed. Any other result is built in a temporary and
// copied to its register in one block. The loops have constant trip counts and select instead of
// branching. For each group of 16 bytes they do the loads, make one mask from the predicate, and do
// the operation, a select and a store. What they compute for inactive elements is discarded. Units
// of one element branch instead.
#pragma once

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "sve/fast/forms.h"
#include "sve/fast/group.h"
#include "sve/state/access.h"
#include "sve/state/integers.h"

namespace sve::fast {

// The operand types, under the letters used in the names of the fast paths.
using rc = aarch64_decode_rc;
using form::mask64;
using form::P;
using form::R;
using form::R_or_SP;
using form::Z;
using namespace integers;

template <class T>
inline constexpr unsigned size_code = std::countr_zero(sizeof(T));

// Calls `loop` with the given kind of unit for the element type that has the given size code. It
// tries the types in order, and the last one takes all remaining codes. The loops of all types
// begin with the same loads. The fence keeps the compiler from moving these above the test of the
// size, where all of them would be live at once and most would be spilled. The fence emits no
// instruction.
template <template <class> class Unit, class T, class... Others, class Loop>
inline rc by_size_among(unsigned size, Loop loop) {
  if constexpr (sizeof...(Others) > 0) {
    if (size != size_code<T>) return by_size_among<Unit, Others...>(size, loop);
  }
  std::atomic_signal_fence(std::memory_order_acquire);
  loop.template operator()<Unit<T>>();
  return aarch64_decode_ok;
}

template <template <class> class Unit, class Loop>
inline rc by_size(unsigned size, Loop loop) {
  return by_size_among<Unit, std::uint32_t, std::uint64_t, std::uint16_t, std::uint8_t>(size, loop);
}

// Writes value(i) as each unit i of a register, in ascending order. value(i) may depend on unit i
// of the destination, but on no other unit of it. Groups are handled in blocks: all values of a
// block come before its stores, so that the compiler can load and store neighbours together.
template <class Unit, class Value>
inline rc write_in_place(unsigned char* destination, Value value) {
  constexpr std::size_t count = elements<Unit>, block = 4;
  if constexpr (is_single<Unit>) {
    for (std::size_t i = 0; i < count; ++i) store_unit<Unit>(destination, i, value(i));
  } else {
#pragma GCC unroll 16
    for (std::size_t begin = 0; begin < count; begin += block) {
      const std::size_t size = std::min(block, count - begin);
      Unit values[block];
#pragma GCC unroll 16
      for (std::size_t k = 0; k < size; ++k) values[k] = value(begin + k);
#pragma GCC unroll 16
      for (std::size_t k = 0; k < size; ++k) store_unit<Unit>(destination, begin + k, values[k]);
    }
  }
  return aarch64_decode_ok;
}

// Writes value(i, series) as each group i of a register. The elements of all `series` together are
// start, start + step and so on.
template <class T, class Value>
inline rc write_series(unsigned char* destination, std::uint64_t start, std::uint64_t step,
                       Value value) {
  constexpr std::size_t lanes = group_bytes / sizeof(T);
  group<T> series;
  for (std::size_t lane = 0; lane < lanes; ++lane) {
    series[lane] = static_cast<T>(start + lane * step);
  }
  const auto increment = broadcast<group<T>>(static_cast<T>(lanes * step));
  return write_in_place<group<T>>(destination, [=](std::size_t i) mutable {
    return value(i, std::exchange(series, series + increment));
  });
}

// Writes value(i) as each unit i of a register, through the temporary.
template <class Unit, class Value>
inline rc write_units(unsigned char* destination, Value value) {
  alignas(group_bytes) unsigned char result[vector_bytes];
  write_in_place<Unit>(result, value);
  std::memcpy(destination, result, vector_bytes);
  return aarch64_decode_ok;
}

// Writes every second element of a register a and then of b, beginning with element 0 of each.
template <class T>
inline void write_every_second(unsigned char* out, const unsigned char* a, const unsigned char* b) {
  constexpr std::size_t pairs = elements<T> / 2;
  for (std::size_t i = 0; i < pairs; ++i) {
    set_element<T>(out, i, element<T>(a, 2 * i));
    set_element<T>(out, pairs + i, element<T>(b, 2 * i));
  }
}

// Applies op to unit i of each source.
template <class Unit, class Op, class... Sources>
inline Unit apply(const cpu_state* state, [[maybe_unused]] std::size_t i, Op op,
                  Sources... sources) {
  return (Unit)op(load_unit<Unit>(state->z[sources.num], i)...);
}

// zd = op(sources...).
template <class Unit, class Op, class... Sources>
inline rc compute(cpu_state* state, Z zd, Op op, Sources... sources) {
  return write_in_place<Unit>(state->z[zd.num],
                              [=](std::size_t i) { return apply<Unit>(state, i, op, sources...); });
}

// zd = op(sources...) where pg, else the element of `otherwise`.
template <class Unit, class Op, class... Sources>
inline rc select(cpu_state* state, Z zd, P pg, Z otherwise, Op op, Sources... sources) {
  return write_in_place<Unit>(state->z[zd.num], [=](std::size_t i) {
    return where_governed<Unit>(
        state->p[pg.num], i, [=] { return apply<Unit>(state, i, op, sources...); },
        [=] { return load_unit<Unit>(state->z[otherwise.num], i); });
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
  return write_in_place<Unit>(state->z[zd.num], [=](std::size_t i) {
    return where_governed<Unit>(
        state->p[pg.num], i, [=] { return apply<Unit>(state, i, op, sources...); },
        [] { return Unit{}; });
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
