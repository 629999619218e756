// Tests the test: a comparison that notices no difference would pass every row.
#pragma once

#include <cstdint>
#include <vector>

#include "tests/conformance/row_shape.h"

namespace conformance {

// Takes the processor's own outcome for a case of each row, in the emulation's form. It must
// compare equal. It must not compare equal after one change to any kind of state. Prints what was
// changed and how often. Returns false if a change went unnoticed.
bool self_check(const std::vector<row_shape>& shapes, std::uint64_t seed);

}  // namespace conformance
