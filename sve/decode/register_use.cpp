// The operand descriptors of a row say what it does with each register (sve/decode/operand_use.h).
// Only two things are not in them: that a form is a store, and that it writes the FFR.
#include "sve/decode/register_use.h"

#include <bit>

namespace sve {
namespace {

constexpr std::uint32_t ffr = 1U << 16;

// All stores have 1 in the top three bits, and no other form of this group has.
bool is_store(std::uint32_t word) { return word >> 29 == 7; }

bool writes_ffr(std::string_view mnemonic) {
  return mnemonic.starts_with("LDFF1") || mnemonic.starts_with("LDNF1") || mnemonic == "SETFFR" ||
         mnemonic == "WRFFR";
}

bool is_read(access how, bool store) {
  return how == access::transferred ? store : how != access::written;
}

bool is_written(access how, bool store) {
  return how == access::transferred ? !store : how != access::read;
}

// Whether DUP (indexed) takes an element that is in the low 128 bits.
bool reads_low_part_only(const operand_use& operand, const word_fields& fields) {
  return operand.element_bytes != 0 &&
         static_cast<unsigned>(fields.value('i')) * operand.element_bytes < 16;
}

}  // namespace

register_use register_use_of(const instruction_row& row, std::uint32_t word) {
  register_use result;
  if (row.kind == row_kind::no_op) return result;
  const word_fields fields(row.pattern, "", word);
  const bool store = is_store(word);
  bool merges = false;
  for (const operand_use& operand : row.uses) {
    const int number = fields.value(operand.letter);
    const std::uint32_t registers = std::rotl((1U << operand.registers) - 1, number);
    const bool read = is_read(operand.how, store), written = is_written(operand.how, store);
    switch (operand.file) {
      case register_file::vector:
        if (read && !reads_low_part_only(operand, fields)) result.z_read |= registers;
        if (written) result.z_written |= registers;
        break;
      case register_file::predicate:
        if (operand.letter == 'g') result.governing = number;
        if (written) result.p_written |= registers;
        merges |= operand.merges;
        break;
      case register_file::none: break;
    }
  }
  if (merges) result.z_read |= result.z_written;
  if (writes_ffr(row.mnemonic)) result.p_written |= ffr;
  return result;
}

}  // namespace sve
