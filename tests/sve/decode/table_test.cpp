// The whole instruction table: it has exactly the forms that it should have, and no word matches
// two of them.
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "sve/decode/sve_utils.h"

namespace {

using sve::instruction_row;
using sve::instruction_rows;

std::vector<std::string> lines_of(std::istream& in) {
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

constexpr int max_lines_shown = 10;

std::vector<std::string> listing() {
  testing::internal::CaptureStdout();
  list_sve_instructions(stdout);
  std::istringstream printed(testing::internal::GetCapturedStdout());
  return lines_of(printed);
}

// Any change to a line of the table, whether to its pattern or to what serves it, changes the list.
TEST(Table, IsTheOneInTheDocumentation) {
  std::ifstream file(INSTRUCTION_LIST);
  const std::vector<std::string> documented = lines_of(file), rows = listing();
  int shown = 0;
  for (const auto& [lines, others, sign] :
       {std::tie(documented, rows, "-"), std::tie(rows, documented, "+")}) {
    const std::set<std::string> known(others.begin(), others.end());
    for (const std::string& line : lines)
      if (!known.contains(line) && shown++ < max_lines_shown) ADD_FAILURE() << sign << line;
  }
  EXPECT_TRUE(documented == rows)
      << "docs/instructions.txt (-) is not the table (+). If the table is right, update the file:\n"
         "  ./run --list-instructions > docs/instructions.txt";
}

TEST(Table, HasOneRowForEachName) {
  std::set<std::string_view> names;
  for (const instruction_row& row : instruction_rows())
    EXPECT_TRUE(names.insert(row.name).second) << row.name;
}

// The address of a handler identifies its row.
TEST(Table, HasOneHandlerForEachRow) {
  std::set<decode_handler> handlers;
  for (const instruction_row& row : instruction_rows())
    EXPECT_TRUE(handlers.insert(row.handler).second) << row.name;
}

TEST(Table, NoTwoRowsMatchOneWord) {
  for (const instruction_row& a : instruction_rows())
    for (const instruction_row& b : instruction_rows())
      if (&a < &b && ((a.fixed_bits() ^ b.fixed_bits()) & a.fixed_mask() & b.fixed_mask()) == 0)
        ADD_FAILURE() << a.name << " and " << b.name;
}

TEST(Table, FindsEveryRowWhateverItsOperands) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (const instruction_row& row : instruction_rows()) {
    for (const std::uint32_t operands : {0U, ~0U, static_cast<unsigned>(random())}) {
      const std::uint32_t word = row.fixed_bits() | (operands & ~row.fixed_mask());
      EXPECT_EQ(sve::find_row(word), &row) << row.name;
      EXPECT_EQ(is_sve(word), row.handler) << row.name;
    }
  }
}

TEST(Table, HasNoRowForOtherWords) {
  constexpr std::uint32_t words[] = {
      0x00000000,  // udf
      0xd503201f,  // nop
      0x4ea28420,  // add v0.4s, v1.4s, v2.4s
      0xd65f03c0,  // ret
      0x252c9001,  // setffr with one bit changed
      0x04f438d2,  // not allocated, in the SVE group
  };
  for (const std::uint32_t word : words) {
    EXPECT_EQ(sve::find_row(word), nullptr) << std::hex << word;
    EXPECT_EQ(is_sve(word), nullptr) << std::hex << word;
  }
}

}  // namespace
