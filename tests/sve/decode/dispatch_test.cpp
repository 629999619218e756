// is_sve and execute_sve_instruction: which words they find, which they leave alone, and what
// running a word does to `pc` and to the counts.
#include <gtest/gtest.h>

#include "sve/client/counters.h"
#include "sve/decode/sve_utils.h"
#include "sve/state/access.h"

namespace {

struct word_case {
  std::uint32_t word;
  const char* row;  // null: no row
};

TEST(IsSve, KnowsTheRowsAndNothingElse) {
  constexpr word_case cases[] = {
      {0x04a20020, "VecU32AddVVX"},      // add z0.s, z1.s, z2.s
      {0x25a02000, "VecU32CTermEQ"},     // ctermeq w0, w0
      {0x252c9000, "VecPClearFFSR"},     // setffr
      {0x252c9001, nullptr},             // setffr with one bit changed
      {0xc4a1e000, "VecU64LoadFF2VIZ"},  // ldff1h {z0.d}, p0/z, [z0.d, #2]: bit 31 set
      {0x00000000, nullptr},             // udf
      {0xd503201f, nullptr},             // nop
      {0x8b020020, nullptr},             // add x0, x1, x2
      {0x4ea28420, nullptr},             // add v0.4s, v1.4s, v2.4s
      {0xf9400fe0, nullptr},             // ldr x0, [sp, #24]
      {0xd65f03c0, nullptr},             // ret
      {0x04f438d2, nullptr},             // not allocated, in the SVE group
  };
  for (const auto& [word, name] : cases) {
    const sve::instruction_row* row = sve::find_row(word);
    if (name == nullptr) {
      EXPECT_EQ(row, nullptr) << std::hex << word;
      EXPECT_EQ(is_sve(word), nullptr) << std::hex << word;
    } else {
      ASSERT_NE(row, nullptr) << std::hex << word;
      EXPECT_EQ(row->name, name);
    }
  }
}

TEST(Execute, AdvancesAndCountsOnSuccessOnly) {
  std::uint32_t code[] = {
      0x04a20020,  // add z0.s, z1.s, z2.s
      0x2598e3e3,  // ptrue p3.s
      0xd503201f,  // nop
  };
  cpu_state state{};
  sve::set_element<std::uint32_t>(state.z[1], 1, 5);
  sve::set_element<std::uint32_t>(state.z[2], 1, 7);
  state.instr = ~std::uint64_t{0};
  state.pc = code;
  const std::uint64_t before = sve_instr_count;

  EXPECT_EQ(execute_sve_instruction(&state), aarch64_decode_ok);
  EXPECT_EQ(sve::element<std::uint32_t>(state.z[0], 1), 12U);
  EXPECT_EQ(state.instr, 0x04a20020U) << "the word, zero-extended";
  EXPECT_EQ(execute_sve_instruction(&state), aarch64_decode_ok);
  EXPECT_EQ(state.p[3][0], 1);
  EXPECT_EQ(state.pc, code + 2);
  EXPECT_EQ(execute_sve_instruction(&state), aarch64_decode_unimplemented);
  EXPECT_EQ(state.pc, code + 2);

  EXPECT_EQ(sve_instr_count, before + 2);
  EXPECT_EQ(icounts.at(code).first, 0x04a20020U);
  EXPECT_EQ(icounts.at(code).second, 1U);
  EXPECT_EQ(icounts.count(code + 2), 0U);
}

}  // namespace
