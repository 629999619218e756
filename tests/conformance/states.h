// Makes the machine state of a case from its word and its seed.
#pragma once

#include <array>
#include <cstdint>

#include "tests/conformance/arena.h"
#include "tests/conformance/machine_image.h"
#include "tests/conformance/row_shape.h"

namespace conformance {

// One instruction and everything that it can see.
struct test_case {
  const row_shape* shape;
  std::uint32_t word;
  std::uint64_t state_seed;
  machine_image before;
  arena_content memory;  // only made and compared for memory forms
};

void make_state(const row_shape& shape, std::uint32_t word, std::uint64_t state_seed,
                test_case& made);

}  // namespace conformance
