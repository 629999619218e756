// The bridge between registers and the values of the reference semantics.
//
// A bridge reads the operands that the row's descriptors name, calls the semantic function that has
// the row's name, and writes back the result, the flags and the FFR. It is the slow path and is
// meant to be simple: all that it knows of the instruction is its operands.
#pragma once

#include <cstddef>
#include <type_traits>

#include "sve/decode/operand_fields.h"
#include "sve/semantics/semantics.h"
#include "sve/state/access.h"

namespace sve {

// Reads a predicate: bit k of the value is bit 0 of byte k. The lanes above the vector are 0.
PredV pack(const predicate_register& predicate);

// Writes a predicate: every byte becomes 0 or 1.
void unpack(const PredV& value, predicate_register& predicate);

// Makes the context that a semantic function sees, and writes it back to the machine state.
CpuContext context_in(const cpu_state& state);
void context_out(const CpuContext& context, cpu_state& state);

// The value of an operand. A W register gives its low 32 bits, and a SIMD&FP scalar gives the low
// 64 bits of its register. A vector register is read in place as a VecV: the call takes it by value
// and makes the only copy. Nobody reads the bytes of the VecV beyond the register.
static_assert(offsetof(cpu_state, z) + 31 * sizeof(vector_register) + sizeof(VecV) <=
                  sizeof(cpu_state),
              "a VecV that begins at the last vector register must end inside the state");
inline const VecV& value_of(const cpu_state* state, aarch64_z_reg reg) {
  return *reinterpret_cast<const VecV*>(state->z[reg.num]);
}
PredV value_of(const cpu_state* state, aarch64_p_reg reg);
std::uint64_t value_of(const cpu_state* state, aarch64_i_reg reg);
std::uint64_t value_of(const cpu_state* state, aarch64_i_rsp_reg reg);
std::uint64_t value_of(const cpu_state* state, simd_register reg);
inline unsigned value_of(const cpu_state*, unsigned immediate) { return immediate; }
inline int value_of(const cpu_state*, int immediate) { return immediate; }
inline std::uint64_t value_of(const cpu_state*, std::uint64_t immediate) { return immediate; }
inline bool value_of(const cpu_state*, aarch64_sve_fp_arith_imm immediate) {
  return immediate.select != 0;
}

// Writes a result to the register of the record. The upper half of a W register becomes 0, and so
// does the rest of a SIMD&FP scalar's register.
void write_result(cpu_state* state, aarch64_z_reg reg, const VecV& value);
void write_result(cpu_state* state, aarch64_p_reg reg, const PredV& value);
void write_result(cpu_state* state, aarch64_i_reg reg, std::uint64_t value);
void write_result(cpu_state* state, simd_register reg, std::uint64_t value);

// The destination of a form whose only effect is on memory or flags.
struct no_result {
  template <word_pattern Pattern>
  static constexpr std::uint32_t field_mask = 0;
  static constexpr operand_text text{nullptr, place::unwritten};
  static constexpr operand_use use{};
};

// The handler of a row. The function's arguments are the `Operands` in order, then the context. Its
// result goes to `Result`.
template <word_pattern Pattern, auto Function, class Result, class... Operands>
aarch64_decode_rc bridge_handler(cpu_state* state, unsigned word) {
  CpuContext context = context_in(*state);
  const auto call = [&] {
    return Function(value_of(state, Operands::template take<Pattern>(word))..., &context);
  };
  if constexpr (std::is_same_v<Result, no_result>) {
    call();
  } else {
    write_result(state, Result::template take<Pattern>(word), call());
  }
  context_out(context, *state);
  return aarch64_decode_ok;
}

}  // namespace sve
