// The entries of the operations without a fast path: all answer for themselves, and no row of the
// instruction table names one.
#include "sve/fast/stub_entries.h"

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>

namespace {

using namespace sve::stub;

using Entry = std::function<rc(cpu_state*)>;

template <class... Operands>
Entry with_any_operands(rc (*entry)(cpu_state*, Operands...)) {
  return [entry](cpu_state* state) { return entry(state, Operands{}...); };
}

const std::map<std::string, Entry> entries{
#define STUB(name, ...) {#name, with_any_operands<__VA_ARGS__>(name)},
#include "sve/fast/stub_entries.inc"
};

TEST(StubEntries, ReportTheInstructionAndReturnUnimplemented) {
  EXPECT_EQ(entries.size(), 339U);
  const auto state = std::make_unique<cpu_state>();
  state->pc = reinterpret_cast<std::uint32_t*>(0x4007a8);
  state->instr = 0xffffffff0416a3e1;
  for (const auto& [name, entry] : entries) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(entry(state.get()), 2);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Unimplemented instruction: [  4007a8:\t 0416a3e1\t " + name + "  ]\n");
  }
}

TEST(StubEntries, ServeNoRow) {
  const char* const fast_paths[] = {
#define FAST(pattern, name, function, ...) #function,
#define FAST_FP FAST
#define BRIDGE(...)
#define NO_OP(...)
#include "sve/decode/instructions.inc"
  };
  EXPECT_EQ(std::size(fast_paths), 730U);
  for (const char* name : fast_paths) EXPECT_FALSE(entries.contains(name)) << name;
}

}  // namespace
