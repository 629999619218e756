// What a rewritten block calls in place of an SVE instruction.
#pragma once

#include "sve/decode/sve_utils.h"

// Emulates `word`, the instruction found at `pc` when the block was translated, with `handler` on
// the calling thread's cpu_state, and counts it. It reports a failure on stderr, and the program
// goes on after the instruction. The inserted code has filled the state except for X26, X27 and
// X28, which pass through save slots 1, 2 and 3 in both directions.
void emulate_instruction(unsigned int word, unsigned char* pc, decode_handler handler);
