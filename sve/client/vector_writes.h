// Which V registers an instruction of Advanced SIMD or floating point writes.
#pragma once

#include <cstdint>

namespace sve {

// Bit n: the A64 instruction `word` writes Bn, Hn, Sn, Dn or Vn, in whole or in part, so a
// processor with SVE clears the rest of Zn. 0 for all other instructions, those of SVE included.
// A word that no processor has allocated may have bits, too.
std::uint32_t v_registers_written(std::uint32_t word);

}  // namespace sve
