// One instruction, two definitions: for every row of the instruction table that has both a fast
// path and a reference function, the two run from the same random states and must leave the same
// state.
//
// The rows come from the table itself; which of them have a reference function is found out by
// naming it with the values of the row's operands.
#include <gtest/gtest.h>
#include <string>
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

constexpr int rounds = 40;

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

class Agreement : public RandomMachine {
 protected:
  // Predicates as the system keeps them, and flags as wide as the register.
  void randomize_canonically(cpu_state& state) {
    randomize(state);
    for (auto& predicate : state.p) {
      for (byte& lane : predicate) lane &= 1;
    }
    for (byte& lane : state.ffr) lane &= 1;
    state.nzcv &= 0xf0000000;
  }

  // False where the row has no reference function.
  bool compare(const Row& row) {
    for (int round = 0; round < rounds; ++round) {
      randomize_canonically(fast_);
      reference_ = fast_;
      const auto word =
          static_cast<unsigned>(number(1ULL << 32) & ~row.fixed_mask) | row.fixed_bits;
      if (!row.reference(&reference_, word)) return false;
      is_sve(word)(&fast_, word);
      reference_.instr = word;
      const std::string differs = difference(reference_, fast_);
      if (differs.empty()) continue;
      ADD_FAILURE() << row.name << std::hex << ", word 0x" << word << ": " << differs;
      break;
    }
    return true;
  }

 private:
  cpu_state fast_, reference_;
};

// A reference function is found through its argument of type CpuContext, so that a name without one
// is no error.
#define FAST(pattern, name, fast_path, ...) \
  row<pattern __VA_OPT__(, ) __VA_ARGS__>(  \
      #name, [](auto... all) requires requires { name(all...); } { return name(all...); }),
#define BRIDGE(...)
#define NO_OP(...)
#define UNWRITTEN(...)

TEST_F(Agreement, OfFastPathAndReferenceFunction) {
  const Row rows[] = {
#include "sve/decode/instructions/compare_predicate.inc"
#include "sve/decode/instructions/integer.inc"
#include "sve/decode/instructions/permute.inc"
  };
  int compared = 0;
  for (const Row& row : rows) {
    if (compare(row)) ++compared;
  }
  EXPECT_EQ(compared, 344) << "a row lost its reference function, or this is a new one to count";
}

}  // namespace
}  // namespace sve
