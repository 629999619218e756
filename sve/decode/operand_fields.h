// Operand descriptors: what a row of the instruction table says about one operand.
//
// A descriptor names the letter of the field that holds the operand, the role that the operand
// plays and, for registers, its size code: Zdn<S> is the vector register in field d, both source
// and destination, of word elements. It turns an instruction word into the operand record or the
// decoded immediate that a fast path takes; a bridge turns the same record into a value. The role
// settles which fields of the record hold the code and which the none-code.
//
// Its `text` says how the assembler writes the operand (sve/decode/operand_text.h). Operands that
// are taken alike and written in different ways have descriptors that differ in this alone.
#pragma once

#include <cstdint>
#include <string>

#include "sve/decode/immediates.h"
#include "sve/decode/operand_text.h"
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

// Where an operand stands that the assembler writes once, by the letter of its field.
constexpr place usual_place(char letter) {
  if (letter == 'd' || letter == 't') return place::destination;
  return letter == 'g' ? place::predicate : place::in_order;
}

// A vector register. What a destructive one says beside its size is where the assembler writes it a
// second time, and how the encoding pages call it.
template <char Letter, element_size Size>
struct z_operand : one_way<aarch64_z_reg, z_none, Letter, Size> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::vector(f, Letter, Size); }, usual_place(Letter)};
};

template <element_size Size>
struct z_destructive : destructive<aarch64_z_reg, z_none, 'd', Size> {
  static constexpr operand_text written_as(place again, const char* name) {
    return {[](const word_fields& f) { return written::vector(f, 'd', Size); }, place::destination,
            again, name};
  }
};

template <element_size Size>
using Zd = z_operand<'d', Size>;
template <element_size Size>
using Zn = z_operand<'n', Size>;
template <element_size Size>
using Zm = z_operand<'m', Size>;
template <element_size Size>
using Za = z_operand<'a', Size>;

template <element_size Size>
struct Zdn : z_destructive<Size> {
  static constexpr operand_text text = Zdn::written_as(place::after_predicate, "dn");
};
template <element_size Size>
struct ZdnOnce : z_destructive<Size> {
  static constexpr operand_text text = ZdnOnce::written_as(place::unwritten, "dn");
};
template <element_size Size>
struct Zda : z_destructive<Size> {
  static constexpr operand_text text = Zda::written_as(place::unwritten, "da");
};

// An operand that the function takes and the assembler does not write: what the destination keeps
// in inactive elements.
template <element_size Size>
struct Merge : z_destructive<Size> {
  static constexpr operand_text text{nullptr, place::unwritten};
};

// Vector registers that are written in a way of their own: without a size, as a list in braces,
// with the constant 0 that they are compared with.
template <element_size Size>
struct ZdBare : z_operand<'d', Size> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::vector(f, 'd', z_none); }, place::destination};
};
template <element_size Size>
struct ZnBare : z_operand<'n', Size> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::vector(f, 'n', z_none); }};
};
template <element_size Size>
struct ZnList : z_operand<'n', Size> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::vectors(f, 'n', Size, 1); }};
};
template <element_size Size>
struct ZnAndZero : z_operand<'n', Size> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::vector(f, 'n', Size) + ", #0.0"; }};
};

// What a load or store moves: a register, the first one of a list, or a register as a whole.
template <element_size Size, int Registers = 1>
struct Zt : z_operand<'t', Size> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::vectors(f, 't', Size, Registers); },
      place::destination};
};
template <element_size Size>
struct ZtBare : z_operand<'t', Size> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::vector(f, 't', z_none); }, place::destination};
};

// A predicate with its element size or, for a governing one, its qualifier.
template <char Letter, unsigned Code, unsigned WrittenCode = Code>
struct p_operand : one_way<aarch64_p_reg, p_none, Letter, Code> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::predicate(f, Letter, WrittenCode); },
      usual_place(Letter)};
};

template <element_size Size>
struct p_destructive : destructive<aarch64_p_reg, p_none, 'd', Size> {
  static constexpr operand_text written_as(place again, const char* name) {
    return {[](const word_fields& f) { return written::predicate(f, 'd', Size); },
            place::destination, again, name};
  }
};

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
using PtBare = p_operand<'t', Size, unqualified>;

template <element_size Size>
struct Pdn : p_destructive<Size> {
  static constexpr operand_text text = Pdn::written_as(place::after_predicate, "dn");
};
template <element_size Size>
struct Pdm : p_destructive<Size> {
  static constexpr operand_text text = Pdm::written_as(place::last, "dm");
};

// A general register of which number 31 is the zero register; S is a W register, D an X register.
template <char Letter, element_size Size>
struct r_operand : one_way<aarch64_i_reg, i_none, Letter, Size> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::general(f, Letter, Size); }, usual_place(Letter)};
};

template <element_size Size>
struct r_destructive : destructive<aarch64_i_reg, i_none, 'd', Size> {
  static constexpr operand_text written_as(place again) {
    return {[](const word_fields& f) { return written::general(f, 'd', Size); }, place::destination,
            again, "dn"};
  }
};

