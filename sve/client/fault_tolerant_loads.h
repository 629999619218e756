// First-fault and non-fault loads that go to the last element that can be read.
//
// Each of them has a plain load of the same form, and that load decides what can be read: it is run
// with less and less of the governing predicate, until it does not fault. So there is no second
// list of address forms, and what is read is just what the load needs.
#pragma once

#include <cstdint>

#include "sve/decode/sve_utils.h"

namespace sve {

bool is_fault_tolerant(const instruction_row& row);

// The word of the plain load of the same form.
std::uint32_t plain_load_of(std::uint32_t word);

// What a rewritten block calls in place of such a load. As emulate_memory_instruction
// (sve/client/memory_emulation.h), but `handler` is that of the plain load.
void emulate_fault_tolerant_load(unsigned int word, unsigned char* pc, decode_handler handler,
                                 std::uint64_t run, std::uint64_t kept);

}  // namespace sve
