// Marked sections: the instruction counter (bench/count_instructions) counts each one separately.
#pragma once

#include "sve/decode/sve_utils.h"

extern "C" {

// Runs handler(state, word) as a section, which begins with the call and ends with its return. So
// the count is that of the handler, including its return, plus 1.
aarch64_decode_rc run_as_section(decode_handler handler, cpu_state* state, unsigned word);

// A section of seven instructions, to check the counter with.
void run_seven_instructions();
}
