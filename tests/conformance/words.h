// Chooses instruction words of a row: the fixed bits of its pattern, with values for the operand
// fields that are likely to reveal faults.
#pragma once

#include <cstdint>

#include "tests/conformance/random.h"
#include "tests/conformance/row_shape.h"

namespace conformance {

std::uint32_t make_word(const row_shape& shape, random_source& random);

}  // namespace conformance
