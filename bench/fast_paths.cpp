// Runs each row of the instruction table that has a fast path once, as a marked section, and prints
// one line for it: name, fast path, result, operands. The first section checks the counter.
//
// Operands are the same in every run: the registers are all different, the state is random from a
// fixed seed, half of all predicate elements are active, and addresses and offsets are inside a
// mapping of the program's own. The rows, and the fast paths that serve them, come from the
// instruction table itself.
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <random>
#include <string_view>
#include <sys/mman.h>

#include "bench/section.h"
#include "sve/state/cpu_state.h"

namespace {

// What the table says about a row with a fast path, in addition to instruction_rows().
struct fast_line {
  std::string_view name, path, operands;
};

#define FAST(pattern, mnemonic, name, path, ...) {#name, #path, #__VA_ARGS__},
#define FAST_FP FAST
#define BRIDGE(...)
#define NO_OP(...)
constexpr fast_line fast_lines[] = {
#include "sve/decode/instructions.inc"
};

constexpr unsigned number_n = 5, number_m = 9;

// The value of each operand field: distinct registers, the pattern ALL, small immediates.
struct field_value {
  char letter;
  unsigned value;
};
constexpr field_value field_values[] = {{'d', 2},        {'t', 2},  {'n', number_n},
                                        {'m', number_m}, {'a', 12}, {'g', 3},
                                        {'p', 31},       {'k', 2},  {'i', 1}};

unsigned field_bit(char letter, unsigned position) {
  for (const auto& [known, value] : field_values) {
    if (known == letter) return (value >> position) & 1;
  }
  return 0;
}

unsigned make_word(const sve::instruction_row& row) {
  unsigned word = 0;
  unsigned position[256] = {};
  for (unsigned bit = 0; bit < 32; ++bit) {
    const char c = row.pattern[31 - bit];
    const bool fixed = c == '0' || c == '1';
    const auto letter = static_cast<unsigned char>(c);
    word |= (fixed ? unsigned{c == '1'} : field_bit(c, position[letter]++)) << bit;
  }
  return word;
}

// The number of bytes in an element, from the digits of the element tag, as in VecS32.
unsigned element_bytes(std::string_view name) {
  unsigned bits = 8;
  std::from_chars(name.data() + 4, name.data() + name.size(), bits);
  return std::min(bits / 8, 8U);
}

// Low enough for vectors of 32-bit addresses, large enough for every offset below.
constexpr std::uint64_t arena_middle = 0x5a000000;
constexpr std::size_t arena_half = std::size_t{1} << 16;

bool map_arena() {
  auto* begin = reinterpret_cast<void*>(  // NOLINT(performance-no-int-to-ptr): a fixed place
      arena_middle - arena_half);
  return mmap(begin, 2 * arena_half, PROT_READ | PROT_WRITE,
              MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0) == begin;
}

// Sets each element i, of the given size in bytes, to value(i).
template <class Value>
void set_elements(vector_register& z, unsigned bytes, Value value) {
  for (unsigned i = 0; i < sve::vector_bytes / bytes; ++i) {
    const std::uint64_t v = value(i);
    std::memcpy(z + std::size_t{i} * bytes, &v, bytes);
  }
}

std::uint64_t element(const vector_register& z, unsigned bytes, unsigned i) {
  std::uint64_t value = 0;
  std::memcpy(&value, z + std::size_t{i} * bytes, bytes);
  return value;
}

bool accesses_memory(std::string_view name) {
  for (const char* stem : {"Load", "Store", "Fill", "Spill"}) {
    if (name.find(stem) != name.npos) return true;
  }
  return false;
}

// Half of the elements of register n are 0 or 1, and half of those of m are equal to n's, so that
// every compare holds for some element. As scalars they are the ends of a count that reaches half
// of a vector.
void make_operands(cpu_state& state, unsigned bytes, std::mt19937_64& random) {
  vector_register &n = state.z[number_n], &m = state.z[number_m];
  set_elements(n, bytes, [&](unsigned) { return random() % 2 != 0 ? random() % 2 : random(); });
  set_elements(m, bytes,
               [&](unsigned i) { return random() % 2 != 0 ? element(n, bytes, i) : random(); });
  state.x[number_n] = 0;
  state.x[number_m] = sve::vector_bytes / bytes / 2;
}

// Registers n and m serve as base and as index or offsets, both as scalars and as vectors.
void make_addresses(cpu_state& state, unsigned bytes, std::mt19937_64& random) {
  set_elements(state.z[number_n], bytes, [&](unsigned) { return arena_middle + random() % 512; });
  set_elements(state.z[number_m], bytes, [&](unsigned) { return random() % 512; });
  state.x[number_n] = arena_middle;
  state.x[number_m] = 3;
}

void make_state(cpu_state& state, std::string_view name) {
  std::mt19937_64 random(1);
  const unsigned bytes = element_bytes(name);
  for (vector_register& z : state.z) set_elements(z, 8, [&](unsigned) { return random(); });
  for (predicate_register& p : state.p) {
    std::memset(p, 0, sizeof p);
    set_elements(p, bytes, [&](unsigned) { return random() % 2; });
  }
  std::memset(state.ffr, 1, sizeof state.ffr);
  (accesses_memory(name) ? make_addresses : make_operands)(state, bytes, random);
}

void run(const sve::instruction_row& row, const fast_line& line) {
  static cpu_state state;
  make_state(state, row.name);
  const int rc = run_as_section(row.handler, &state, make_word(row));
  std::printf("%s %s %d %s\n", line.name.data(), line.path.data(), rc, line.operands.data());
}

}  // namespace

int main() {
  if (!map_arena()) {
    std::perror("bench_fast_paths: cannot map memory at 0x5a000000");
    return 1;
  }
  std::printf("%u\n", sve::vector_bytes);
  run_seven_instructions();
  const fast_line* line = fast_lines;
  for (const sve::instruction_row& row : sve::instruction_rows()) {
    if (row.kind == sve::row_kind::fast) run(row, *line++);
  }
}
