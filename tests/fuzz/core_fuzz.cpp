// Any instruction word from any machine state. is_sve and execute_sve_instruction must report what
// the table says about the word, and must not access anything outside of the state, no matter which
// bytes are in it. Memory operands are moved into an arena between unreadable pages; if no element
// is active, they stay wild.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <span>

#include "sve/decode/sve_utils.h"
#include "tests/conformance/arena.h"
#include "tests/conformance/states.h"
#include "tests/conformance/words.h"
#include "tests/fuzz/target.h"

namespace {

using namespace conformance;

const row_shape& shape_of(const sve::instruction_row& row) {
  static std::map<const sve::instruction_row*, row_shape> shapes;
  const auto known = shapes.find(&row);
  return known != shapes.end() ? known->second : shapes.emplace(&row, describe(row)).first->second;
}

std::uint32_t choose_word(random_source& random) {
  if (random.chance(10)) return static_cast<std::uint32_t>(random());
  const auto rows = sve::instruction_rows();
  return make_word(shape_of(rows[random.below(rows.size())]), random);
}

void fill(void* bytes, std::size_t size, random_source& random) {
  for (std::size_t i = 0; i < size; ++i) {
    static_cast<unsigned char*>(bytes)[i] = static_cast<unsigned char>(random());
  }
}

// Only bit 0 of a predicate byte has been set on purpose; the other bits may be anything.
void add_noise_to_predicates(cpu_state& state, random_source& random) {
  for (auto& predicate : state.p) {
    for (unsigned char& byte : predicate) byte |= static_cast<unsigned char>(random()) & 0xfe;
  }
}

void make_any_state(const sve::instruction_row* row, std::uint32_t word, random_source& random,
                    cpu_state& state) {
  if (row == nullptr || (!shape_of(*row).memory && random.chance(50))) {
    fill(&state, sizeof state, random);
    return;
  }
  static test_case made;
  make_state(shape_of(*row), word, random(), made);
  if (made.shape->memory) arena() = made.memory;
  unpack(made.before, state);
  state.fpcr_extra = static_cast<std::uint32_t>(random());
  if (random.chance(30)) add_noise_to_predicates(state, random);
}

std::span<const std::byte> bytes_of(const cpu_state& state) {
  return std::as_bytes(std::span(&state, 1));
}

void demand(bool holds, const char* what, std::uint32_t word) {
  if (holds) return;
  std::fprintf(stderr, "0x%08x: %s\n", word, what);
  std::abort();
}

}  // namespace

void run_input(conformance::random_source& random) {
  [[maybe_unused]] static const bool mapped = (map_arena(), true);
  static const auto state = std::make_unique<cpu_state>(), before = std::make_unique<cpu_state>();

  std::uint32_t word = choose_word(random);
  const sve::instruction_row* const row = sve::find_row(word);
  demand(is_sve(word) == (row == nullptr ? nullptr : row->handler), "another handler", word);
  make_any_state(row, word, random, *state);
  state->pc = &word;
  *before = *state;
  const aarch64_decode_rc result = execute_sve_instruction(state.get());
  if (row != nullptr) {
    demand(result == aarch64_decode_ok && state->pc == &word + 1, "was not carried out", word);
  } else {
    demand(result == aarch64_decode_unimplemented, "reports success", word);
    demand(std::ranges::equal(bytes_of(*before), bytes_of(*state)), "changed the state", word);
  }
}
