// Stocks of operand values that are likely to reveal faults: limits of the element types, values
// near them, shift counts and table indices, special floating-point numbers, predicate shapes.
//
// A machine state has over 7,000 vector bytes, so a case draws from stocks that are made once. They
// are made from constant seeds, so that a case depends only on its own seed.
#pragma once

#include <cstdint>

#include "tests/conformance/machine_image.h"
#include "tests/conformance/random.h"

namespace conformance {

// A vector of elements of 1, 2, 4 or 8 bytes. They are mostly floating-point numbers if the
// instruction works on those.
void draw_vector(unsigned element_bytes, bool floating, random_source& random,
                 vector_register& vector);

// A vector of random bytes.
void draw_filler(random_source& random, vector_register& vector);

// A value for a general register: at or near a limit of the integer types, sometimes with garbage
// above a narrower value.
std::uint64_t draw_scalar(random_source& random);

// A predicate shaped for elements of 1, 2, 4 or 8 bytes, or random bits at any lane.
void draw_predicate(unsigned element_bytes, random_source& random, packed_predicate& predicate);

// `size` bytes of memory content.
void draw_memory(random_source& random, unsigned char* memory, std::size_t size);

}  // namespace conformance
