// The whole instruction table: it has exactly the forms that it should have, and no word matches
// two of them.
#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "sve/decode/sve_utils.h"
#include "sve/state/cpu_state.h"

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

std::array<unsigned char, sizeof(cpu_state)> image_of(const cpu_state& state) {
  std::array<unsigned char, sizeof(cpu_state)> image;
  std::memcpy(image.data(), &state, sizeof state);
  return image;
}

TEST(Table, PrefetchesDoNothing) {
  for (const instruction_row& row : instruction_rows()) {
    if (row.kind != sve::row_kind::no_op) continue;
    cpu_state state;
    std::memset(&state, 0x5a, sizeof state);
    const auto before = image_of(state);
    EXPECT_EQ(row.handler(&state, row.fixed_bits() | ~row.fixed_mask()), aarch64_decode_ok);
    EXPECT_EQ(before, image_of(state)) << row.name;
  }
}

}  // namespace
