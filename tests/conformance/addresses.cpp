#include "tests/conformance/addresses.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>

#include "sve/state/vector_length.h"
#include "tests/conformance/arena.h"

namespace conformance {
namespace {

constexpr unsigned sp_number = 31;

struct placement {
  const row_shape& shape;
  const memory_form& form;
  std::uint32_t word;
  machine_image& image;
  random_source& random;

  unsigned field(char letter) const { return shape.value(letter, word); }
  bool based_on_sp() const { return field('n') == sp_number; }
  std::uint64_t& base() const { return based_on_sp() ? image.sp : image.x[field('n')]; }
  const packed_predicate& governing() const { return image.p[field('g')]; }
};

// The bytes of a run that active elements occupy, relative to its start.
struct extent {
  std::int64_t begin, end;
};

std::optional<extent> active_elements(const placement& at, unsigned count) {
  const unsigned step = at.form.memory * at.form.registers;
  const unsigned lanes =
      at.form.access == access_shape::quadword ? at.form.memory : at.form.container;
  std::optional<extent> active;
  for (unsigned e = 0; e < count; ++e) {
    if (!predicate_bit(at.governing(), e * lanes)) continue;
    const std::int64_t begin = std::int64_t{e} * step;
    active = extent{active ? active->begin : begin, begin + step};
  }
  return active;
}

// The part of the run that must be readable. A first-fault or non-fault load checks whole pages for
// the length of a vector.
std::optional<extent> required_extent(const placement& at) {
  const unsigned count = sve::vector_bytes / at.form.container;
  switch (at.form.access) {
    case access_shape::whole_vector: return extent{0, sve::vector_bytes};
    case access_shape::whole_predicate: return extent{0, sve::predicate_bytes};
    case access_shape::quadword: return active_elements(at, 16 / at.form.memory);
    case access_shape::replicated:
      if (!active_elements(at, count)) return std::nullopt;
      return extent{0, at.form.memory};
    default: break;
  }
  if (at.form.speculative) return extent{0, sve::vector_bytes + 1};
  return active_elements(at, count);
}

// The start address of a run. The run can be anywhere, cross the page boundary, or be flush with an
// end of the arena.
std::uint64_t choose_start(const placement& at, const std::optional<extent>& needed) {
  if (!needed) return at.random();
  const std::uint64_t first = arena_begin - static_cast<std::uint64_t>(needed->begin);
  const std::uint64_t last = arena_end - static_cast<std::uint64_t>(needed->end);
  const std::uint64_t mode = at.random.below(8);
  if (mode == 0) return first;
  if (mode == 1) return last;
  const bool crossing = mode < 4;
  const std::uint64_t middle =
      arena_boundary - at.random.below(static_cast<std::uint64_t>(needed->end)) - 1;
  const std::uint64_t start = crossing ? middle : first + at.random.below(last - first + 1);
  return std::clamp(start, first, last);
}

// SP as a base must be a multiple of 16, so the start moves with it. It moves towards the middle of
// the arena, where there is always room.
void set_base(const placement& at, std::uint64_t start, std::uint64_t displacement) {
  std::uint64_t base = start - displacement;
  if (at.based_on_sp()) base = (start < arena_boundary ? base + 15 : base) & ~std::uint64_t{15};
  at.base() = base;
}

std::uint64_t immediate_displacement(const placement& at) {
  const std::int64_t immediate = at.form.access == access_shape::replicated
                                     ? std::int64_t{at.field('i')}
                                     : std::int64_t{at.shape.signed_value('i', at.word)};
  return static_cast<std::uint64_t>(immediate * at.form.immediate_unit);
}

std::uint64_t choose_index(const placement& at) {
  if (at.random.chance(30)) return at.random();
  return static_cast<std::uint64_t>(at.random.between(-300, 300));
}

// Base and index are one register r. The start is r * (1 + scale), so r is the quotient. The
// remainder is less than 9 bytes, and the start moves by it towards the middle.
void set_common_register(const placement& at, std::uint64_t start) {
  const std::uint64_t divisor = 1 + at.form.memory;
  at.base() = (start + (start < arena_boundary ? divisor - 1 : 0)) / divisor;
}

void place_run(const placement& at) {
  const std::uint64_t start = choose_start(at, required_extent(at));
  if (at.form.address == address_shape::scalar_immediate) {
    set_base(at, start, immediate_displacement(at));
    return;
  }
  const unsigned m = at.field('m');
  if (m == sp_number) {
    set_base(at, start, 0);  // as an index, register 31 is zero
  } else if (m == at.field('n')) {
    set_common_register(at, start);
  } else {
    at.image.x[m] = choose_index(at);
    set_base(at, start, at.image.x[m] * at.form.memory);
  }
}

// Writes a vector element at the container's width.
void set_element(const placement& at, vector_register& vector, unsigned e, std::uint64_t value) {
  std::memcpy(&vector[static_cast<std::size_t>(e) * at.form.container], &value, at.form.container);
}

// Where elements may point: the whole arena, a few bytes, so that elements overlap, or one end.
struct target_range {
  std::uint64_t first, count;
};

target_range choose_targets(const placement& at) {
  const std::uint64_t room = arena_bytes - at.form.memory + 1;
  switch (at.random.below(4)) {
    case 0: return {arena_begin + at.random.below(room - 12), 12};
    case 1: return {arena_end - at.form.memory - 63, 64};
    default: return {arena_begin, room};
  }
}

// The base is a vector of addresses: Zn[e] + immediate.
void place_vector_base(const placement& at) {
  const target_range targets = choose_targets(at);
  const std::uint64_t displacement = std::uint64_t{at.field('i')} * at.form.memory;
  for (unsigned e = 0; e < sve::vector_bytes / at.form.container; ++e)
    if (predicate_bit(at.governing(), e * at.form.container))
      set_element(at, at.image.z[at.field('n')], e,
                  targets.first + at.random.below(targets.count) - displacement);
}

// The lowest offset in use. The offset's type has room for `span` more above it. The choices
// include both ends of the type, which can put the base far away.
std::uint64_t lowest_offset(const placement& at, std::uint64_t span) {
  const auto back = static_cast<std::int64_t>(span);
  std::int64_t low = 0, high = 0x100000000 - back - 1;
  if (at.form.signed_offset) {
    low = -0x80000000LL;
    high = 0x7fffffffLL - back;
  } else if (!at.form.word_offset) {
    return at.random.chance(50) ? 0 - at.random.below(arena_bytes) : at.random();
  }
  const std::int64_t anywhere =
      low + static_cast<std::int64_t>(at.random.below(static_cast<std::uint64_t>(high - low)));
  const std::int64_t around_zero = std::clamp<std::int64_t>(-back / 2, low, high);
  return static_cast<std::uint64_t>(
      at.random.pick<std::int64_t, 4>({low, high, around_zero, anywhere}));
}

// Random bits in the part of an offset element that doesn't count: above the low word, or shifted
// out by the scale.
std::uint64_t meaningless_bits(const placement& at) {
  if (at.form.word_offset) return at.random() << 32;
  return at.form.offset_scale == 1 ? 0
                                   : at.random() << (64 - std::countr_zero(at.form.offset_scale));
}

// The base is scalar and the offsets are a vector: Rn + Zm[e] * scale.
void place_vector_offsets(const placement& at) {
  const target_range targets = choose_targets(at);
  const std::uint64_t scale = at.form.offset_scale;
  const std::uint64_t span = (targets.count - 1) / scale;
  const std::uint64_t lowest = lowest_offset(at, span);
  const std::uint64_t usable = span - std::min(span, (15 + scale - 1) / scale);  // SP's share
  set_base(at, targets.first, lowest * scale);
  for (unsigned e = 0; e < sve::vector_bytes / at.form.container; ++e)
    if (predicate_bit(at.governing(), e * at.form.container))
      set_element(at, at.image.z[at.field('m')], e,
                  (lowest + at.random.below(usable + 1)) ^ meaningless_bits(at));
}

}  // namespace

void place_accesses(const row_shape& shape, std::uint32_t word, machine_image& image,
                    random_source& random) {
  const placement at{shape, *shape.memory, word, image, random};
  if (at.form.access != access_shape::gathered) {
    place_run(at);
  } else if (at.form.address == address_shape::vector_immediate) {
    place_vector_base(at);
  } else {
    place_vector_offsets(at);
  }
}

}  // namespace conformance
