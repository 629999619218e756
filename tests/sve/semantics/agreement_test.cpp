// One instruction, two definitions. If a row of the instruction table has both a fast path and a
// reference function, both run from the same random states and must leave the same state. A second
// test uses predicate bytes other than 0 and 1, which no processor has: every row must treat them
// like their lowest bits. In the native build both run under the sanitizers.
//
// The rows come from the table itself. The test finds out whether a row has a reference function by
// naming that function with the values of the row's operands.
#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <type_traits>

#include "fp_registers.h"
#include "sve/decode/bridge.h"
#include "sve/decode/operand_fields.h"
#include "sve/decode/reference_functions.h"
#include "sve/decode/sve_utils.h"
#include "tests/conformance/arena.h"
#include "tests/conformance/states.h"
#include "tests/sve/fast/machine.h"

namespace sve {
namespace {

// A fast path takes the multiplier of a counting form; the reference function adds the 1 itself.
template <class Operand>
struct reference_operand : Operand {};
template <>
struct reference_operand<Multiplier> : MultiplierField {};

template <class Operand>
inline constexpr bool is_destructive_predicate = false;
template <element_size Size>
inline constexpr bool is_destructive_predicate<Pdn<Size>> = true;
template <element_size Size>
inline constexpr bool is_destructive_predicate<Pdm<Size>> = true;

template <class Destination, class Record>
auto argument(const cpu_state* state, Destination destination, Record record) {
  if constexpr (std::is_same_v<Record, aarch64_sve_logical64_imm>) {
    return record.mask;
  } else if constexpr (std::is_same_v<Record, aarch64_sve_fp_dup_imm>) {
    const std::uint64_t by_size[] = {0, record.half, record.single, record.dbl};
    return by_size[destination.size];
  } else {
    return value_of(state, record);
  }
}

struct no_reference {};

template <class Function, class First, class... Rest>
auto call_with_second(Function function, CpuContext* ctx, First first, Rest... rest) {
  if constexpr (sizeof...(Rest) == 2) {
    const auto with = [&](auto second, auto third) {
      if constexpr (requires { function(second, first, third, ctx); }) {
        return function(second, first, third, ctx);
      } else {
        return no_reference{};
      }
    };
    return with(rest...);
  } else {
    return no_reference{};
  }
}

// Calls the reference function with the operands without the destination, or with all of them. In
// the second case, the destination's old value or the data of a store is first, second or last. It
// is second in CLASTB. It is last in INCP, whose predicate comes first, in PNEXT and BRKN, whose
// governing predicate comes first, and in stores.
template <bool DestinationLast, class Function, class First, class... Rest>
auto call(Function function, CpuContext* ctx, First first, Rest... rest) {
  if constexpr (requires { function(rest..., ctx); }) {
    return function(rest..., ctx);
  } else if constexpr (!DestinationLast && requires { function(first, rest..., ctx); }) {
    return function(first, rest..., ctx);
  } else if constexpr (requires { function(rest..., first, ctx); }) {
    return function(rest..., first, ctx);
  } else {
    return call_with_second(function, ctx, first, rest...);
  }
}

// Runs the reference function of a row as a bridge would. Returns false if there is none.
template <word_pattern Pattern, class Function, class Destination, class... Operands>
bool run_reference(cpu_state* state, unsigned word) {
  CpuContext ctx = context_in(*state);
  const auto destination = Destination::template take<Pattern>(word);
  const auto result = [&] {
    return call<is_destructive_predicate<Destination>>(
        Function{}, &ctx, argument(state, destination, destination),
        argument(state, destination, reference_operand<Operands>::template take<Pattern>(word))...);
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

// Only SETFFR has no operand.
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
  static void SetUpTestSuite() { conformance::map_arena(); }

  // The state with each predicate byte 0 or 1, as the system keeps them.
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

  // A state for the word, with odd predicate bytes. Memory operands, if the row has any, are in the
  // arena.
  cpu_state make_state(const conformance::row_shape& shape, unsigned word) {
    cpu_state state;
    conformance::make_state(shape, word, number(~u64{0}), made_);
    unpack(made_.before, state);
    for (auto& predicate : state.p) {
      for (byte& lane : predicate) lane = predicate_byte(64U * lane);
    }
    for (byte& lane : state.ffr) lane = predicate_byte(64U * lane);
    return state;
  }

  static void run_row(cpu_state* state, unsigned word) {
    const conformance::fp_registers_of scope(*state);
    is_sve(word)(state, word);
  }

  // The memory that `run` leaves if it starts from the memory of the last state.
  template <class Run>
  conformance::arena_content memory_after(Run run) {
    conformance::arena() = made_.memory;
    run();
    return conformance::arena();
  }

  // Compares up to the first difference. Returns false only if the row has no reference function.
  bool compare_with_reference(const Row& row) {
    if (row.reference == nullptr) return false;
    const conformance::row_shape shape = conformance::describe(*find_row(row.fixed_bits));
    for (int round = 0; round < 40; ++round) {
      const unsigned word = random_word(row);
      fast_ = canonical(make_state(shape, word));
      fast_.nzcv &= 0xf0000000;
      other_ = fast_;
      bool exists = false;
      const auto written = memory_after([&] { exists = row.reference(&other_, word); });
      if (!exists) return false;
      other_.instr = word;
      cut_to_element(shape, word);
      const auto written_fast = memory_after([&] { run_row(&fast_, word); });
      if (!agree(row, word, difference(other_, fast_), written == written_fast)) break;
    }
    return true;
  }

  void compare_with_lowest_bits(const Row& row) {
    const conformance::row_shape shape = conformance::describe(*find_row(row.fixed_bits));
    for (int round = 0; round < 10; ++round) {
      const unsigned word = random_word(row);
      fast_ = make_state(shape, word);
      other_ = canonical(fast_);
      const auto written = memory_after([&] { run_row(&fast_, word); });
      const auto written_other = memory_after([&] { run_row(&other_, word); });
      const std::string differs = difference(other_, canonical(fast_));
      if (!agree(row, word, differs, written == written_other)) break;
    }
  }

 private:
  static bool agree(const Row& row, unsigned word, const std::string& differs, bool same_memory) {
    EXPECT_EQ(differs, "") << row.name << std::hex << ", word 0x" << word;
    EXPECT_TRUE(same_memory) << row.name << std::hex << ", word 0x" << word;
    return differs.empty() && same_memory;
  }

  static u64 element_mask(const conformance::row_shape& shape) {
    return ~u64{0} >> (64 - 8 * shape.element_bytes);
  }

  // Cuts results of the reference function that are wider than the element. It extends the sign of
  // a signed minimum or maximum to 64 bits, and CLASTB without an active element keeps the whole
  // old W register.
  void cut_to_element(const conformance::row_shape& shape, unsigned word) {
    const std::string_view name = shape.row->name;
    const unsigned d = shape.value('d', word);
    if (name.ends_with("MaxReduceV") || name.ends_with("MinReduceV")) {
      set_element(other_.z[d], 0, element_mask(shape) & element<u64>(other_.z[d], 0));
    } else if (name.ends_with("CondXBSV") && d < 31) {
      other_.x[d] &= element_mask(shape);
    }
  }

  cpu_state fast_, other_;
  conformance::test_case made_{};
};

// The compiler finds a reference function through its argument of type CpuContext, so a name
// without such a function is not an error.
#define FAST(pattern, mnemonic, name, fast_path, ...) \
  row<pattern __VA_OPT__(, ) __VA_ARGS__>(            \
      #name, [](auto... all) requires requires { name(all...); } { return name(all...); }),
#define FAST_FP FAST
#define BRIDGE(pattern, mnemonic, name, ...) row_without_fast_path<pattern>(#name),
#define NO_OP(...)

const Row rows[] = {
#include "sve/decode/instructions.inc"
};

TEST_F(Agreement, OfFastPathAndReferenceFunction) {
  int compared = 0;
  for (const Row& row : rows) {
    if (compare_with_reference(row)) ++compared;
  }
  EXPECT_GE(compared, 578) << "a row lost its reference function";
}

TEST_F(Agreement, OfPredicateBytesAndTheirLowestBits) {
  // These look at whole bytes; fast_paths_test tests them.
  constexpr std::string_view by_bytes[] = {
      "VecPAndPPZ",       "VecPOrPPZ",           "VecPXorPPZ",      "VecPNorPPZ",
      "VecPBreakPrevBPZ", "VecPBreakPrevBFlgPZ", "VecPBreakNextPZ", "VecPBreakNextFlgPZ"};
  for (const Row& row : rows) {
    if (std::ranges::find(by_bytes, row.name) == std::end(by_bytes)) compare_with_lowest_bits(row);
  }
}

}  // namespace
}  // namespace sve
