// The one load of the probe of memory, in the assembly of each processor.
//
// It is known by its address: a SIGSEGV there, and nowhere else, is the probe's. So the process's
// one signal handler serves all threads at once without asking which thread it runs on, and a fault
// of any other instruction, in whatever thread and with whatever TPIDR_EL0, stays what it is.
#pragma once

#include <ucontext.h>

// Loads the byte at `address` and returns 1; returns 0 if step_over_probe took the load's fault.
extern "C" int sve_probe(const volatile void* address);

namespace sve {

// If `context` was interrupted by a fault of the probe's load, lets it go on behind that load, with
// 0 as the probe's result. Returns whether it was.
bool step_over_probe(ucontext_t& context);

}  // namespace sve
