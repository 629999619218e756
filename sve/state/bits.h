// The fields of an instruction word.
#pragma once

namespace sve {

// Bits hi to lo of an instruction word.
constexpr unsigned bits(unsigned word, unsigned hi, unsigned lo) {
  return (word >> lo) & (0xffffffffU >> (31 - (hi - lo)));
}

}  // namespace sve
