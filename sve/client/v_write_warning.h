// --warn-v-writes: one line if the program writes Vn by an instruction of Advanced SIMD or floating
// point and an SVE instruction then reads all of Zn. On a processor with SVE the write clears the
// rest of Zn. Here it does not, unless the user asks for --architectural.
//
// Not meant are instructions that read the low element alone, and those that are governed by a
// predicate of at most 16 bytes: a PTRUE in the same block says so. These are how a program uses
// SVE instructions on V registers.
#pragma once

#include "dr_api.h"
#include "sve/state/cpu_state.h"

namespace sve {

// Returns false if the host lacks a resource. Call it once, when the client starts.
bool start_v_write_warnings();

// Call it when a thread starts, and when the registers of a thread change at once.
void forget_v_writes();

// Rewrites a block as without this option, and inserts what finds such a read. Returns the number
// of instructions that are in no decode map.
unsigned rewrite_with_warnings(void* drcontext, instrlist_t* block, cpu_state* state);

}  // namespace sve
