#include "tests/conformance/states.h"

#include <algorithm>
#include <cstring>

#include "tests/conformance/addresses.h"
#include "tests/conformance/random.h"
#include "tests/conformance/values.h"

namespace conformance {
namespace {

constexpr std::array<unsigned, 4> element_sizes{1, 2, 4, 8};

// Mostly the row's own element size, so that the values are at the limits of that size.
unsigned some_element_bytes(unsigned own_bytes, random_source& random) {
  const bool own = own_bytes <= 8 && random.chance(70);
  return own ? own_bytes : random.pick(element_sizes);
}

std::uint32_t random_subset(std::uint32_t bits, random_source& random) {
  return random.chance(50) ? 0 : static_cast<std::uint32_t>(random()) & bits;
}

void make_system_registers(machine_image& image, random_source& random) {
  constexpr std::uint32_t cumulative_flags = 0x0800009f;  // QC, IDC, IXC, UFC, OFC, DZC, IOC
  constexpr std::uint32_t controls = 0x07c80000;          // AHP, DN, FZ, RMode, FZ16
  image.nzcv = (random() & 15) << 28;
  image.fpsr = random_subset(cumulative_flags, random);
  image.fpcr = random_subset(controls, random);
}

constexpr std::array<std::uint64_t, 7> type_limits{0,
                                                   0x7fffffff,
                                                   0x80000000,
                                                   0xffffffff,
                                                   0x7fffffffffffffff,
                                                   0x8000000000000000,
                                                   ~std::uint64_t{0}};

// The scalars of an instruction are often close to one another, like those of a loop, and close to
// the point where a loop would wrap.
void make_general_registers(const row_shape& shape, std::uint32_t word, machine_image& image,
                            random_source& random) {
  for (std::uint64_t& x : image.x) x = draw_scalar(random);
  image.sp = draw_scalar(random) & ~std::uint64_t{15};
  const unsigned n = shape.value('n', word);
  const unsigned m = shape.value('m', word);
  if (n >= 31 || m >= 31 || !random.chance(50)) return;
  const std::int64_t apart = random.between(-4, random.chance(50) ? 4 : sve::vector_bytes + 8);
  if (random.chance(50)) image.x[m] = random.pick(type_limits);
  image.x[n] = image.x[m] - static_cast<std::uint64_t>(apart);
  if (random.chance(20)) image.x[m] ^= random() << 32;
}

void copy_with_differences(const vector_register& from, vector_register& to,
                           random_source& random) {
  std::memcpy(to, from, sizeof to);
  for (std::uint64_t i = random.below(4); i > 0; --i)
    to[random.below(sizeof to)] += static_cast<unsigned char>(random.between(-1, 1));
}

void make_vector_registers(const row_shape& shape, std::uint32_t word, machine_image& image,
                           random_source& random) {
  for (vector_register& z : image.z) draw_filler(random, z);
  for (const operand_field& field : shape.fields)
    if (field.width == 5)
      draw_vector(some_element_bytes(shape.operand_bytes, random), shape.floating, random,
                  image.z[shape.value(field.letter, word)]);
  const unsigned n = shape.value('n', word) % 32;
  const unsigned other = shape.value(shape.has('m') ? 'm' : 'd', word) % 32;
  if (n != other && random.chance(30)) copy_with_differences(image.z[n], image.z[other], random);
}

void make_predicates(const row_shape& shape, machine_image& image, random_source& random) {
  for (unsigned i = 0; i < 16; ++i)
    draw_predicate(some_element_bytes(shape.element_bytes, random), random, image.p[i]);
  if (random.chance(40))
    std::ranges::fill(image.p[ffr_index], static_cast<unsigned char>(0xff));
  else
    draw_predicate(some_element_bytes(shape.element_bytes, random), random, image.p[ffr_index]);
}

}  // namespace

void make_state(const row_shape& shape, std::uint32_t word, std::uint64_t state_seed,
                test_case& made) {
  random_source random{state_seed};
  made.shape = &shape;
  made.word = word;
  made.state_seed = state_seed;
  make_system_registers(made.before, random);
  make_general_registers(shape, word, made.before, random);
  make_vector_registers(shape, word, made.before, random);
  make_predicates(shape, made.before, random);
  if (!shape.memory) return;
  draw_memory(random, made.memory.data(), made.memory.size());
  place_accesses(shape, word, made.before, random);
}

}  // namespace conformance
