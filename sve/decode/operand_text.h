// How the assembler writes an operand: with the numbers of a word (z5.b), or with the names that
// the architecture's encoding pages use (<Zdn>.B).
//
// One function for each operand does both: the fields that it is given have either numbers or
// names. It writes capitals, as those pages do. The disassembler changes them to small letters at
// the end.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "sve/state/operands.h"

namespace sve {

// The operand fields of a row, either with the values of a word or without values.
class word_fields {
 public:
  word_fields(std::string_view pattern, const char* destination, std::optional<std::uint32_t> word)
      : pattern_(pattern), destination_(destination), word_(word) {}

  [[nodiscard]] bool have_values() const { return word_.has_value(); }

  // The value of a field; 0 if the row has no field of this letter.
  [[nodiscard]] int value(char letter) const;
  [[nodiscard]] int signed_value(char letter) const;
  [[nodiscard]] int width(char letter) const;

  // A register: Z5, or <Zdn> if there are no values.
  [[nodiscard]] std::string reg(const char* kind, char letter) const;

 private:
  [[nodiscard]] std::uint32_t mask(char letter) const;

  std::string_view pattern_;
  const char* destination_;
  std::optional<std::uint32_t> word_;
};

// The place of an operand, in the order in which the assembler writes them. A line of the table has
// them in the order in which its function takes them.
enum class place : std::uint8_t {
  destination,      // what is written, or what a load or store moves
  predicate,        // the governing predicate
  after_predicate,  // the destination again, if the form is destructive
  in_order,         // all others, in the order of the line
  last,             // after those
  base,             // of an address; brackets enclose it and its offset, at the end
  offset,
  unwritten,
};

// An operand that begins with one of these follows the one before it without a comma: z1.h[2].
constexpr bool joins_the_operand_before(std::string_view text) {
  return text.starts_with('[') || text.starts_with("{,");
}

// How the operand of a descriptor is written.
struct operand_text {
  std::string (*write)(const word_fields&);  // empty: the assembler leaves it out
  place stands = place::in_order;
  place again = place::unwritten;     // where a destination is repeated
  const char* destination = nullptr;  // dn: the pages' name for a destination that is also read
};

// All operands of a row, in the assembler's order.
std::string write_operands(std::string_view pattern, std::span<const operand_text> operands,
                           std::optional<std::uint32_t> word);

// How an address extends or shifts its offset register.
enum extension : std::uint8_t { LSL, UXTW, SXTW };

// The functions that write the operands. Sizes are the codes of sve/state/operands.h.
namespace written {

std::string vector(const word_fields& fields, char letter, unsigned size);
std::string vectors(const word_fields& fields, char letter, unsigned size, int count);
std::string predicate(const word_fields& fields, char letter, unsigned code);
std::string general(const word_fields& fields, char letter, unsigned size);
std::string general_or_sp(const word_fields& fields, char letter, unsigned size);
std::string scalar(const word_fields& fields, char letter, unsigned size);

std::string immediate(const word_fields& fields, const char* name, int value);
std::string shifted(const word_fields& fields, int value);  // by 8 if bit h is set
std::string in_halves(const word_fields& fields, unsigned halves);
std::string fp_immediate(const word_fields& fields);
std::string logical_mask(const word_fields& fields);
std::string destination_of_mask(const word_fields& fields);  // has the mask's element size
std::string element_number(const word_fields& fields);
std::string predicate_pattern(const word_fields& fields);
std::string multiplier(const word_fields& fields);
std::string prefetch_operation(const word_fields& fields);

// Offsets of an address: register m, and an immediate.
std::string index(const word_fields& fields, unsigned shift);
std::string offsets(const word_fields& fields, unsigned size, extension how, unsigned shift);
std::string bytes(const word_fields& fields, int value);
std::string mul_vl(const word_fields& fields, int value);

}  // namespace written
}  // namespace sve
