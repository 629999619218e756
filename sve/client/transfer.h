// The code that replaces one SVE instruction in a rewritten block.
#pragma once

#include "dr_api.h"
#include "sve/decode/sve_utils.h"
#include "sve/state/cpu_state.h"

namespace sve {

// Inserts three things ahead of `instr`: the transfer of the machine state into `state`, the call
// of emulate_instruction with `handler` and the word in memory at the instruction's address, and
// the transfer back. `instr` itself stays. The host's stolen register must be X28.
void insert_emulation(void* drcontext, instrlist_t* block, instr_t* instr, cpu_state* state,
                      decode_handler handler);

// A call with two arguments more than emulate_instruction.
struct extended_call {
  void (*callee)(unsigned int word, unsigned char* pc, decode_handler handler, std::uint64_t,
                 std::uint64_t);
  decode_handler handler;
  std::uint64_t fourth;
  std::uint64_t fifth;
};

// The same, with another call.
void insert_emulation(void* drcontext, instrlist_t* block, instr_t* instr, cpu_state* state,
                      const extended_call& call);

}  // namespace sve
