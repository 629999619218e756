// The bridge: what it carries in both directions, apart from the operation itself.
#include "sve/decode/bridge.h"

#include <gtest/gtest.h>

#include "sve/decode/sve_utils.h"

namespace {

using namespace sve;

TEST(Bridge, NormalisesFlagsAndFirstFaultRegister) {
  cpu_state state{};
  state.nzcv = 0xdeadbeef'f0000000;
  state.fpcr = 0x03000000;
  state.fpcr_extra = 0x00400000;
  state.instr = 77;
  for (unsigned k = 0; k < vector_bytes; ++k) state.ffr[k] = k % 2 == 0 ? 0xff : 0xfe;
  constexpr unsigned word = 0x0420e3e5;  // cntb x5
  EXPECT_EQ(is_sve(word)(&state, word), aarch64_decode_ok);
  EXPECT_EQ(state.x[5], vector_bytes);
  EXPECT_EQ(state.nzcv, 0xf0000000U) << "zero-extended";
  EXPECT_EQ(state.fpcr, 0x03400000U);
  EXPECT_EQ(state.instr, 77U) << "only fast handlers store the word";
  for (unsigned k = 0; k < vector_bytes; ++k) EXPECT_EQ(state.ffr[k], k % 2 == 0 ? 1 : 0) << k;
}

}  // namespace
