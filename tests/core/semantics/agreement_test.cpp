// One instruction, two definitions: for every row of the instruction table that has both a fast
// path and a reference function, the two run from the same random states and must leave the same
// state. And of predicates whose bytes are not only 0 and 1, which no processor has, every row must
// make the same as of their lowest bits. In the native build both run under the sanitizers.
//
// The rows come from the table itself; which of them have a reference function is found out by
// naming it with the values of the row's operands.
#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <type_traits>

#include "sve/decode/bridge.h"
#include "sve/decode/operand_fields.h"
#include "sve/decode/sve_utils.h"
#include "sve/semantics/compares.h"
#include "sve/semantics/counts.h"
#include "sve/semantics/integer.h"
#include "sve/semantics/predicates.h"
#include "tests/core/fast/machine.h"

namespace sve {
namespace {

// A fast path takes the multiplier of a counting form; the reference function adds the 1 itself.
template <class Operand>
struct reference_operand : Operand {};
template <>
struct reference_operand<Multiplier> : MultiplierField {};

template <class Operand>
inline constexpr bool is_destructive_predicate = false;
template <char Letter, unsigned Code>
inline constexpr bool is_destructive_predicate<p_destructive<Letter, Code>> = true;

template <class Record>
auto argument(const cpu_state* state, Record record) {
  if constexpr (std::is_same_v<Record, aarch64_sve_logical64_imm>) {
    return record.mask;
  } else {
    return value_of(state, record);
  }
}

struct no_reference {};

// Calls the reference function with the operands without the destination, or with all of them, or
// with the destination's old value last. The last is the order of INCP, whose predicate comes
// first, and of PNEXT and BRKN, whose governing predicate does.
template <bool DestinationLast, class Function, class First, class... Rest>
auto call(Function function, CpuContext* ctx, First first, Rest... rest) {
  if constexpr (requires { function(rest..., ctx); }) {
    return function(rest..., ctx);
  } else if constexpr (!DestinationLast && requires { function(first, rest..., ctx); }) {
    return function(first, rest..., ctx);
  } else if constexpr (requires { function(rest..., first, ctx); }) {
    return function(rest..., first, ctx);
  } else {
    return no_reference{};
  }
}

// Runs the reference function of a row as a bridge would. Returns false where there is none.
template <word_pattern Pattern, class Function, class Destination, class... Operands>
bool run_reference(cpu_state* state, unsigned word) {
  CpuContext ctx = context_in(*state);
  const auto destination = Destination::template take<Pattern>(word);
  const auto result = [&] {
    return call<is_destructive_predicate<Destination>>(
        Function{}, &ctx, argument(state, destination),
        argument(state, reference_operand<Operands>::template take<Pattern>(word))...);
  };
  if constexpr (std::is_same_v<decltype(result()), no_reference>) {
    return false;
  } else if constexpr (std::is_void_v<decltype(result())>) {
    result();
  } else if constexpr (std::is_same_v<decltype(destination), const aarch64_i_rsp_reg>) {
    write_x(state, destination, result());
  } else {
    write_result(state, destination, result());
  }
  context_out(ctx, *state);
  return true;
}

// SETFFR alone has no operand.
template <word_pattern Pattern, class Function>
bool run_reference(cpu_state* state, unsigned /*word*/) {
  CpuContext ctx = context_in(*state);
  Function{}(&ctx);
  context_out(ctx, *state);
  return true;
}

struct Row {
  const char* name;
  unsigned fixed_bits, fixed_mask;
  bool (*reference)(cpu_state*, unsigned);
};

template <word_pattern Pattern, class... Operands, class Function>
Row row(const char* name, Function /*function*/) {
  return {name, Pattern.fixed_bits(), Pattern.fixed_mask(),
          run_reference<Pattern, Function, Operands...>};
}

template <word_pattern Pattern>
Row row_without_fast_path(const char* name) {
  return {name, Pattern.fixed_bits(), Pattern.fixed_mask(), nullptr};
}

class Agreement : public RandomMachine {
 protected:
  // Predicates as the system keeps them.
  static cpu_state canonical(cpu_state state) {
    for (auto& predicate : state.p) {
      for (byte& lane : predicate) lane &= 1;
    }
    for (byte& lane : state.ffr) lane &= 1;
    return state;
  }

  unsigned random_word(const Row& row) {
    return static_cast<unsigned>(number(1ULL << 32) & ~row.fixed_mask) | row.fixed_bits;
  }

  static bool agree(const Row& row, unsigned word, const cpu_state& a, const cpu_state& b) {
    const std::string differs = difference(a, b);
    EXPECT_EQ(differs, "") << row.name << std::hex << ", word 0x" << word;
    return differs.empty();
  }

  // Up to the first difference. False where the row has no reference function, or nothing else.
  bool compare_with_reference(const Row& row) {
    if (row.reference == nullptr) return false;
    for (int round = 0; round < 40; ++round) {
      randomize(fast_);
      fast_ = canonical(fast_);
      fast_.nzcv &= 0xf0000000;
      other_ = fast_;
      const unsigned word = random_word(row);
      if (!row.reference(&other_, word)) return false;
      is_sve(word)(&fast_, word);
      other_.instr = word;
      if (!agree(row, word, other_, fast_)) break;
    }
    return true;
  }

  void compare_with_lowest_bits(const Row& row) {
    for (int round = 0; round < 10; ++round) {
      randomize(fast_);
      other_ = canonical(fast_);
      const unsigned word = random_word(row);
      is_sve(word)(&fast_, word);
      is_sve(word)(&other_, word);
      if (!agree(row, word, other_, canonical(fast_))) break;
    }
  }

 private:
  cpu_state fast_, other_;
};

// A reference function is found through its argument of type CpuContext, so that a name without one
// is no error.
#define FAST(pattern, name, fast_path, ...) \
  row<pattern __VA_OPT__(, ) __VA_ARGS__>(  \
      #name, [](auto... all) requires requires { name(all...); } { return name(all...); }),
#define BRIDGE(pattern, name, ...) row_without_fast_path<pattern>(#name),
#define NO_OP(...)
#define UNWRITTEN(...)

const Row rows[] = {
#include "sve/decode/instructions/compare_predicate.inc"
#include "sve/decode/instructions/integer.inc"
#include "sve/decode/instructions/permute.inc"
};

TEST_F(Agreement, OfFastPathAndReferenceFunction) {
  int compared = 0;
  for (const Row& row : rows) {
    if (compare_with_reference(row)) ++compared;
  }
  EXPECT_EQ(compared, 344) << "a row lost its reference function, or this is a new one to count";
}

TEST_F(Agreement, OfPredicateBytesAndTheirLowestBits) {
  // These look at whole bytes; fast_paths_test has them.
  constexpr std::string_view by_bytes[] = {
      "VecPAndPPZ",       "VecPOrPPZ",           "VecPXorPPZ",      "VecPNorPPZ",
      "VecPBreakPrevBPZ", "VecPBreakPrevBFlgPZ", "VecPBreakNextPZ", "VecPBreakNextFlgPZ"};
  for (const Row& row : rows) {
    if (std::ranges::find(by_bytes, row.name) == std::end(by_bytes)) compare_with_lowest_bits(row);
  }
}

}  // namespace
}  // namespace sve
