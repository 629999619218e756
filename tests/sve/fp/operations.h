// The comparisons of library functions with instructions: operations.cpp has a line for each.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace fp_test {

// Each is right-aligned with zeros above. Unused ones are 0.
using operands = std::array<std::uint64_t, 3>;

struct answer {
  std::uint64_t value;
  std::uint64_t flags;  // as in FPSR

  bool operator==(const answer&) const = default;
};

// Answers a batch of operands under a mode. A mode is a word with the controls of FPCR.
using computation = std::function<void(std::uint32_t mode, const std::vector<operands>& batch,
                                       std::vector<answer>& answers)>;

struct operation {
  std::string name;      // such as "fadd.h"
  int width;             // of an operand in bits
  int count;             // of operands
  bool last_is_integer;  // the last operand is not a floating-point number
  computation library, processor;
};

const std::vector<operation>& operations();

}  // namespace fp_test
