// What the loader hands to the translator: a program that is mapped and ready to run.
//
// The loader knows about ELF files and the initial stack, the translator about code and system
// calls. Only this record passes between them, so neither includes the other.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace host {

// One mapped ELF file. Addresses are application addresses, which are this process's own.
struct module_info {
  std::uintptr_t start = 0;        // address of the first mapped byte
  std::uintptr_t end = 0;          // address after the last mapped byte
  std::uintptr_t entry_point = 0;  // absolute
  std::string full_path;           // as /proc/self/exe would show it
};

struct loaded_program {
  module_info main_module;
  std::vector<module_info> other_modules;  // the interpreter, if there is one
  std::uintptr_t start_pc = 0;             // first instruction: the interpreter's or the program's
  std::uintptr_t stack_pointer = 0;        // points at argc, as the kernel leaves it
  std::uintptr_t stack_start = 0;          // without the guard below it
  std::uintptr_t stack_end = 0;
};

}  // namespace host
