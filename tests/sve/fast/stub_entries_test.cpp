// The entries of the operations without a fast path: each reports its own name. No row of the
// instruction table can name one, because the table does not include their header.
#include "sve/fast/stub_entries.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>

namespace {

using namespace sve::stub;

template <auto* Function, class... Operands>
rc call_with_any_operands(cpu_state* state) {
  return Function(state, Operands{}...);
}

struct entry {
  std::string_view name;
  rc (*call)(cpu_state*);
};

constexpr entry entries[] = {
#define STUB(name, ...) {#name, call_with_any_operands<name, __VA_ARGS__>},
#include "sve/fast/stub_entries.inc"
};

TEST(StubEntries, ReportTheInstructionAndReturnUnimplemented) {
  EXPECT_EQ(std::size(entries), 339U);
  const auto state = std::make_unique<cpu_state>();
  state->pc = reinterpret_cast<std::uint32_t*>(0x4007a8);
  state->instr = 0xffffffff0416a3e1;
  for (const auto& [name, call] : entries) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(call(state.get()), 2);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Unimplemented instruction: [  4007a8:\t 0416a3e1\t " + std::string(name) + "  ]\n");
  }
}

}  // namespace
