// Loads a program into this process: maps its segments and those of its interpreter as the kernel
// would, and builds the stack that it expects.
#pragma once

#include <elf.h>
#include <string>
#include <vector>

#include "host/loading/program.h"
#include "host/loading/program_search.h"

namespace host {

// What the program's auxiliary vector has besides that of this process.
struct shown_facts {
  bool sve = false;                // the capability of SVE
  bool signal_stack_size = false;  // room for AT_MINSIGSTKSZ, for set_auxiliary_value
};

// Throws launch_error if the program or its interpreter cannot be mapped. `own_auxiliary_vector` is
// this process's, up to AT_NULL. If it throws, what it has mapped stays mapped, since the caller
// gives up.
loaded_program load_program(const program_to_run& program,
                            const std::vector<std::string>& environment,
                            const Elf64_auxv_t* own_auxiliary_vector, shown_facts shown = {});

}  // namespace host
