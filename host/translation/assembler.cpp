#include "host/translation/assembler.h"

#include <algorithm>
#include <array>

namespace host::a64 {

words mov_constant(unsigned d, std::uint64_t value) {
  std::array<std::uint32_t, 4> halves{};
  for (unsigned half = 0; half < 4; half++) {
    halves[half] = static_cast<std::uint16_t>(value >> (16 * half));
  }
  const bool inverted = std::ranges::count(halves, 0xffffu) > std::ranges::count(halves, 0u);
  const std::uint32_t background = inverted ? 0xffff : 0;
  words out;
  for (unsigned half = 0; half < 4; half++) {
    if (halves[half] == background) continue;
    if (!out.empty()) {
      out.push_back(movk(d, halves[half], half));
    } else {
      out.push_back(inverted ? movn(d, halves[half] ^ 0xffff, half) : movz(d, halves[half], half));
    }
  }
  if (out.empty()) out.push_back(inverted ? movn(d, 0, 0) : movz(d, 0, 0));
  return out;
}

}  // namespace host::a64
