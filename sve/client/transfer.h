// The code that stands in a rewritten block for one SVE instruction.
#pragma once

#include "dr_api.h"
#include "sve/decode/sve_utils.h"

namespace sve {

// Inserts ahead of `instr` the transfer of the machine state into `state`, the call of
// emulate_instruction with the word in memory at the instruction's address and with `handler`, and
// the transfer back. `instr` itself stays. The host's stolen register must be X28.
void insert_emulation(void* drcontext, instrlist_t* block, instr_t* instr, cpu_state* state,
                      decode_handler handler);

}  // namespace sve
