// The decode maps, made from the instruction table when the library is loaded.
//
// Nothing changes them after that, so all threads read them without a lock. Look-ups happen when a
// block is translated, not when it runs: the rewritten code contains the handler's address.
#include "sve/decode/sve_utils.h"

#include <map>

#include "sve/client/counters.h"
#include "sve/decode/maps.h"
#include "sve/decode/pattern.h"
#include "sve/semantics/memory_access.h"
#include "sve/state/cpu_state.h"

namespace {

using decode_map = std::map<int, const sve::instruction_row*>;

struct decode_tables {
  std::array<decode_map, sve::map_count> maps;

  decode_tables() {
    for (const sve::instruction_row& row : sve::instruction_rows()) maps[row.map][row.key] = &row;
    SVEInitialize();
  }
};

const decode_tables tables;

// Whether bits 28 to 25 are those of the SVE group in the architecture's top-level encoding table.
// All rows are in that group, and nearly all instructions of a program are not: this check spares
// them the search of the maps.
constexpr bool is_in_sve_group(std::uint32_t word) { return ((word >> 25) & 0xf) == 0b0010; }

}  // namespace

namespace sve {

std::uint32_t instruction_row::fixed_mask() const { return decode_maps[map].key_mask; }

std::uint32_t instruction_row::fixed_bits() const {
  std::uint32_t result = 0;
  for (const char c : pattern) result = (result << 1) | std::uint32_t{c == '1'};
  return result;
}

std::span<const std::string_view> decode_map_names() {
  static const auto names = [] {
    std::array<std::string_view, map_count> result;
    for (std::size_t i = 0; i < result.size(); ++i) result[i] = decode_maps[i].name;
    return result;
  }();
  return names;
}

const instruction_row* find_row(std::uint32_t word) {
  if (!is_in_sve_group(word)) return nullptr;
  for (std::size_t i = 0; i < map_count; ++i) {
    const int key = static_cast<int>(gather_bits(word, decode_maps[i].key_mask));
    if (const auto hit = tables.maps[i].find(key); hit != tables.maps[i].end()) return hit->second;
  }
  return nullptr;
}

}  // namespace sve

decode_handler is_sve(unsigned int word) {
  const sve::instruction_row* row = sve::find_row(word);
  return row == nullptr ? nullptr : row->handler;
}

aarch64_decode_rc execute_sve_instruction(cpu_state* state) {
  std::uint32_t* const pc = state->pc;
  const std::uint32_t word = *pc;
  const decode_handler handler = is_sve(word);
  if (handler == nullptr) return aarch64_decode_unimplemented;
  const aarch64_decode_rc result = handler(state, word);
  if (result != aarch64_decode_ok) return result;
  update_sve_stats(pc, word);
  state->pc = pc + 1;
  return aarch64_decode_ok;
}

unsigned sve_vector_bytes() { return sve::vector_bytes; }
