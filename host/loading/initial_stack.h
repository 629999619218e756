// The stack of a new program, as the kernel leaves it for the first instruction.
//
// From the stack pointer upwards: argc, argv, null, envp, null, the auxiliary vector; above them
// the strings and random bytes that these point to. A program learns from it what it runs on: the C
// library sets itself up by the auxiliary vector before it runs anything else.
#pragma once

#include <cstddef>
#include <cstdint>
#include <elf.h>
#include <span>
#include <string>
#include <vector>

namespace host {

struct process_start {
  std::vector<std::string> arguments;
  std::vector<std::string> environment;
  std::string executable_name;                 // AT_EXECFN
  std::vector<Elf64_auxv_t> auxiliary_vector;  // without the AT_NULL at its end
  bool executable_stack = false;
};

// What the application's auxiliary vector says about its own files, as absolute addresses.
struct program_addresses {
  std::uint64_t program_headers = 0;
  std::uint64_t program_header_count = 0;
  std::uint64_t entry = 0;
  std::uint64_t interpreter_base = 0;  // load bias of the interpreter; 0 if there is none
};

// The auxiliary vector for the application: this process's own (`own`, up to AT_NULL), with the
// application's addresses in place of the launcher's. Every fact about processor, kernel and user
// passes through. Entries that point to strings still point to the launcher's.
std::vector<Elf64_auxv_t> application_auxiliary_vector(const Elf64_auxv_t* own,
                                                       const program_addresses& program);

// Makes AT_HWCAP describe a processor with SVE but without SVE2.
void add_sve_capability(std::vector<Elf64_auxv_t>& auxiliary_vector);

// Adds AT_MINSIGSTKSZ if the vector does not have it.
void add_signal_stack_size(std::vector<Elf64_auxv_t>& auxiliary_vector);

// Changes an entry of the auxiliary vector on a program's initial stack. Does nothing if the vector
// does not have it.
void set_auxiliary_value(std::uintptr_t stack_pointer, std::uint64_t type, std::uint64_t value);

// The bytes of the stack from the stack pointer, a multiple of 16, to `top`. Everything that the
// auxiliary vector points to (AT_EXECFN, AT_PLATFORM, AT_RANDOM) is copied onto the stack.
std::vector<std::byte> build_initial_stack(const process_start& start, std::uint64_t top,
                                           std::span<const std::byte, 16> random);

struct mapped_stack {
  std::uintptr_t start = 0;  // lowest address that can be used
  std::uintptr_t end = 0;
  std::uintptr_t pointer = 0;
};

// Maps a stack of the size that RLIMIT_STACK allows, with a guard below, and fills it. Throws
// launch_error.
mapped_stack map_initial_stack(const process_start& start);

}  // namespace host
