// Decode handlers: the three ways in which an instruction form is carried out.
//
// A handler is an instance of a template over its row's pattern, the function that it calls and
// the row's operand descriptors; no handler is written by hand. A fast handler stores the word and
// calls a fast path with operand records. If the fast path raises floating-point flags, the handler
// copies them from the FPSR into the state. A bridge (sve/decode/bridge.h) calls the reference
// semantics. A no-op serves the prefetches, which have no architectural effect.
#pragma once

#include "scalar_unit.h"
#include "sve/decode/operand_fields.h"
#include "sve/state/cpu_state.h"

namespace sve {

template <word_pattern Pattern, auto Function, class... Operands>
aarch64_decode_rc fast_handler(cpu_state* state, unsigned word) {
  state->instr = word;
  return Function(state, Operands::template take<Pattern>(word)...);
}

// The transfer code after the call restores the FPSR from the state, so the state must have the
// flags that the fast path raised.
template <word_pattern Pattern, auto Function, class... Operands>
aarch64_decode_rc fast_fp_handler(cpu_state* state, unsigned word) {
  const aarch64_decode_rc result = fast_handler<Pattern, Function, Operands...>(state, word);
  state->fpsr = fast::fpsr_after(*state);
  return result;
}

template <word_pattern Pattern>
aarch64_decode_rc no_op_handler(cpu_state*, unsigned) {
  return aarch64_decode_ok;
}

// Whether descriptors read every operand field of a pattern; a row that forgets one does not
// compile.
template <word_pattern Pattern, class... Operands>
inline constexpr bool reads_all_fields = ((Operands::template field_mask<Pattern> | ... | 0U) ==
                                          ~Pattern.fixed_mask());

}  // namespace sve
