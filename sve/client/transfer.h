// The code that replaces one SVE instruction in a rewritten block.
#pragma once

#include "dr_api.h"
#include "sve/decode/sve_utils.h"

namespace sve {

// Inserts three things ahead of `instr`: the transfer of the machine state into `state`, the call
// of emulate_instruction with `handler` and the word in memory at the instruction's address, and
// the transfer back. `instr` itself stays. The host's stolen register must be X28.
void insert_emulation(void* drcontext, instrlist_t* block, instr_t* instr, cpu_state* state,
                      decode_handler handler);

}  // namespace sve
