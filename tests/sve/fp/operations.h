// What is compared: functions of the library with instructions, a line for each in operations.cpp.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace fp_test {

// Right-aligned, zeros above; unused ones are 0.
using operands = std::array<std::uint64_t, 3>;

struct answer {
  std::uint64_t value;
  std::uint64_t flags;  // as in FPSR

  bool operator==(const answer&) const = default;
};

// Answers a batch of operands under a mode, a word with the controls of FPCR.
using computation = std::function<void(std::uint32_t mode, const std::vector<operands>& batch,
                                       std::vector<answer>& answers)>;

struct operation {
  std::string name;      // such as "fadd.h"
  int width;             // of an operand in bits
  int count;             // of operands
  bool last_is_integer;  // the last operand is no floating-point number
  computation library, processor;
};

const std::vector<operation>& operations();

}  // namespace fp_test
