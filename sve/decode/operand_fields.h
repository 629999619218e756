// Operand descriptors: what a row of the instruction table says about one operand.
//
// A descriptor names the letter of the field that holds the operand, the role that the operand
// plays and, for registers, its size code: Zdn<S> is the vector register in field d, which is both
// source and destination and has word elements. A descriptor turns an instruction word into the
// operand record or the decoded immediate that a fast path takes; a bridge turns the same record
// into a value. The role decides which fields of the record hold the size code and which hold the
// none-code.
//
// The `text` of a descriptor says how the assembler writes the operand
// (sve/decode/operand_text.h), and its `use` says what happens to the register
// (sve/decode/operand_use.h). Some descriptors differ only in these.
#pragma once

#include <cstdint>
#include <string>

#include "sve/decode/immediates.h"
#include "sve/decode/operand_text.h"
#include "sve/decode/operand_use.h"
#include "sve/decode/pattern.h"
#include "sve/state/access.h"
#include "sve/state/operands.h"

namespace sve {

// The fields that a descriptor reads. They let the table check that a row leaves no field unread.
template <char... Letters>
struct reads {
  template <word_pattern Pattern>
  static constexpr std::uint32_t field_mask = (Pattern.mask_of(Letters) | ...);
  static constexpr operand_use use{};
};

// The record of a register that is only read or only written, and the record of one that is both
// source and destination. None is the none-code of the record's type.
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

// The place of an operand that the assembler writes once. It follows from the letter of the field.
constexpr place usual_place(char letter) {
  if (letter == 'd' || letter == 't') return place::destination;
  return letter == 'g' ? place::predicate : place::in_order;
}

// A vector register. A destructive one also says where the assembler writes it a second time, and
// what the encoding pages call it.
template <char Letter, element_size Size>
struct z_operand : one_way<aarch64_z_reg, z_none, Letter, Size> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::vector(f, Letter, Size); }, usual_place(Letter)};
  static constexpr operand_use use{register_file::vector, Letter, usual_access(Letter)};
};

template <element_size Size>
struct z_destructive : destructive<aarch64_z_reg, z_none, 'd', Size> {
  static constexpr operand_text written_as(place again, const char* name) {
    return {[](const word_fields& f) { return written::vector(f, 'd', Size); }, place::destination,
            again, name};
  }
  static constexpr operand_use use{register_file::vector, 'd', access::updated};
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

// An operand that the function takes but the assembler does not write: the values that the
// destination keeps in inactive elements.
template <element_size Size>
struct Merge : z_destructive<Size> {
  static constexpr operand_text text{nullptr, place::unwritten};
};

// Vector registers that are written in a special way: without a size, as a list in braces, or with
// the constant 0 that they are compared with.
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

// The register of which DUP (indexed) reads one element.
template <element_size Size>
struct ZnElement : z_operand<'n', Size> {
  static constexpr operand_use use{
      .file = register_file::vector, .letter = 'n', .element_bytes = 1U << Size};
};

// The register that a load or store moves, or the first one of a list. LDR and STR move the whole
// register, and the assembler writes it without a size.
template <element_size Size, int Registers = 1>
struct Zt : z_operand<'t', Size> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::vectors(f, 't', Size, Registers); },
      place::destination};
  static constexpr operand_use use{register_file::vector, 't', access::transferred, Registers};
};
template <element_size Size>
struct ZtBare : z_operand<'t', Size> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::vector(f, 't', z_none); }, place::destination};
};

// A predicate with its element size, or a governing predicate with its qualifier.
template <char Letter, unsigned Code, unsigned WrittenCode = Code>
struct p_operand : one_way<aarch64_p_reg, p_none, Letter, Code> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::predicate(f, Letter, WrittenCode); },
      usual_place(Letter)};
  static constexpr operand_use use{.file = register_file::predicate,
                                   .letter = Letter,
                                   .how = usual_access(Letter),
                                   .merges = Code == merging};
};

template <element_size Size>
struct p_destructive : destructive<aarch64_p_reg, p_none, 'd', Size> {
  static constexpr operand_text written_as(place again, const char* name) {
    return {[](const word_fields& f) { return written::predicate(f, 'd', Size); },
            place::destination, again, name};
  }
  static constexpr operand_use use{register_file::predicate, 'd', access::updated};
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

// A general register; number 31 is the zero register. S makes it a W register, and D an X register.
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

// A general register; number 31 is the stack pointer.
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

// Addresses: a base and an offset, [x4, z5.s, sxtw #1]. The descriptor of an offset register says
// how the register is extended and shifted.
using Base = rsp_operand<'n', D, place::base>;

template <element_size Size>
struct ZnBase : z_operand<'n', Size> {
  static constexpr operand_text text{
      [](const word_fields& f) { return written::vector(f, 'n', Size); }, place::base};
};

// An offset register that counts in elements of the given size.
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

// A SIMD&FP scalar register. A fast path takes its number, and a bridge takes its value. As a
// source it is the low element of a vector register, and writing it writes the whole vector
// register.
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
  static constexpr operand_use use =
      Letter == 'd' ? operand_use{register_file::vector, 'd', access::written} : operand_use{};
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

// An immediate: the value of the field, unsigned or sign-extended.
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
using Start = signed_immediate<'n'>;  // INDEX: the first immediate is in the place of Rn
using Step = signed_immediate<'m'>;   // and the second in that of Rm

// The number of an element, written after its register: z3.h[2].
struct ElementIndex : unsigned_immediate<'i'> {
  static constexpr operand_text text{written::element_number};
};

// Offsets of an address. The functions take them as encoded. The assembler writes them in bytes or
// in vector lengths, and multiplies the offset of a structure by the number of its registers. It
// leaves out an offset of 0.
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

// A rotation. FCADD rotates by 90 or 270 degrees, and FCMLA by a multiple of 90.
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

// A predicate pattern, and the multiplier minus 1, both as encoded. The assembler leaves out the
// pattern ALL if there is no multiplier.
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

// Shift amounts. For elements of `esize` bits, the combined field tszh:tszl:imm3 is esize + amount
// for a left shift and 2 * esize - amount for a right shift. The row fixes the leading 1 of that
// field, and field i holds the bits below it.
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

// A one-bit immediate that chooses one of two floating-point constants, which are given in halves.
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

// A floating-point immediate: in all formats, and in the format of one element size.
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
