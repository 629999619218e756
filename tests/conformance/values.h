// Stocks of operand values in which faults hide: limits of the element types, values near them,
// shift counts and table indices, special floating-point numbers, predicate shapes.
//
// A case draws from stocks made once, because a machine state has over 7,000 vector bytes. They are
// made from constant seeds, so that a case follows from its own seed alone.
#pragma once

#include <cstdint>

#include "tests/conformance/machine_image.h"
#include "tests/conformance/random.h"

namespace conformance {

// A vector of elements of 1, 2, 4 or 8 bytes, mostly floating-point numbers if that is what the
// instruction works on.
void draw_vector(unsigned element_bytes, bool floating, random_source& random,
                 vector_register& vector);

// A vector of random bytes.
void draw_filler(random_source& random, vector_register& vector);

// A general register's value: limits of the integer types and their neighbourhood, also with
// garbage above a narrower value.
std::uint64_t draw_scalar(random_source& random);

// A predicate shaped for elements of 1, 2, 4 or 8 bytes, or random bits at any lane.
void draw_predicate(unsigned element_bytes, random_source& random, packed_predicate& predicate);

// `size` bytes of memory content.
void draw_memory(random_source& random, unsigned char* memory, std::size_t size);

}  // namespace conformance
