#include "tests/conformance/values.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <vector>

namespace conformance {
namespace {

constexpr std::array<unsigned, 4> element_sizes{1, 2, 4, 8};

std::size_t size_index(unsigned element_bytes) {
  return static_cast<std::size_t>(std::countr_zero(element_bytes));
}

std::uint64_t ones(unsigned width) { return ~std::uint64_t{0} >> (64 - width); }

std::uint64_t limit(unsigned width, random_source& random) {
  const std::uint64_t sign = std::uint64_t{1} << (width - 1);
  return random.pick<std::uint64_t, 12>({0, 1, ones(width), sign, sign - 1, sign + 1,
                                         ones(width) - 1, sign - 2, 2, ones(width) / 3,
                                         ones(width / 2), ~ones(width / 2) & ones(width)});
}

// At most as far from a limit as the largest count times the largest multiplier.
std::uint64_t near_limit(unsigned width, random_source& random) {
  return limit(width, random) + static_cast<std::uint64_t>(random.between(-4200, 4200));
}

// Shift counts up to some beyond the element, or indices up to some beyond the vector.
std::uint64_t small(unsigned width, random_source& random) {
  return random.below(random.chance(50) ? 2 * width + 4 : sve::vector_bits / width + 8);
}

struct float_format {
  unsigned width, fraction;

  std::uint64_t exponent_ones() const { return ones(width - 1 - fraction); }
  std::uint64_t bias() const { return exponent_ones() / 2; }
  std::uint64_t make(std::uint64_t exponent, std::uint64_t fraction_bits) const {
    return ((exponent & exponent_ones()) << fraction) | (fraction_bits & ones(fraction));
  }
};

float_format format_of(unsigned width) {
  if (width == 16) return {16, 10};
  return width == 32 ? float_format{32, 23} : float_format{64, 52};
}

std::uint64_t float_special(const float_format& format, random_source& random) {
  const std::uint64_t quiet = std::uint64_t{1} << (format.fraction - 1);
  const std::uint64_t any = random();
  switch (random.below(10)) {
    case 0: return 0;
    case 1: return format.make(0, random.chance(50) ? 1 : any);                // denormal
    case 2: return format.make(random.chance(50) ? 1 : 0, ~std::uint64_t{0});  // near least normal
    case 3:
      return format.make(format.exponent_ones() - 1, random.chance(50) ? ~std::uint64_t{0} : any);
    case 4: return format.make(format.exponent_ones(), 0);  // infinity
    case 5: return format.make(format.exponent_ones(), quiet | (any & (0 - (any >> 63))));
    case 6: return format.make(format.exponent_ones(), (any & (quiet - 1)) | 1);  // signalling
    case 7: return format.make(1, random.chance(50) ? 0 : any);
    case 8: return format.make(format.bias() + random.below(2UL * format.fraction), 0);  // 2^k
    default: return format.make(format.bias(), random.pick<std::uint64_t, 4>({0, 1, quiet, any}));
  }
}

// Numbers with exponents so close together that sums, products and roundings matter.
std::uint64_t float_moderate(const float_format& format, random_source& random) {
  const std::uint64_t fraction = random.chance(50) ? random() : random() << (format.fraction - 4);
  return format.make(format.bias() + static_cast<std::uint64_t>(random.between(-6, 12)), fraction);
}

std::uint64_t floating(unsigned width, random_source& random) {
  if (width < 16) return random();
  const float_format format = format_of(width);
  const std::uint64_t sign = random.below(2) << (width - 1);
  return sign |
         (random.chance(50) ? float_special(format, random) : float_moderate(format, random));
}

using element_source = std::uint64_t (*)(unsigned width, random_source& random);

std::uint64_t any_value(unsigned, random_source& random) { return random(); }

std::uint64_t mixed(unsigned width, random_source& random) {
  return random.pick<element_source, 5>({limit, near_limit, small, floating, any_value})(width,
                                                                                         random);
}

constexpr std::array<element_source, 7> vector_kinds{any_value, floating, limit, near_limit,
                                                     small,     mixed,    mixed};
constexpr std::size_t any_value_kind = 0;
constexpr std::size_t floating_kind = 1;

// A stock of elements of one size and kind. A vector is a copy that starts at any element.
class element_stock {
 public:
  element_stock(unsigned element_bytes, element_source source) : element_bytes_(element_bytes) {
    random_source random{derive_seed(element_bytes, "elements", bytes.size())};
    for (std::size_t i = 0; i + element_bytes <= bytes.size(); i += element_bytes) {
      const std::uint64_t value = source(8 * element_bytes, random);
      std::memcpy(&bytes[i], &value, element_bytes);
    }
  }

  void copy_to(void* destination, std::size_t size, random_source& random) const {
    const std::size_t elements = (bytes.size() - size) / element_bytes_;
    std::memcpy(destination, &bytes[random.below(elements) * element_bytes_], size);
  }

