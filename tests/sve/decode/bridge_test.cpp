// The bridge: what it carries in both directions, apart from the operation itself.
#include "sve/decode/bridge.h"

#include <cstring>
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

TEST(Bridge, PacksTheFirstBitOfEachPredicateByte) {
  predicate_register bytes{};
  bytes[0] = 0xff;
  bytes[1] = 0xfe;
  bytes[vector_bytes - 1] = 1;
  const PredV value = pack(bytes);
  EXPECT_TRUE(value.lane(0));
  EXPECT_FALSE(value.lane(1));
  EXPECT_TRUE(value.lane(vector_bytes - 1));
  for (unsigned lane = vector_bytes; lane < 256; ++lane) EXPECT_FALSE(value.lane(lane)) << lane;
}

std::uint64_t sum_of_arguments(std::uint64_t scalar, std::uint64_t base, CpuContext* context) {
  context->fpsr |= 0x10;
  return scalar + base;
}

// A SIMD&FP scalar is read from the low 64 bits of its register, and writing it clears the rest. A
// base register with number 31 is SP. Writing a W register clears its upper half.
TEST(Bridge, ConvertsScalarsOfBothKinds) {
  cpu_state state{};
  std::memset(state.z[3], 0xee, vector_bytes);
  state.sp = 0x100;
  constexpr word_pattern pattern("0000000000000000000000nnnnnddddd");
  bridge_handler<pattern, &sum_of_arguments, Vd<D>, Vdn<D>, Base>(&state, (31U << 5) | 3);
  EXPECT_EQ(element<std::uint64_t>(state.z[3], 0), 0xeeeeeeee'eeeeefeeU);
  for (unsigned k = 8; k < vector_bytes; ++k) EXPECT_EQ(state.z[3][k], 0) << k;
  EXPECT_EQ(state.fpsr, 0x10U);

  state.x[4] = 0x11111111'80000000;
  bridge_handler<pattern, &sum_of_arguments, Rd<S>, Rdn<D>, Base>(&state, (31U << 5) | 4);
  EXPECT_EQ(state.x[4], 0x80000100U);
}

}  // namespace
