// How the assembler writes an operand: with the numbers of a word, z5.b, or by name as on the
// architecture's encoding pages, <Zdn>.B.
//
// One function of an operand does both: the fields that it gets have the numbers or the names. Text
// is made in capitals, as on those pages; a disassembly turns to small letters at the end.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "sve/state/operands.h"

namespace sve {

// The operand fields of a row: with the values of a word, or without a word.
class word_fields {
 public:
  word_fields(std::string_view pattern, const char* destination, std::optional<std::uint32_t> word)
      : pattern_(pattern), destination_(destination), word_(word) {}

  [[nodiscard]] bool have_values() const { return word_.has_value(); }

  // The value of a field, 0 where the row has none of this letter.
  [[nodiscard]] int value(char letter) const;
  [[nodiscard]] int signed_value(char letter) const;
  [[nodiscard]] int width(char letter) const;

  // A register: Z5, or <Zdn> where there are no values.
  [[nodiscard]] std::string reg(const char* kind, char letter) const;

 private:
  [[nodiscard]] std::uint32_t mask(char letter) const;

  std::string_view pattern_;
  const char* destination_;
  std::optional<std::uint32_t> word_;
};

// Where the assembler has an operand among the others, in its order. A line of the table has them
// in the order in which its function takes them.
enum class place : std::uint8_t {
  destination,      // what is written or, by a load or store, moved
  predicate,        // that governs
  after_predicate,  // the destination again, of a form that is destructive
  in_order,         // all others, as they come
  last,             // behind these
  base,             // of an address; it and its offset stand in brackets, at the end
  offset,
  unwritten,
};

// An operand that begins with one of these joins the one before without a comma: z1.h[2].
constexpr bool joins_the_operand_before(std::string_view text) {
  return text.starts_with('[') || text.starts_with("{,");
}

// How a descriptor is written.
struct operand_text {
  std::string (*write)(const word_fields&);  // empty: the assembler leaves it out
  place stands = place::in_order;
  place again = place::unwritten;     // where a destination is repeated
  const char* destination = nullptr;  // dn: how pages call a destination that is read as well
};

// All operands of a row, in the assembler's order.
std::string write_operands(std::string_view pattern, std::span<const operand_text> operands,
                           std::optional<std::uint32_t> word);

// What is done to an offset register that is part of an address.
enum extension : std::uint8_t { LSL, UXTW, SXTW };

// What descriptors are written with. Sizes are the codes of sve/state/operands.h.
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