 private:
  unsigned element_bytes_;
  std::array<unsigned char, 16384> bytes{};
};

const element_stock& stock(unsigned element_bytes, std::size_t kind) {
  static const std::vector<element_stock> stocks = [] {
    std::vector<element_stock> made;
    for (const unsigned size : element_sizes)
      for (const element_source source : vector_kinds) made.emplace_back(size, source);
    return made;
  }();
  return stocks[size_index(element_bytes) * vector_kinds.size() + kind];
}

// Makes a predicate in which exactly the elements for which `is_true` holds are true.
void set_elements(unsigned element_bytes, packed_predicate& predicate, auto&& is_true) {
  std::ranges::fill(predicate, static_cast<unsigned char>(0));
  const unsigned count = sve::vector_bytes / element_bytes;
  for (unsigned e = 0; e < count; ++e)
    if (is_true(e)) set_predicate_bit(predicate, e * element_bytes, true);
}

void make_single(unsigned element_bytes, random_source& random, packed_predicate& predicate) {
  const unsigned count = sve::vector_bytes / element_bytes;
  const auto chosen = static_cast<unsigned>(
      random.pick<std::uint64_t, 4>({0, count - 1, count / 2, random.below(count)}));
  set_elements(element_bytes, predicate, [=](unsigned e) { return e == chosen; });
}

void make_prefix(unsigned element_bytes, random_source& random, packed_predicate& predicate) {
  const auto length = static_cast<unsigned>(random.below(sve::vector_bytes / element_bytes + 1));
  const bool reversed = random.chance(30);
  set_elements(element_bytes, predicate, [=](unsigned e) { return (e < length) != reversed; });
}

void make_random(unsigned element_bytes, unsigned percent, random_source& random,
                 packed_predicate& predicate) {
  set_elements(element_bytes, predicate, [&](unsigned) { return random.chance(percent); });
}

// Sets bits for the other bytes of elements. They mean nothing at this size and must be ignored.
void add_stale_bits(unsigned element_bytes, random_source& random, packed_predicate& predicate) {
  for (unsigned lane = 0; lane < sve::vector_bytes; ++lane)
    if (lane % element_bytes != 0 && random.chance(50)) set_predicate_bit(predicate, lane, true);
}

void make_predicate(unsigned element_bytes, random_source& random, packed_predicate& predicate) {
  switch (random.below(10)) {
    case 0: set_elements(element_bytes, predicate, [](unsigned) { return false; }); break;
    case 1:
    case 2: set_elements(element_bytes, predicate, [](unsigned) { return true; }); break;
    case 3:
    case 4: make_single(element_bytes, random, predicate); break;
    case 5: set_elements(element_bytes, predicate, [](unsigned e) { return e % 2 == 1; }); break;
    case 6:
    case 7: make_prefix(element_bytes, random, predicate); break;
    case 8: make_random(element_bytes, random.chance(50) ? 5 : 95, random, predicate); break;
    default: make_random(element_bytes, 50, random, predicate);
  }
  if (random.chance(40)) add_stale_bits(element_bytes, random, predicate);
}

struct predicate_stock {
  packed_predicate shapes[256];
};

const predicate_stock& shapes_of(unsigned element_bytes) {
  static const std::array<predicate_stock, 4> stocks = [] {
    std::array<predicate_stock, 4> made{};
    random_source random{1};
    for (const unsigned size : element_sizes)
      for (packed_predicate& shape : made[size_index(size)].shapes)
        make_predicate(size, random, shape);
    return made;
  }();
  return stocks[size_index(element_bytes)];
}

}  // namespace

void draw_vector(unsigned element_bytes, bool floating, random_source& random,
                 vector_register& vector) {
  const bool numbers = floating && random.chance(60);
  const std::size_t kind = numbers ? floating_kind : random.below(vector_kinds.size());
  stock(element_bytes, kind).copy_to(vector, sizeof vector, random);
}

void draw_filler(random_source& random, vector_register& vector) {
  stock(8, any_value_kind).copy_to(vector, sizeof vector, random);
}

std::uint64_t draw_scalar(random_source& random) {
  const unsigned width = random.pick<unsigned, 6>({8, 16, 32, 32, 64, 64});
  const std::uint64_t value = mixed(width, random) & ones(width);
  const std::uint64_t mode = random.below(3);
  if (mode == 0) return value;
  const auto extended = static_cast<std::int64_t>(value << (64 - width)) >> (64 - width);
  return mode == 1 ? static_cast<std::uint64_t>(extended) : value | (random() & ~ones(width));
}

void draw_predicate(unsigned element_bytes, random_source& random, packed_predicate& predicate) {
  const packed_predicate& shape = shapes_of(element_bytes).shapes[random.below(256)];
  std::memcpy(predicate, shape, sizeof predicate);
}

void draw_memory(random_source& random, unsigned char* memory, std::size_t size) {
  stock(random.pick(element_sizes), random.below(vector_kinds.size()))
      .copy_to(memory, size, random);
}

}  // namespace conformance
