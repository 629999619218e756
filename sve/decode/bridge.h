// The bridge between registers and the values of the reference semantics.
//
// A bridge converts what the row's descriptors name into values, calls the semantic function of the
// row's own name, and writes result, flags and FFR back. It is the slow path and meant to be
// simple: it knows nothing of the instruction but its operands.
#pragma once

#include <cstddef>
#include <type_traits>

#include "sve/decode/operand_fields.h"
#include "sve/semantics/semantics.h"
#include "sve/state/access.h"

namespace sve {

// A predicate in: bit k of the value is bit 0 of byte k; the lanes above the vector are 0.
PredV pack(const predicate_register& predicate);

// A predicate out: every byte becomes 0 or 1.
void unpack(const PredV& value, predicate_register& predicate);

// The machine as the semantic function sees it, and back.
CpuContext context_in(const cpu_state& state);
void context_out(const CpuContext& context, cpu_state& state);

// Operand records as values. A W register gives its low 32 bits, a SIMD&FP scalar the low 64 bits
// of its register. A vector register is a VecV where it lies, so that the call, which takes it by
// value, makes the only copy; nobody reads what the VecV has beyond the register.
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

// Results, by the record of the destination. A W register's upper half and the rest of a SIMD&FP
// scalar's register become 0.
void write_result(cpu_state* state, aarch64_z_reg reg, const VecV& value);
void write_result(cpu_state* state, aarch64_p_reg reg, const PredV& value);
void write_result(cpu_state* state, aarch64_i_reg reg, std::uint64_t value);
void write_result(cpu_state* state, simd_register reg, std::uint64_t value);

// The destination of a form whose only effect is on memory or flags.
struct no_result {
  template <word_pattern Pattern>
  static constexpr std::uint32_t field_mask = 0;
  static constexpr operand_text text{nullptr, place::unwritten};
};

// Evaluates to the handler of a row: the function's arguments are `Operands` in order, then the
// context; its result goes to `Result`.
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
