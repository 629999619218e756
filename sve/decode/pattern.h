// Instruction patterns: the encoding page of an instruction as 32 characters, bit 31 first.
//
// '0' and '1' are fixed bits, and a letter is a bit of the operand field of that letter. A field
// may be in pieces ("tszh" and "tszl:imm3" of the shifts); its pieces are joined in the order of
// the word, the highest first. The pattern determines at compile time which map holds the row, what
// its key is there, and where its operands are.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace sve {

// The bits of `word` that `mask` selects, moved together at the low end in their order.
constexpr std::uint32_t gather_bits(std::uint32_t word, std::uint32_t mask) {
  std::uint32_t result = 0;
  int position = 0;
  while (mask != 0) {
    const int low = std::countr_zero(mask);
    const int length = std::countr_one(mask >> low);
    const std::uint32_t run = 0xffffffffU >> (32 - length);
    result |= ((word >> low) & run) << position;
    position += length;
    mask &= ~(run << low);
  }
  return result;
}

// A pattern as a template argument. Anything but 32 characters from 0, 1 and a to z does not
// compile.
struct word_pattern {
  char text[33]{};

  consteval word_pattern(const char (&characters)[33]) {
    for (std::size_t i = 0; i < 32; ++i) {
      const char c = characters[i];
      if (c != '0' && c != '1' && (c < 'a' || c > 'z')) throw "a pattern holds 0, 1 and letters";
      text[i] = c;
    }
  }

  // The mask of the bits for which the pattern has `c`.
  constexpr std::uint32_t mask_of(char c) const {
    std::uint32_t mask = 0;
    for (std::size_t i = 0; i < 32; ++i) mask |= std::uint32_t{text[i] == c} << (31 - i);
    return mask;
  }

  constexpr std::uint32_t fixed_bits() const { return mask_of('1'); }
  constexpr std::uint32_t fixed_mask() const { return mask_of('1') | mask_of('0'); }
};

// The value of the field `Letter` in `word`, and its width in bits. A letter that is not in the
// pattern does not compile.
template <word_pattern Pattern, char Letter>
constexpr unsigned field(unsigned word) {
  static_assert(Pattern.mask_of(Letter) != 0, "the pattern has no field of this letter");
  return gather_bits(word, Pattern.mask_of(Letter));
}

template <word_pattern Pattern, char Letter>
inline constexpr int field_width = std::popcount(Pattern.mask_of(Letter));

template <word_pattern Pattern, char Letter>
constexpr int signed_field(unsigned word) {
  constexpr int unused = 32 - field_width<Pattern, Letter>;
  return static_cast<int>(field<Pattern, Letter>(word) << unused) >> unused;
}

}  // namespace sve
