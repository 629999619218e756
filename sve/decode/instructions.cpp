// The rows of the decode maps, made from the instruction table.
//
// A row gets its map and its key from its pattern, and its handler from the kind of its line. All
// checks of the whole table happen here, at compile time: each pattern belongs to a map, each line
// reads all its operand fields, and no map is empty.
#include <algorithm>
#include <functional>

#include "sve/decode/bridge.h"
#include "sve/decode/fast_paths.h"
#include "sve/decode/handlers.h"
#include "sve/decode/maps.h"
#include "sve/decode/reference_functions.h"
#include "sve/decode/sve_utils.h"

namespace sve {
namespace {

template <word_pattern Pattern>
inline constexpr word_pattern stored_pattern = Pattern;

template <class... Operands>
constexpr std::array<operand_text, sizeof...(Operands)> operand_texts{Operands::text...};

template <class... Operands>
constexpr std::array<operand_use, sizeof...(Operands)> operand_uses{Operands::use...};

// What a row has besides its pattern.
struct line {
  std::string_view mnemonic, name;
  row_kind kind;
  decode_handler handler;
};

template <word_pattern Pattern, class... Operands>
consteval instruction_row row(line said) {
  constexpr std::size_t map = map_with_key_mask(Pattern.fixed_mask());
  static_assert(map != no_map,
                "the fixed bits of a pattern must be exactly the ranges of a map in maps.h");
  static_assert(reads_all_fields<Pattern, Operands...>, "an operand field is not read");
  return {.pattern = {stored_pattern<Pattern>.text, 32},
          .mnemonic = said.mnemonic,
          .name = said.name,
          .operands = operand_texts<Operands...>,
          .uses = operand_uses<Operands...>,
          .handler = said.handler,
          .map = map,
          .key = static_cast<int>(gather_bits(Pattern.fixed_bits(), Pattern.fixed_mask())),
          .kind = said.kind};
}

template <word_pattern Pattern, class Function, class... Operands>
inline constexpr bool fast_path_takes =
    std::is_invocable_v<Function, cpu_state*, decltype(Operands::template take<Pattern>(0))...>;

template <word_pattern Pattern, class Function, class... Operands>
inline constexpr bool reference_takes = std::is_invocable_v<
    Function, decltype(value_of(nullptr, Operands::template take<Pattern>(0)))..., CpuContext*>;

template <word_pattern Pattern, auto Function, class... Operands>
consteval instruction_row fast_row(std::string_view mnemonic, std::string_view name) {
  static_assert(fast_path_takes<Pattern, decltype(Function), Operands...>,
                "the operands are not those of the fast path");
  return row<Pattern, Operands...>(
      {mnemonic, name, row_kind::fast, &fast_handler<Pattern, Function, Operands...>});
}

template <word_pattern Pattern, auto Function, class... Operands>
consteval instruction_row fast_fp_row(std::string_view mnemonic, std::string_view name) {
  static_assert(fast_path_takes<Pattern, decltype(Function), Operands...>,
                "the operands are not those of the fast path");
  return row<Pattern, Operands...>(
      {mnemonic, name, row_kind::fast, &fast_fp_handler<Pattern, Function, Operands...>});
}

template <word_pattern Pattern, auto Function, class Result, class... Operands>
consteval instruction_row bridge_row(std::string_view mnemonic, std::string_view name) {
  static_assert(reference_takes<Pattern, decltype(Function), Operands...>,
                "the operands are not those of the reference function");
  return row<Pattern, Result, Operands...>(
      {mnemonic, name, row_kind::bridge, &bridge_handler<Pattern, Function, Result, Operands...>});
}

template <word_pattern Pattern, class... Operands>
consteval instruction_row no_op_row(std::string_view mnemonic, std::string_view name) {
  return row<Pattern, Operands...>({mnemonic, name, row_kind::no_op, &no_op_handler<Pattern>});
}

// How a line of the table becomes a row. BRIDGE calls the function that has the row's name.
#define FAST(pattern, mnemonic, name, ...) fast_row<pattern, __VA_ARGS__>(#mnemonic, #name),
#define FAST_FP(pattern, mnemonic, name, ...) fast_fp_row<pattern, __VA_ARGS__>(#mnemonic, #name),
#define BRIDGE(pattern, mnemonic, name, ...) \
  bridge_row<pattern, &name, __VA_ARGS__>(#mnemonic, #name),
#define NO_OP(pattern, mnemonic, name, ...) no_op_row<pattern, __VA_ARGS__>(#mnemonic, #name),

constexpr instruction_row table[] = {
#include "sve/decode/instructions.inc"
};

consteval bool every_map_has_a_row() {
  std::array<bool, map_count> has_row{};
  for (const instruction_row& row : table) has_row[row.map] = true;
  return std::ranges::all_of(has_row, std::identity{});
}
static_assert(every_map_has_a_row(), "no map may be empty: searching it would be a waste");

consteval bool every_row_is_an_sve_encoding() {
  return std::ranges::all_of(
      table, [](const instruction_row& row) { return row.pattern.substr(3, 4) == "0010"; });
}
static_assert(every_row_is_an_sve_encoding(), "is_sve finds only words of the SVE group");

}  // namespace

std::span<const instruction_row> instruction_rows() { return table; }

}  // namespace sve
