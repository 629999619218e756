// Operand descriptors: what a row of the instruction table says about one operand.
//
// A descriptor names the letter of the field that holds the operand, the role that the operand
// plays and, for registers, its size code: Zdn<S> is the vector register in field d, both source
// and destination, of word elements. It turns an instruction word into the operand record or the
// decoded immediate that a fast path takes; a bridge turns the same record into a value. The role
// settles which fields of the record hold the code and which the none-code.
#pragma once

#include <bit>
#include <cstdint>

#include "sve/decode/pattern.h"
#include "sve/state/access.h"
#include "sve/state/operands.h"

namespace sve {

// The fields that a descriptor reads, so that a row can be checked to leave none unread.
template <char... Letters>
struct reads {
  template <word_pattern Pattern>
  static constexpr std::uint32_t field_mask = (Pattern.mask_of(Letters) | ...);
};

// A register that is only read or only written, and one that is both source and destination, as a
// record of the given type, whose none-code is None.
template <class Record, unsigned None, char Letter, unsigned Code>
struct one_way : reads<Letter> {
  template <word_pattern Pattern>
  static constexpr Record take(unsigned word) {
    return {field<Pattern, Letter>(word), Code, None, None};
  }
};

template <class Record, unsigned None, char Letter, unsigned Code>
struct destructive : reads<Letter> {
  template <word_pattern Pattern>
  static constexpr Record take(unsigned word) {
    return {field<Pattern, Letter>(word), None, Code, Code};
  }
};

// A vector register.
template <char Letter, element_size Size>
using z_operand = one_way<aarch64_z_reg, z_none, Letter, Size>;
template <char Letter, element_size Size>
using z_destructive = destructive<aarch64_z_reg, z_none, Letter, Size>;

template <element_size Size>
using Zd = z_operand<'d', Size>;
template <element_size Size>
using Zn = z_operand<'n', Size>;
template <element_size Size>
using Zm = z_operand<'m', Size>;
template <element_size Size>
using Za = z_operand<'a', Size>;
template <element_size Size>
using Zt = z_operand<'t', Size>;  // the register, or first of a list, that a load or store moves
template <element_size Size>
using Zdn = z_destructive<'d', Size>;
template <element_size Size>
using Zda = z_destructive<'d', Size>;

// A predicate with its element size or, for a governing one, its qualifier.
template <char Letter, unsigned Code>
using p_operand = one_way<aarch64_p_reg, p_none, Letter, Code>;
template <char Letter, unsigned Code>
using p_destructive = destructive<aarch64_p_reg, p_none, Letter, Code>;

using PgM = p_operand<'g', merging>;
using PgZ = p_operand<'g', zeroing>;
using Pg = p_operand<'g', unqualified>;
template <element_size Size>
using Pd = p_operand<'d', Size>;
template <element_size Size>
using Pn = p_operand<'n', Size>;
template <element_size Size>
using Pm = p_operand<'m', Size>;
template <element_size Size>
using Pt = p_operand<'t', Size>;
template <element_size Size>
using Pdn = p_destructive<'d', Size>;

// A general register of which number 31 is the zero register; S is a W register, D an X register.
template <char Letter, element_size Size>
using r_operand = one_way<aarch64_i_reg, i_none, Letter, Size>;
template <char Letter, element_size Size>
using r_destructive = destructive<aarch64_i_reg, i_none, Letter, Size>;

template <element_size Size>
using Rd = r_operand<'d', Size>;
template <element_size Size>
using Rn = r_operand<'n', Size>;
template <element_size Size>
using Rm = r_operand<'m', Size>;
template <element_size Size>
using Rdn = r_destructive<'d', Size>;

// A general register of which number 31 is the stack pointer.
template <char Letter, element_size Size>
struct rsp_operand : reads<Letter> {
  template <word_pattern Pattern>
  static constexpr aarch64_i_rsp_reg take(unsigned word) {
    return {field<Pattern, Letter>(word), Size};
  }
};

template <element_size Size>
using RdSP = rsp_operand<'d', Size>;
template <element_size Size>
using RnSP = rsp_operand<'n', Size>;
using Base = RnSP<D>;

// A SIMD&FP scalar register. A fast path takes its number, a bridge its value.
struct simd_register {
  unsigned num;
  constexpr operator unsigned() const { return num; }
};

template <char Letter>
struct v_operand : reads<Letter> {
  template <word_pattern Pattern>
  static constexpr simd_register take(unsigned word) {
    return {field<Pattern, Letter>(word)};
  }
};

using Vd = v_operand<'d'>;
using Vn = v_operand<'n'>;
using Vm = v_operand<'m'>;

// The field of a letter as it stands, and sign-extended.
template <char Letter>
struct unsigned_immediate : reads<Letter> {
  template <word_pattern Pattern>
  static constexpr unsigned take(unsigned word) {
    return field<Pattern, Letter>(word);
  }
};

template <char Letter>
struct signed_immediate : reads<Letter> {
  template <word_pattern Pattern>
  static constexpr int take(unsigned word) {
    return signed_field<Pattern, Letter>(word);
  }
};

using UImm = unsigned_immediate<'i'>;
using SImm = signed_immediate<'i'>;
using Start = signed_immediate<'n'>;              // INDEX: the first immediate stands where Rn does
using Step = signed_immediate<'m'>;               // and the second where Rm does
using Rotation = unsigned_immediate<'r'>;         // FCADD: 0 or 1; FCMLA: in units of 90 degrees
using Pattern5 = unsigned_immediate<'p'>;         // a predicate pattern
using MultiplierField = unsigned_immediate<'k'>;  // the multiplier minus 1, as encoded

// The multiplier of the counting forms, 1 to 16.
struct Multiplier : reads<'k'> {
  template <word_pattern Pattern>
  static constexpr unsigned take(unsigned word) {
    return field<Pattern, 'k'>(word) + 1;
  }
};

// An 8-bit immediate in field i, shifted left by 8 if bit h is set.
struct UImmShifted : reads<'i', 'h'> {
  template <word_pattern Pattern>
  static constexpr unsigned take(unsigned word) {
    return field<Pattern, 'i'>(word) << (field<Pattern, 'h'>(word) * 8);
  }
};

struct SImmShifted : reads<'i', 'h'> {
  template <word_pattern Pattern>
  static constexpr int take(unsigned word) {
    return signed_field<Pattern, 'i'>(word) * (field<Pattern, 'h'>(word) != 0 ? 256 : 1);
  }
};

// Shift amounts. The combined field tszh:tszl:imm3 is the element's bits plus the amount for a left
// shift and twice the element's bits minus the amount for a right shift; the row fixes its leading
// 1, so that field i holds what lies below it.
struct LeftShift : reads<'i'> {
  template <word_pattern Pattern>
  static constexpr unsigned take(unsigned word) {
    return field<Pattern, 'i'>(word);
  }
};

struct RightShift : reads<'i'> {
  template <word_pattern Pattern>
  static constexpr unsigned take(unsigned word) {
    return (1U << field_width<Pattern, 'i'>)-field<Pattern, 'i'>(word);
  }
};

// Which of its two constants a floating-point instruction with a one-bit immediate takes.
struct FPArithImm : reads<'i'> {
  template <word_pattern Pattern>
  static constexpr aarch64_sve_fp_arith_imm take(unsigned word) {
    return {field<Pattern, 'i'>(word)};
  }
};

// A floating-point immediate abcdefgh (VFPExpandImm) in a format: the sign a, the exponent NOT(b),
// b replicated, cd, the fraction efgh followed by zeros.
constexpr std::uint64_t expand_fp_immediate(unsigned imm8, int width, int fraction) {
  const std::uint64_t a = imm8 >> 7;
  const std::uint64_t b = imm8 >> 6 & 1;
  const int replicated = width - fraction - 4;
  const std::uint64_t not_b_and_bs =
      b != 0 ? (std::uint64_t{1} << replicated) - 1 : std::uint64_t{1} << replicated;
  return a << (width - 1) | not_b_and_bs << (fraction + 2) |
         std::uint64_t{imm8 & 63} << (fraction - 4);
}

// It in all formats, and in that of an element size.
struct FPDupImm : reads<'i'> {
  template <word_pattern Pattern>
  static constexpr aarch64_sve_fp_dup_imm take(unsigned word) {
    const unsigned imm8 = field<Pattern, 'i'>(word);
    return {static_cast<std::uint16_t>(expand_fp_immediate(imm8, 16, 10)),
            static_cast<std::uint32_t>(expand_fp_immediate(imm8, 32, 23)),
            expand_fp_immediate(imm8, 64, 52)};
  }
};

template <element_size Size>
struct FPImm : reads<'i'> {
  template <word_pattern Pattern>
  static constexpr std::uint64_t take(unsigned word) {
    const aarch64_sve_fp_dup_imm imm = FPDupImm::take<Pattern>(word);
    return Size == D ? imm.dbl : Size == S ? imm.single : imm.half;
  }
};

// A logical immediate (DecodeBitMasks): N in the top bit of field i, then immr and imms. Encodings
// that the architecture reserves give some mask; no assembler makes them.
constexpr std::uint64_t expand_logical_immediate(unsigned imm13) {
  const unsigned n = imm13 >> 12;
  const unsigned immr = (imm13 >> 6) & 63;
  const unsigned imms = imm13 & 63;
  const unsigned levels = (n << 6) | (~imms & 63);
  const unsigned width = levels < 2 ? 2 : std::bit_floor(levels);  // element bits, 2 to 64
  const unsigned ones = (imms & (width - 1)) + 1;
  const unsigned rotation = immr & (width - 1);
  const std::uint64_t element_mask = ~std::uint64_t{0} >> (64 - width);
  const std::uint64_t run = ~std::uint64_t{0} >> (64 - ones);
  const std::uint64_t turned =
      rotation == 0 ? run : ((run >> rotation) | (run << (width - rotation))) & element_mask;
  return turned * (~std::uint64_t{0} / element_mask);  // one copy for each element
}

struct LogicalMask : reads<'i'> {
  template <word_pattern Pattern>
  static constexpr aarch64_sve_logical64_imm take(unsigned word) {
    return {expand_logical_immediate(field<Pattern, 'i'>(word))};
  }
};

}  // namespace sve
