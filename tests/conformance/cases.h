// Runs cases of a row both ways and counts the results.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "tests/conformance/comparison.h"
#include "tests/conformance/states.h"

namespace conformance {

enum class row_status { passing, failing };

struct row_result {
  const sve::instruction_row* row;
  row_status status = row_status::passing;
  unsigned compared = 0;
  unsigned failed = 0;
  unsigned reserved = 0;  // words that the processor refuses with SIGILL
};

struct instruction_case {
  std::uint32_t word;
  std::uint64_t state_seed;
};

// Reports a case that failed, with each of its differences.
using failure_report = void (*)(const test_case& tested, const std::vector<difference>& found);

// Makes the case with this index.
using case_maker = std::function<instruction_case(unsigned index)>;

// A word and a state of the row that depend on nothing but the seed and the index.
instruction_case random_case(const row_shape& shape, std::uint64_t seed, unsigned index);

// Makes cases until `count` of them are compared, or until it is clear that the processor refuses
// most of them. A row fails if none of its cases could be compared. Reports the first failing cases
// of the row.
row_result test_row(const row_shape& shape, unsigned count, const case_maker& make,
                    failure_report report);

}  // namespace conformance
