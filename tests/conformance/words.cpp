#include "tests/conformance/words.h"

#include <bit>

namespace conformance {
namespace {

// The inverse of sve::gather_bits: spreads the low bits of `value` over the bits of `mask`.
std::uint32_t spread_bits(std::uint32_t value, std::uint32_t mask) {
  std::uint32_t result = 0;
  for (; mask != 0; mask &= mask - 1, value >>= 1)
    if ((value & 1) != 0) result |= 1U << std::countr_zero(mask);
  return result;
}

std::uint32_t with_field(std::uint32_t word, const operand_field& field, std::uint32_t value) {
  return (word & ~field.mask) | spread_bits(value, field.mask);
}

// Both ends, both sides of the change of the sign bit, and the registers with a special role: X26
// to X28, and 29, 30 and 31, from which lists of registers wrap round to 0.
std::uint32_t edge_value(unsigned width, random_source& random) {
  const std::uint32_t last = (1U << width) - 1;
  if (width == 5 && random.chance(50))
    return random.pick<std::uint32_t, 8>({26, 27, 28, 29, 30, 31, 31, 0});
  return random.pick<std::uint32_t, 8>({0, last, last, last - 1, 1, last / 2, last / 2 + 1, 0}) &
         last;
}

std::uint32_t with_edge_values(const row_shape& shape, std::uint32_t word, random_source& random) {
  for (const operand_field& field : shape.fields)
    if (random.chance(50)) word = with_field(word, field, edge_value(field.width, random));
  return word;
}

bool names_a_register(const operand_field& field) { return field.width >= 3 && field.width <= 5; }

std::uint32_t with_two_equal(const row_shape& shape, std::uint32_t word, random_source& random) {
  const operand_field& from = shape.fields[random.below(shape.fields.size())];
  const operand_field& to = shape.fields[random.below(shape.fields.size())];
  if (!names_a_register(from) || !names_a_register(to)) return word;
  return with_field(word, to, shape.value(from.letter, word));
}

std::uint32_t with_all_equal(const row_shape& shape, std::uint32_t word, random_source& random) {
  const auto value = static_cast<std::uint32_t>(random.below(32));
  for (const operand_field& field : shape.fields)
    if (names_a_register(field)) word = with_field(word, field, value);
  return word;
}

}  // namespace

std::uint32_t make_word(const row_shape& shape, random_source& random) {
  const std::uint32_t free = ~shape.row->fixed_mask();
  const std::uint32_t word =
      shape.row->fixed_bits() | (static_cast<std::uint32_t>(random()) & free);
  if (shape.fields.empty()) return word;
  const std::uint64_t mode = random.below(100);
  if (mode < 40) return word;
  if (mode < 65) return with_edge_values(shape, word, random);
  if (mode < 90) return with_two_equal(shape, with_edge_values(shape, word, random), random);
  return with_all_equal(shape, word, random);
}

}  // namespace conformance
