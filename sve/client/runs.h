// A block as runs: the program's own instructions between two emulated ones. With --architectural
// and with --warn-v-writes, each run tells which V registers it writes
// (sve/client/pending_writes.h).
#pragma once

#include <cstdint>
#include <functional>

#include "dr_api.h"
#include "sve/decode/sve_utils.h"

namespace sve {

// Replaces `instr`, the instruction `word` of a row. `run` has the V registers that the run before
// it has written in this block; the code in its place must take them into account.
using insert_emulation_of_row = std::function<void(instr_t* instr, std::uint32_t word,
                                                   const instruction_row& row, std::uint32_t run)>;

// Rewrites the block. `insert` puts code ahead of each instruction of a row, which is then removed.
// Returns the number of all other instructions.
unsigned rewrite_runs(void* drcontext, instrlist_t* block, const insert_emulation_of_row& insert);

// The V registers written between the last instruction of a row and `end`, in the code that begins
// at `begin`.
std::uint32_t written_before(const std::uint32_t* begin, const std::uint32_t* end);

std::uint32_t word_of(instr_t* instr);

}  // namespace sve
