// --architectural: the program sees everything that a processor with SVE of this vector length
// shows.
//
// Without it, the client emulates the instructions of the main module and leaves everything else as
// it is. With it, SVE instructions of all modules are emulated, writes of V registers clear the
// rest of the Z registers, a fault of an emulated instruction reaches the program, first-fault and
// non-fault loads go to the last element, a signal frame has the vectors, and a system call clears
// all but the V registers.
#pragma once

#include "dr_api.h"
#include "sve/state/cpu_state.h"

namespace sve {

// Sets up all of this. Call it once, when the client starts. Returns false if the host lacks a
// resource.
bool start_architectural();

// The parts of the client's events.
void begin_architectural_thread(void* drcontext, cpu_state* state);
void end_architectural_thread(void* drcontext);

// Rewrites a block of any module. Returns the number of instructions that are in no decode map.
unsigned rewrite_architectural(void* drcontext, instrlist_t* block, cpu_state* state);

}  // namespace sve
