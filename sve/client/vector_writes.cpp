// On a processor with SVE, Vn is the low 128 bits of Zn, and an instruction that writes any part of
// Vn clears the rest of Zn. Here such an instruction runs on a processor that has only Vn. The rest
// of Zn is in the cpu_state, and the instruction does not reach it. So the client finds out from
// the instruction word which registers it has to clear.
#include "sve/client/vector_writes.h"

#include <array>
#include <bit>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "sve/state/bits.h"

namespace sve {
namespace {

// One line for each group of encodings that write the same registers. A pattern runs from bit 31
// down. 0 and 1 are fixed, x is any bit, and each other letter marks the number of a V register:
//   v  that register is written     p  a pair: that one and the next
//   t  three, from that one         q  four, from that one
// The first line that matches counts, so exceptions come before their group.
constexpr std::string_view patterns[] = {
    // Loads
    "xx011100xxxxxxxxxxxxxxxxxxxvvvvv",  // LDR (literal)
    "xx10110xx1xxxxxxxvvvvvxxxxxvvvvv",  // LDP, LDNP
    "xx111101x1xxxxxxxxxxxxxxxxxvvvvv",  // LDR (unsigned offset)
    "xx111100x10xxxxxxxxx00xxxxxvvvvv",  // LDUR
    "xx111100x10xxxxxxxxxx1xxxxxvvvvv",  // LDR, pre- and post-indexed
    "xx111100x11xxxxxxxxx10xxxxxvvvvv",  // LDR (register)
    "xx011101x10xxxxxxxxx10xxxxxvvvvv",  // LDAPUR
    "xx111100xx1xxxxx0xxx00xxxxxvvvvv",  // LDFADD, LDFMAX, LDFMIN...

    // Loads of vector structures; post-indexed ones, too
    "0x001100x10xxxxx0111xxxxxxxvvvvv",  // LD1 (one register)
    "0x001100x10xxxxx10x0xxxxxxxppppp",  // LD2, LD1 (two registers)
    "0x001100x10xxxxx01x0xxxxxxxttttt",  // LD3, LD1 (three registers)
    "0x001100x10xxxxx00x0xxxxxxxqqqqq",  // LD4, LD1 (four registers)
    "0x001101x10xxxxxxx0xxxxxxxxvvvvv",  // LD1 (single structure), LD1R, LDAP1
    "0x001101x11xxxxxxx0xxxxxxxxppppp",  // LD2 (single structure), LD2R
    "0x001101x10xxxxxxx1xxxxxxxxttttt",  // LD3 (single structure), LD3R
    "0x001101x11xxxxxxx1xxxxxxxxqqqqq",  // LD4 (single structure), LD4R

    // Floating point
    "x0011110xx1xx00x000000xxxxxxxxxx",  // FCVTNS, FCVTPS, FCVTMS, FCVTZS to general, and unsigned
    "x0011110xx10010x000000xxxxxxxxxx",  // FCVTAS, FCVTAU to general
    "x0011110xx10x110000000xxxxxxxxxx",  // FMOV to general
    "0001111001111110000000xxxxxxxxxx",  // FJCVTZS
    "x0011110xx011xxxxxxxxxxxxxxxxxxx",  // FCVTZS, FCVTZU to general (fixed point)
    "00011110xx1xxxxxxx1000xxxxxxxxxx",  // FCMP, FCMPE
    "00011110xx1xxxxxxxxx01xxxxxxxxxx",  // FCCMP, FCCMPE
    "x0011110xxxxxxxxxxxxxxxxxxxvvvvv",  // the rest: FMOV, SCVTF, FADD, FCSEL...
    "00011111xxxxxxxxxxxxxxxxxxxvvvvv",  // FMADD, FMSUB, FNMADD, FNMSUB

    // Advanced SIMD
    "0x001110000xxxxx001011xxxxxxxxxx",  // SMOV
    "0x001110000xxxxx001111xxxxxxxxxx",  // UMOV
    "0xx01110xxxxxxxxxxxxxxxxxxxvvvvv",  // the rest of the vector forms, AES
    "0xx01111xxxxxxxxxxxxxxxxxxxvvvvv",  //   with an immediate, or by element
    "01x1111xxxxxxxxxxxxxxxxxxxxvvvvv",  // scalar forms, SHA-1, SHA-256
    "11001110xxxxxxxxxxxxxxxxxxxvvvvv",  // SHA-512, SHA-3, SM3, SM4
};

// The places of register numbers in a word that is written to.
constexpr std::array<unsigned, 2> field_positions = {0, 10};

struct encoding_group {
  std::uint32_t mask = 0;
  std::uint32_t value = 0;
  std::array<std::uint8_t, std::size(field_positions)> registers{};  // from the one in each field
};

constexpr std::uint8_t registers_of_letter(char letter) {
  switch (letter) {
    case 'v': return 1;
    case 'p': return 2;
    case 't': return 3;
    case 'q': return 4;
    default: return 0;
  }
}

consteval encoding_group parse(std::string_view pattern) {
  if (pattern.size() != 32) throw "a pattern has 32 characters";
  encoding_group group;
  for (std::size_t bit = 0; bit < 32; ++bit) {
    const char c = pattern[31 - bit];
    if (c != '0' && c != '1' && c != 'x' && registers_of_letter(c) == 0) throw "no such letter";
    group.mask |= std::uint32_t{c == '0' || c == '1'} << bit;
    group.value |= std::uint32_t{c == '1'} << bit;
  }
  std::size_t filled = 0;
  for (std::size_t i = 0; i < field_positions.size(); ++i) {
    const std::string_view field = pattern.substr(27 - field_positions[i], 5);
    if (registers_of_letter(field[0]) == 0) continue;
    if (field.find_first_not_of(field[0]) != field.npos) throw "a letter must fill its field";
    group.registers[i] = registers_of_letter(field[0]);
    filled += field.size();
  }
  for (const char c : pattern) filled -= registers_of_letter(c) != 0 ? 1 : 0;
  if (filled != 0) throw "a letter is outside of the fields";
  return group;
}

consteval auto parse_all() {
  std::array<encoding_group, std::size(patterns)> parsed;
  for (std::size_t i = 0; i < parsed.size(); ++i) parsed[i] = parse(patterns[i]);
  return parsed;
}

constexpr auto groups = parse_all();

// Bits 27 and 26 of the architecture's top-level encoding table. All that can write a V register
// has 1 in both: loads and stores of vector registers, and data processing of Advanced SIMD and
// floating point. This check spares all other instructions the search.
constexpr bool may_write(std::uint32_t word) { return bits(word, 27, 26) == 3; }

consteval bool every_group_may_write() {
  for (const encoding_group& group : groups)
    if (!may_write(group.mask) || !may_write(group.value)) return false;
  return true;
}
static_assert(every_group_may_write(), "v_registers_written must not miss a line of the table");

// `count` registers from number `first`. After V31 comes V0.
constexpr std::uint32_t registers_from(unsigned first, unsigned count) {
  return std::rotl((1U << count) - 1, static_cast<int>(first));
}

}  // namespace

std::uint32_t v_registers_written(std::uint32_t word) {
  if (!may_write(word)) return 0;
  for (const encoding_group& group : groups) {
    if ((word & group.mask) != group.value) continue;
    std::uint32_t written = 0;
    for (std::size_t i = 0; i < field_positions.size(); ++i) {
      const unsigned low = field_positions[i];
      written |= registers_from(bits(word, low + 4, low), group.registers[i]);
    }
    return written;
  }
  return 0;
}

}  // namespace sve