template <element_size Size>
using Rd = r_operand<'d', Size>;
template <element_size Size>
using Rn = r_operand<'n', Size>;
template <element_size Size>
using Rm = r_operand<'m', Size>;
template <element_size Size>
struct Rdn : r_destructive<Size> {
  static constexpr operand_text text = Rdn::written_as(place::after_predicate);
};
template <element_size Size>
struct RdnOnce : r_destructive<Size> {
  static constexpr operand_text text = RdnOnce::written_as(place::unwritten);
};

// A general register of which number 31 is the stack pointer.
template <char Letter, element_size Size, place Stands = usual_place(Letter)>
struct rsp_operand : reads<Letter> {
  template <word_pattern Pattern>
  static constexpr aarch64_i_rsp_reg take(unsigned word) {
    return {field<Pattern, Letter>(word), Size};
  }
  static constexpr operand_text text{
      [](const word_fields& f) { return written::general_or_sp(f, Letter, Size); }, Stands};
};

template <element_size Size>
using RdSP = rsp_operand<'d', Size>;
template <element_size Size>
using RnSP = rsp_operand<'n', Size>;

// Addresses: a base and an offset, [x4, z5.s, sxtw #1]. What an offset register is extended or
// shifted by is part of its descriptor.
using Base = rsp_operand<'n', D, place::base>;

template <element_size Size>
struct ZnBase : z_operand<'n', Size> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::vector(f, 'n', Size); }, place::base};
};

// A register that counts elements of a size.
template <element_size Element>
struct RmOffset : r_operand<'m', D> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::index(f, Element); }, place::offset};
};

template <element_size Size, extension Extension = LSL, unsigned Shift = 0>
struct ZmOffset : z_operand<'m', Size> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::offsets(f, Size, Extension, Shift); },
      place::offset};
};

// A SIMD&FP scalar register. A fast path takes its number, a bridge its value.
struct simd_register {
  unsigned num;
  constexpr operator unsigned() const { return num; }
};

template <char Letter, element_size Size>
struct v_operand : reads<Letter> {
  template <word_pattern Pattern>
  static constexpr simd_register take(unsigned word) {
    return {field<Pattern, Letter>(word)};
  }
  static constexpr operand_text text{
      [](const word_fields& f) { return written::scalar(f, Letter, Size); }, usual_place(Letter)};
};

template <element_size Size>
using Vd = v_operand<'d', Size>;
template <element_size Size>
using Vn = v_operand<'n', Size>;
template <element_size Size>
using Vm = v_operand<'m', Size>;
template <element_size Size>
struct Vdn : v_operand<'d', Size> {
  static constexpr operand_text text{v_operand<'d', Size>::text.write, place::destination,
                                     place::after_predicate, "dn"};
};

// The field of a letter as it stands, and sign-extended.
constexpr const char* immediate_name(char letter) {
  if (letter == 'n') return "#<imm1>";
  return letter == 'm' ? "#<imm2>" : "#<imm>";
}

template <char Letter>
struct unsigned_immediate : reads<Letter> {
  template <word_pattern Pattern>
  static constexpr unsigned take(unsigned word) {
    return field<Pattern, Letter>(word);
  }
  static constexpr operand_text text{[](const word_fields& f) {
    return written::immediate(f, immediate_name(Letter), f.value(Letter));
  }};
};

template <char Letter>
struct signed_immediate : reads<Letter> {
  template <word_pattern Pattern>
  static constexpr int take(unsigned word) {
    return signed_field<Pattern, Letter>(word);
  }
  static constexpr operand_text text{[](const word_fields& f) {
    return written::immediate(f, immediate_name(Letter), f.signed_value(Letter));
  }};
};

using UImm = unsigned_immediate<'i'>;
using SImm = signed_immediate<'i'>;
using Start = signed_immediate<'n'>;  // INDEX: the first immediate stands where Rn does
using Step = signed_immediate<'m'>;   // and the second where Rm does

// The number of an element, behind its register: z3.h[2].
struct ElementIndex : unsigned_immediate<'i'> {
  static constexpr operand_text text{written::element_number};
};

// Offsets of an address, taken as encoded. The assembler writes them in bytes, or in multiples of
// the vector length; a structure's in multiples of its registers'. It leaves out 0.
template <int Bytes>
struct UImmBytes : unsigned_immediate<'i'> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::bytes(f, f.value('i') * Bytes); }, place::offset};
};
template <int Bytes>
struct SImmBytes : signed_immediate<'i'> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::bytes(f, f.signed_value('i') * Bytes); },
      place::offset};
};
template <int Registers>
struct SImmMulVL : signed_immediate<'i'> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::mul_vl(f, f.signed_value('i') * Registers); },
      place::offset};
};

// A rotation: FCADD turns by 90 or 270 degrees, FCMLA by a multiple of 90.
struct OddRotation : unsigned_immediate<'r'> {
  static constexpr operand_text text{[](const word_fields& f) {
                                       return written::immediate(f, "<const>",
                                                                 f.value('r') * 180 + 90);
                                     },
                                     place::last};
};
struct Rotation : unsigned_immediate<'r'> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::immediate(f, "<const>", f.value('r') * 90); },
      place::last};
};

