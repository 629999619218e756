// The translator, as the launcher's main program sees it.
//
// A run has these steps, all of them on the process's initial thread:
//   1. parse the command line, map the program (host/loading/loader.h)
//   2. initialize(program)          - modules, signal entry and the initial thread's context exist
//   3. dlopen the client, check its _USES_DR_VERSION_, call its dr_client_main(id, argc, argv)
//   4. run(program)                 - never returns
// Without step 3 a program runs translated and unchanged. The client binds to the functions that
// the launcher exports (host/include) and to its `sigaction`. So dlopen must load it into the
// launcher's own link-map namespace.
#pragma once

#include "host/loading/program.h"

namespace host {

// Call once, before the client is loaded, because its constructors may already use the interface.
void initialize(const loaded_program& program);

// Runs the program. The process ends with the program's exit status, or by the signal that ends the
// program.
[[noreturn]] void run(const loaded_program& program);

}  // namespace host
