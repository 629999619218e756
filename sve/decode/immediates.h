// Immediates that an instruction encodes in fewer bits than they have.
#pragma once

#include <bit>
#include <cstdint>

namespace sve {

// A floating-point immediate abcdefgh (VFPExpandImm) in a format: the sign a, the exponent NOT(b),
// b replicated, cd, the fraction efgh followed by zeros.
constexpr std::uint64_t expand_fp_immediate(unsigned imm8, int width, int fraction) {
  const std::uint64_t a = imm8 >> 7;
  const std::uint64_t b = imm8 >> 6 & 1;
  const int replicated = width - fraction - 4;
  const std::uint64_t not_b_and_bs =
      b != 0 ? (std::uint64_t{1} << replicated) - 1 : std::uint64_t{1} << replicated;
  return a << (width - 1) | not_b_and_bs << (fraction + 2) |
         std::uint64_t{imm8 & 63} << (fraction - 4);
}

// A logical immediate (DecodeBitMasks): N in the top bit of field i, then immr and imms. Encodings
// that the architecture reserves give some mask; no assembler makes them.
constexpr std::uint64_t expand_logical_immediate(unsigned imm13) {
  const unsigned n = imm13 >> 12;
  const unsigned immr = (imm13 >> 6) & 63;
  const unsigned imms = imm13 & 63;
  const unsigned levels = (n << 6) | (~imms & 63);
  const unsigned width = levels < 2 ? 2 : std::bit_floor(levels);  // element bits, 2 to 64
  const unsigned ones = (imms & (width - 1)) + 1;
  const unsigned rotation = immr & (width - 1);
  const std::uint64_t element_mask = ~std::uint64_t{0} >> (64 - width);
  const std::uint64_t run = ~std::uint64_t{0} >> (64 - ones);
  const std::uint64_t turned =
      rotation == 0 ? run : ((run >> rotation) | (run << (width - rotation))) & element_mask;
  return turned * (~std::uint64_t{0} / element_mask);  // one copy for each element
}

}  // namespace sve
