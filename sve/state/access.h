// How the emulation accesses registers and instruction words. There is one accessor for a vector
// element, one for a predicate bit, one for each kind of general register, and one for a field of
// an instruction word.
//
// Vector registers are byte arrays that code of many element types accesses. So elements are moved
// by memcpy, which compiles to plain loads and stores and lets the compiler vectorise the element
// loops.
#pragma once

#include <cstdint>
#include <cstring>

#include "sve/state/bits.h"
#include "sve/state/cpu_state.h"
#include "sve/state/operands.h"

namespace sve {

// Element i of a vector register, or of a value at any byte address.
template <class T>
inline T element(const unsigned char* vector, std::size_t i) {
  T value;
  std::memcpy(&value, vector + i * sizeof(T), sizeof(T));
  return value;
}

template <class T>
inline void set_element(unsigned char* vector, std::size_t i, T value) {
  std::memcpy(vector + i * sizeof(T), &value, sizeof(T));
}

// The predicate bit of element i of type T: bit 0 of the element's first byte. The element's other
// bits and bytes are ignored.
template <class T>
inline bool active(const unsigned char* predicate, std::size_t i) {
  return (element<T>(predicate, i) & 1) != 0;
}

// Writes a truth value as predicate element i: 1 or 0 at the element's full width, so that all
// bytes but the first are 0.
template <class T>
inline void set_active(unsigned char* predicate, std::size_t i, bool value) {
  set_element<T>(predicate, i, static_cast<T>(value));
}

inline std::uint64_t read_x(const cpu_state* state, aarch64_i_reg reg) {
  return reg.num < 31 ? state->x[reg.num] : 0;
}

inline void write_x(cpu_state* state, aarch64_i_reg reg, std::uint64_t value) {
  if (reg.num < 31) state->x[reg.num] = value;
}

inline std::uint64_t read_x(const cpu_state* state, aarch64_i_rsp_reg reg) {
  return reg.num < 31 ? state->x[reg.num] : state->sp;
}

inline void write_x(cpu_state* state, aarch64_i_rsp_reg reg, std::uint64_t value) {
  (reg.num < 31 ? state->x[reg.num] : state->sp) = value;
}

}  // namespace sve
