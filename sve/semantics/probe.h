// The one load of the memory probe, in the assembly of each processor.
//
// It is recognised by its address: only a SIGSEGV at that address comes from the probe. So the
// process's one signal handler serves all threads at once and does not have to know which thread it
// runs on. A fault of any other instruction, in any thread and with any TPIDR_EL0, is not affected.
#pragma once

#include <ucontext.h>

// Loads the byte at `address` and returns 1. Returns 0 if step_over_probe handled a fault of the
// load.
extern "C" int sve_probe(const volatile void* address);

namespace sve {

// If a fault of the probe's load interrupted `context`, makes it continue after that load, with 0
// as the probe's result. Returns whether that was the case.
bool step_over_probe(ucontext_t& context);

}  // namespace sve
