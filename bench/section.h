// Marked sections: what the instruction counter (bench/count_instructions) counts by itself.
#pragma once

#include "sve/decode/sve_utils.h"

extern "C" {

// Runs handler(state, word) as a section, which begins with the call and ends with its return; so
// the count is that of the handler, its return included, plus 1.
aarch64_decode_rc run_as_section(decode_handler handler, cpu_state* state, unsigned word);

// A section of seven instructions, against which the counter can be checked.
void run_seven_instructions();
}
