// Random states and memory for the loads and stores, between two pages that can't be accessed, and
// what a load makes of an element.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string_view>

#include "guarded_memory.h"
#include "sve/state/cpu_state.h"
#include "sve/state/operands.h"
#include "sve/state/vector_length.h"

// What a name says: ld or st, nt, ff or nf perhaps, the number of registers, r where one element is
// replicated, s where its sign is extended, the memory element, and the register element where it
// is wider.
struct Shape {
  explicit constexpr Shape(std::string_view name) {
    std::size_t at = name.find_first_of("1234");
    registers = static_cast<std::size_t>(name[at++] - '0');
    if (name[at] == 'r') ++at;
    sign = name[at] == 's';
    if (sign) ++at;
    memory_bytes = bytes_of(name[at++]);
    element_bytes = at < name.size() ? bytes_of(name[at + 1]) : memory_bytes;
  }
  static constexpr std::size_t bytes_of(char letter) {
    return letter == 'b' ? 1 : letter == 'h' ? 2 : letter == 'd' ? 8 : 4;
  }
  std::size_t elements() const { return sve::vector_bytes / element_bytes; }

  std::size_t registers, memory_bytes, element_bytes;
  bool sign;
};

// The operands of the tests.
inline constexpr aarch64_z_reg zt{30, 0, 0, 0};  // lists of more than two registers wrap to Z0
inline constexpr aarch64_p_reg pg{3, sve::zeroing, 0, 0};

class MemoryTest : public testing::Test {
 protected:
  explicit MemoryTest(std::size_t pages = 1) : memory(pages) {
    // Random bytes everywhere: predicate bytes are true by bit 0 alone, with the other bits set
    // too.
    auto* bytes = reinterpret_cast<unsigned char*>(state.get());
    std::generate_n(bytes, sizeof(cpu_state), [this] { return byte(); });
  }

  unsigned char byte() { return static_cast<unsigned char>(random()); }

  void randomise_memory() {
    std::generate_n(memory.data(), memory.size(), [this] { return byte(); });
  }

  bool active(const Shape& form, std::size_t e) const {
    return (state->p[pg.num][e * form.element_bytes] & 1) != 0;
  }

  // Governing predicates: all, none, one element, and random ones with many and few gaps.
  void choose_predicate(const Shape& form, unsigned choice) {
    const std::size_t lone = random() % form.elements();
    for (std::size_t e = 0; e < form.elements(); ++e) {
      const bool truths[] = {true, false, e == lone, random() % 2 != 0, random() % 8 == 0};
      unsigned char& first = state->p[pg.num][e * form.element_bytes];
      first = static_cast<unsigned char>((byte() & 0xfe) | (truths[choice] ? 1 : 0));
    }
  }

  // The element as it arrives in a register: extended to 8 bytes.
  std::int64_t loaded(const Shape& form, std::uint64_t address) const {
    std::int64_t value = 0;
    std::memcpy(&value, memory.data() + (address - memory.begin()), form.memory_bytes);
    const int shift = 64 - 8 * static_cast<int>(form.memory_bytes);
    return form.sign
               ? static_cast<std::int64_t>(static_cast<std::uint64_t>(value) << shift) >> shift
               : value;
  }

  // The state after the call is the one from before with the changes that the test made to it.
  void expect_state_as_before(const char* what, unsigned choice) {
    const auto* expected = reinterpret_cast<const unsigned char*>(before.get());
    const auto* got = reinterpret_cast<const unsigned char*>(state.get());
    const auto differs = std::mismatch(got, got + sizeof(cpu_state), expected).first - got;
    EXPECT_EQ(differs, static_cast<std::ptrdiff_t>(sizeof(cpu_state)))
        << what << ", choice " << choice << ": first difference in byte "
        << differs - static_cast<std::ptrdiff_t>(offsetof(cpu_state, z)) << " from Z0";
  }

  std::mt19937_64 random{1};
  std::unique_ptr<cpu_state> state = std::make_unique<cpu_state>();
  std::unique_ptr<cpu_state> before = std::make_unique<cpu_state>();
  GuardedMemory memory;
};
