// Rows and words as text that people read.
#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>

#include "sve/decode/sve_utils.h"

namespace sve {
namespace {

std::string with_operands(std::string_view mnemonic, const std::string& operands) {
  return std::string(mnemonic) + (operands.empty() ? "" : " ") + operands;
}

const char* what_serves(row_kind kind) {
  switch (kind) {
    case row_kind::fast: return "served by a fast path";
    case row_kind::bridge: return "served by the reference semantics";
    case row_kind::no_op: return "a prefetch, which does nothing";
  }
  return "";
}

}  // namespace

std::string instruction_row::syntax() const {
  return with_operands(mnemonic, write_operands(pattern, operands, std::nullopt));
}

std::string disassemble(std::uint32_t word) {
  const instruction_row* const row = find_row(word);
  if (row == nullptr) {
    std::array<char, 17> text;
    std::snprintf(text.data(), text.size(), ".inst 0x%08x", word);
    return text.data();
  }
  std::string text =
      with_operands(row->mnemonic, write_operands(row->pattern, row->operands, word));
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

}  // namespace sve

void list_sve_instructions(std::FILE* out) {
  for (const sve::instruction_row& row : sve::instruction_rows())
    std::fprintf(out, "%s  %c  %-22s  %s\n", std::string(row.pattern).c_str(),
                 static_cast<char>(row.kind), std::string(row.name).c_str(), row.syntax().c_str());
}

void print_sve_disassembly(std::FILE* out, unsigned word) {
  const sve::instruction_row* const row = sve::find_row(word);
  if (row == nullptr) {
    std::fprintf(out, "%08x  no form in the instruction table has this word\n", word);
    return;
  }
  std::fprintf(out, "%08x  %-44s  %s, %s\n", word, sve::disassemble(word).c_str(),
               std::string(row->name).c_str(), sve::what_serves(row->kind));
}
