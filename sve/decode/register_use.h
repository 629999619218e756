// Which vector and predicate registers an instruction reads and writes.
#pragma once

#include <cstdint>

#include "sve/decode/sve_utils.h"

namespace sve {

// Sets of registers: bit n stands for Zn or Pn.
struct register_use {
  std::uint32_t z_read = 0;     // not just its low element
  std::uint32_t z_written = 0;  // as a whole or in part
  std::uint32_t p_written = 0;  // bits 0 to 15: P0 to P15; bit 16: the FFR
  int governing = -1;           // the number of the governing predicate, or -1
};

// What a word of that row uses. A merging instruction reads its destination, too. A SIMD&FP scalar
// is the low element of its register, and does not count as read. Neither does the register of DUP
// (indexed) if the element is in the low 128 bits. A prefetch uses nothing.
register_use register_use_of(const instruction_row& row, std::uint32_t word);

}  // namespace sve
