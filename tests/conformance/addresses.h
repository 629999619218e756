// Corrects a machine state so that every active access of a word lies in the arena.
#pragma once

#include <cstdint>

#include "tests/conformance/machine_image.h"
#include "tests/conformance/random.h"
#include "tests/conformance/row_shape.h"

namespace conformance {

// The row must be a memory form. Inactive elements keep their addresses, which may be wild because
// the instruction must not access them. If no element is active, all addresses may be wild.
void place_accesses(const row_shape& shape, std::uint32_t word, machine_image& image,
                    random_source& random);

}  // namespace conformance
