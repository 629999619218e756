// Corrects a machine state so that every active access of a word lies in the arena.
#pragma once

#include <cstdint>

#include "tests/conformance/machine_image.h"
#include "tests/conformance/random.h"
#include "tests/conformance/row_shape.h"

namespace conformance {

// The row has to be a memory form. Inactive elements keep whatever address they have: they must
// not be touched, so their addresses may be wild. With no active element, all addresses may be.
void place_accesses(const row_shape& shape, std::uint32_t word, machine_image& image,
                    random_source& random);

}  // namespace conformance
