// Rows and words as text: the table's lines for people.
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

int width(std::string_view text) { return static_cast<int>(text.size()); }

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
  int longest = 0;
  for (const sve::instruction_row& row : sve::instruction_rows())
    longest = std::max(longest, sve::width(row.name));
  for (const sve::instruction_row& row : sve::instruction_rows()) {
    std::fprintf(out, "%.*s  %c  %-*.*s  %s\n", sve::width(row.pattern), row.pattern.data(),
                 static_cast<char>(row.kind), longest, sve::width(row.name), row.name.data(),
                 row.syntax().c_str());
  }
}