// A predicate pattern, left out where it is ALL and nothing multiplies it, and the multiplier minus
// 1, as encoded.
struct Pattern5 : unsigned_immediate<'p'> {
  static constexpr operand_text text{written::predicate_pattern};
};
struct MultiplierField : unsigned_immediate<'k'> {
  static constexpr operand_text text{written::multiplier};
};

// The operation of a prefetch.
struct PrefetchOp : unsigned_immediate<'o'> {
  static constexpr operand_text text{written::prefetch_operation, place::destination};
};

// The multiplier of the counting forms, 1 to 16.
struct Multiplier : reads<'k'> {
  template <word_pattern Pattern>
  static constexpr unsigned take(unsigned word) {
    return field<Pattern, 'k'>(word) + 1;
  }
  static constexpr operand_text text{written::multiplier};
};

// An 8-bit immediate in field i, shifted left by 8 if bit h is set.
struct UImmShifted : reads<'i', 'h'> {
  template <word_pattern Pattern>
  static constexpr unsigned take(unsigned word) {
    return field<Pattern, 'i'>(word) << (field<Pattern, 'h'>(word) * 8);
  }
  static constexpr operand_text text{
      [](const word_fields& f) { return written::shifted(f, f.value('i')); }};
};

struct SImmShifted : reads<'i', 'h'> {
  template <word_pattern Pattern>
  static constexpr int take(unsigned word) {
    return signed_field<Pattern, 'i'>(word) * (field<Pattern, 'h'>(word) != 0 ? 256 : 1);
  }
  static constexpr operand_text text{
      [](const word_fields& f) { return written::shifted(f, f.signed_value('i')); }};
};

// Shift amounts. The combined field tszh:tszl:imm3 is the element's bits plus the amount for a left
// shift and twice the element's bits minus the amount for a right shift; the row fixes its leading
// 1, so that field i holds what lies below it.
struct LeftShift : unsigned_immediate<'i'> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::immediate(f, "#<const>", f.value('i')); }};
};

struct RightShift : reads<'i'> {
  template <word_pattern Pattern>
  static constexpr unsigned take(unsigned word) {
    return (1U << field_width<Pattern, 'i'>)-field<Pattern, 'i'>(word);
  }
  static constexpr operand_text text{[](const word_fields& f) {
    return written::immediate(f, "#<const>", (1 << f.width('i')) - f.value('i'));
  }};
};

// Which of its two constants a floating-point instruction with a one-bit immediate takes; in
// halves.
template <unsigned IfClear, unsigned IfSet>
struct FPArithImm : reads<'i'> {
  template <word_pattern Pattern>
  static constexpr aarch64_sve_fp_arith_imm take(unsigned word) {
    return {field<Pattern, 'i'>(word)};
  }
  static constexpr operand_text text{[](const word_fields& f) {
    return written::in_halves(f, f.value('i') != 0 ? IfSet : IfClear);
  }};
};
using HalfOrOne = FPArithImm<1, 2>;
using HalfOrTwo = FPArithImm<1, 4>;
using ZeroOrOne = FPArithImm<0, 2>;

// A floating-point immediate in all formats, and in that of an element size.
struct FPDupImm : reads<'i'> {
  template <word_pattern Pattern>
  static constexpr aarch64_sve_fp_dup_imm take(unsigned word) {
    const unsigned imm8 = field<Pattern, 'i'>(word);
    return {static_cast<std::uint16_t>(expand_fp_immediate(imm8, 16, 10)),
            static_cast<std::uint32_t>(expand_fp_immediate(imm8, 32, 23)),
            expand_fp_immediate(imm8, 64, 52)};
  }
  static constexpr operand_text text{written::fp_immediate};
};

template <element_size Size>
struct FPImm : reads<'i'> {
  template <word_pattern Pattern>
  static constexpr std::uint64_t take(unsigned word) {
    const aarch64_sve_fp_dup_imm imm = FPDupImm::take<Pattern>(word);
    return Size == D ? imm.dbl : Size == S ? imm.single : imm.half;
  }
  static constexpr operand_text text{written::fp_immediate};
};

// A logical immediate (DecodeBitMasks).
struct LogicalMask : reads<'i'> {
  template <word_pattern Pattern>
  static constexpr aarch64_sve_logical64_imm take(unsigned word) {
    return {expand_logical_immediate(field<Pattern, 'i'>(word))};
  }
  static constexpr operand_text text{written::logical_mask};
};

// A vector register that is written with the element size of the mask in field i.
struct ZdOfMask : z_operand<'d', D> {
  static constexpr operand_text text{written::destination_of_mask, place::destination};
};
struct ZdnOfMask : z_destructive<D> {
  static constexpr operand_text text{ZdOfMask::text.write, place::destination,
                                     place::after_predicate, "dn"};
};

}  // namespace sve
