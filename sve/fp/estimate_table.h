// The reciprocal square root estimates, computed by the integer rule with which the architecture
// defines them.
#pragma once

#include <array>
#include <cstdint>

namespace sve {

// The low 8 of the 9 bits of the estimate for entry i. Entries 0 to 127 are for mantissas from 1/4
// to 1/2, in steps of 1/512. Entries from 128 on are for mantissas from 1/2 to 1, in steps of
// 1/256. Each is computed for the middle of its step.
constexpr std::uint8_t recip_sqrt_estimate_entry(unsigned i) {
  const unsigned a = i < 128 ? 2 * (128 + i) + 1 : 2 * (256 + 2 * (i - 128) + 1);
  unsigned b = 512;
  while (a * (b + 1) * (b + 1) < (1U << 28)) ++b;
  return static_cast<std::uint8_t>((b + 1) / 2 - 256);
}

inline constexpr auto recip_sqrt_estimate = [] {
  std::array<std::uint8_t, 256> table{};
  for (unsigned i = 0; i < table.size(); ++i) table[i] = recip_sqrt_estimate_entry(i);
  return table;
}();

}  // namespace sve
