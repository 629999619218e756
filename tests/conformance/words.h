// Chooses instruction words of a row: the fixed bits of its pattern and operand fields in which
// faults hide.
#pragma once

#include <cstdint>

#include "tests/conformance/random.h"
#include "tests/conformance/row_shape.h"

namespace conformance {

std::uint32_t make_word(const row_shape& shape, random_source& random);

}  // namespace conformance
