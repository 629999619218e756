#include "tests/conformance/row_shape.h"

#include <algorithm>
#include <regex>
#include <string>

#include "sve/decode/pattern.h"
#include "sve/state/vector_length.h"

namespace conformance {
namespace {

std::vector<operand_field> fields_of(std::string_view pattern) {
  std::vector<operand_field> fields;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char letter = pattern[i];
    if (letter == '0' || letter == '1') continue;
    auto known = std::ranges::find(fields, letter, &operand_field::letter);
    if (known == fields.end()) known = fields.insert(known, {letter, 0, 0});
    known->mask |= 1U << (31 - i);
    ++known->width;
  }
  return fields;
}

unsigned to_unsigned(const std::ssub_match& digits) {
  return digits.length() == 0 ? 0 : static_cast<unsigned>(std::stoul(digits.str()));
}

unsigned element_bytes_of(const std::string& name) {
  static const std::regex tag{"Vec[USFDBHP]([0-9]*).*"};
  std::smatch match;
  if (!std::regex_match(name, match, tag) || match[1].length() == 0) return 1;
  return to_unsigned(match[1]) / 8;
}

struct operand_kind {
  unsigned bytes;
  bool floating;
};

// A conversion has the tag of its result. Its operand comes before VM: the letter of a format, or S
// or U and a number of bytes.
operand_kind operands_of(const std::string& name) {
  static const std::regex conversion{"Vec.*(?:From|Extnd|Trunc)(?:([HFD])|[SU]([248]))VM"};
  std::smatch match;
  const auto bytes_of = [](char format) { return format == 'H' ? 2U : format == 'F' ? 4U : 8U; };
  if (!std::regex_match(name, match, conversion))
    return {element_bytes_of(name), name[3] == 'F' || name[3] == 'D' || name[3] == 'H'};
  if (match[2].matched) return {to_unsigned(match[2]), false};
  return {bytes_of(match.str(1)[0]), true};
}

memory_form whole_register_form(bool predicate) {
  const unsigned bytes = predicate ? sve::predicate_bytes : sve::vector_bytes;
  return {.access = predicate ? access_shape::whole_predicate : access_shape::whole_vector,
          .address = address_shape::scalar_immediate,
          .container = 1,
          .memory = 1,
          .immediate_unit = bytes};
}

address_shape address_of(const std::string& shape) {
  if (shape == "SIZ") return address_shape::scalar_immediate;
  if (shape == "SSZ") return address_shape::scalar_scalar;
  return shape == "VIZ" ? address_shape::vector_immediate : address_shape::scalar_vector;
}

access_shape access_of(const std::string& kind, const std::string& infix) {
  if (kind == "Dup") return infix == "Q" ? access_shape::quadword : access_shape::replicated;
  return kind == "gather" ? access_shape::gathered : access_shape::contiguous;
}

unsigned immediate_unit_of(const memory_form& form) {
  if (form.access == access_shape::quadword) return 16;
  if (form.access == access_shape::replicated) return form.memory;
  return sve::vector_bytes / form.container * form.registers * form.memory;
}

std::optional<memory_form> memory_form_of(const std::string& name) {
  static const std::regex grammar{
      "Vec[US]([0-9]+)(C|E[234])?(Load|Store)(FF|NF|NT|Dup)?([1248])([QLXY]?)(SIZ|SSZ|VIZ|VSZ|"
      "SVZ)"};
  if (name == "VecPFillSI" || name == "VecPSpillSI") return whole_register_form(true);
  if (name == "VecU64FillSI" || name == "VecU64SpillSI") return whole_register_form(false);
  std::smatch match;
  if (!std::regex_match(name, match, grammar)) return std::nullopt;
  const std::string group = match[2], hint = match[4], infix = match[6], shape = match[7];
  memory_form form{};
  form.access = access_of(group.empty() && hint != "Dup" ? "gather" : hint, infix);
  form.address = address_of(shape);
  form.container = to_unsigned(match[1]) / 8;
  form.memory = to_unsigned(match[5]);
  form.registers = group.starts_with('E') ? static_cast<unsigned>(group[1] - '0') : 1;
  form.immediate_unit = immediate_unit_of(form);
  form.offset_scale = shape == "SVZ" ? form.memory : 1;
  form.signed_offset = infix == "X";
  form.word_offset = infix == "X" || infix == "Y" || form.container == 4;
  form.speculative = hint == "FF" || hint == "NF";
  return form;
}

}  // namespace

const operand_field* row_shape::find(char letter) const {
  const auto field = std::ranges::find(fields, letter, &operand_field::letter);
  return field == fields.end() ? nullptr : &*field;
}

unsigned row_shape::value(char letter, std::uint32_t word) const {
  const operand_field* field = find(letter);
  return field == nullptr ? 0 : sve::gather_bits(word, field->mask);
}

int row_shape::signed_value(char letter, std::uint32_t word) const {
  const operand_field* field = find(letter);
  if (field == nullptr) return 0;
  const unsigned unused = 32 - field->width;
  return static_cast<int>(sve::gather_bits(word, field->mask) << unused) >> unused;
}

row_shape describe(const sve::instruction_row& row) {
  const std::string name{row.name};
  const operand_kind operands = operands_of(name);
  return {.row = &row,
          .fields = fields_of(row.pattern),
          .element_bytes = element_bytes_of(name),
          .operand_bytes = operands.bytes,
          .floating = operands.floating,
          .memory = memory_form_of(name)};
}

}  // namespace conformance
