// The instruction table as a whole: it holds exactly the forms that it should, and no word could
// mean two of them.
#include <algorithm>
#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "sve/decode/sve_utils.h"

namespace {

using sve::instruction_row;
using sve::instruction_rows;

// FNV-1a over "map key name kind" lines in byte order, keys in hexadecimal. The value was taken
// once from the catalogue of instruction forms; a row that changes its key, its name or its kind
// changes it.
TEST(Table, HoldsTheCatalogue) {
  std::vector<std::string> lines;
  for (const instruction_row& row : instruction_rows()) {
    char key[16];
    std::snprintf(key, sizeof key, "%x", static_cast<unsigned>(row.key));
    lines.push_back(std::string(sve::decode_map_names()[row.map]) + " " + key + " " +
                    std::string(row.name) + " " + static_cast<char>(row.kind) + "\n");
  }
  std::ranges::sort(lines);
  std::uint64_t hash = 0xcbf29ce484222325;
  for (const std::string& line : lines)
    for (const unsigned char c : line) hash = (hash ^ c) * 0x100000001b3;
  EXPECT_EQ(hash, 0x2e33f1f63729f476U);
}

TEST(Table, HasOneRowForEachName) {
  std::set<std::string_view> names;
  for (const instruction_row& row : instruction_rows())
    EXPECT_TRUE(names.insert(row.name).second) << row.name;
}

// A handler is known by its address, which must tell the row.
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
