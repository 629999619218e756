// The test of the test: a comparison that notices nothing would pass every row.
#pragma once

#include <cstdint>
#include <vector>

#include "tests/conformance/row_shape.h"

namespace conformance {

// For a case of each row: the processor's own outcome, in the emulation's form, must compare equal,
// and must not with any one thing in it changed, whatever kind of state that is. Prints what was
// changed how often; false if a change went unnoticed.
bool self_check(const std::vector<row_shape>& shapes, std::uint64_t seed);

}  // namespace conformance
