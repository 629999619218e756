// What a rewritten block calls in place of an SVE instruction.
#pragma once

#include "sve/decode/sve_utils.h"

// Carries out `word`, which stood at `pc` when the block was translated, by `handler` on the
// calling thread's cpu_state, and counts it. A failure is reported on stderr and the program goes
// on behind the instruction. The inserted code has filled the state but for X26, X27 and X28, which
// pass through save slots 1, 2 and 3 in both directions.
void emulate_instruction(unsigned int word, unsigned char* pc, decode_handler handler);
