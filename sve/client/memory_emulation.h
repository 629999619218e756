// The emulation of an instruction that touches the program's memory, if its fault is to reach the
// program.
#pragma once

#include <cstdint>

#include "sve/client/program_access.h"

namespace sve {

// Whether the word touches memory, by its encoding. Prefetches are among these words.
constexpr bool accesses_memory(std::uint32_t word) { return (word & 0x9e000000) == 0x84000000; }

// The destinations of a row's load. Nothing for a store.
destinations destinations_of(const instruction_row& row, std::uint32_t word);

// What a call has besides the word and its address: the handler that touches memory, the V
// registers that the run before it has written, and the packed destinations.
struct access_call {
  decode_handler handler;
  std::uint64_t run;
  std::uint64_t kept;
};

// Pays off the pending writes, and emulates the instruction by `around`, which runs that handler.
void emulate_access(unsigned int word, unsigned char* pc, const access_call& call,
                    decode_handler around);

// What a rewritten block calls in place of an instruction that touches memory. Like
// emulate_instruction; but before it, the pending writes and those of the registers `run` are paid
// off. `kept` is the packed destinations.
void emulate_memory_instruction(unsigned int word, unsigned char* pc, decode_handler handler,
                                std::uint64_t run, std::uint64_t kept);

}  // namespace sve
