// Conversion between the unpacked predicate, one byte for each vector byte, and the packed one, one
// bit for each. Memory and the reference semantics use the packed one. Multiplication converts
// eight lanes at a time: a loop over single bits would make the conversion the costliest part of an
// instruction.
#pragma once

#include <cstdint>

namespace sve {

// Bit k of the result is bit 0 of byte k of `lanes`. The other bits of each byte are ignored.
constexpr std::uint8_t pack_lanes(std::uint64_t lanes) {
  constexpr std::uint64_t lowest = 0x0101010101010101;
  constexpr std::uint64_t gather = 0x0102040810204080;  // moves bit 8k to bit 56 + k
  return static_cast<std::uint8_t>(((lanes & lowest) * gather) >> 56);
}

// Byte k of the result is bit k of `packed`: 0 or 1.
constexpr std::uint64_t unpack_lanes(std::uint8_t packed) {
  constexpr std::uint64_t lowest = 0x0101010101010101;
  constexpr std::uint64_t bit_k_of_byte_k = 0x8040201008040201;
  constexpr std::uint64_t carry_if_set = 0x7f7f7f7f7f7f7f7f;
  return ((((packed * lowest) & bit_k_of_byte_k) + carry_if_set) >> 7) & lowest;
}

static_assert(pack_lanes(0x01ff0000feff0001) == 0b11000101 &&
                  unpack_lanes(0x81) == (1ULL << 56) + 1,
              "lane 0 is the lowest bit of the packed byte and the lowest byte of the lanes");

}  // namespace sve
