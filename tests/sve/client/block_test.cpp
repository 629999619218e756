// Block rewriting: which blocks and instructions are rewritten, and the sequence that replaces an
// instruction, word for word.
#include "sve/client/emulate.h"
#include "sve/state/vector_length.h"
#include "tests/sve/client/application_block.h"
#include "tests/sve/client/client_fixture.h"

namespace {

using host::append;
using host::words;

constexpr std::uint32_t sve_add = 0x04a20020;    // add z0.s, z1.s, z2.s
constexpr std::uint32_t sve_addvl = 0x043f503f;  // addvl sp, sp, #1
constexpr std::uint32_t mov_x0 = 0xd2800540;     // mov x0, #42
constexpr std::uint32_t neon_add = 0x4ea28420;   // add v0.4s, v1.4s, v2.4s
constexpr std::uint32_t ret = 0xd65f03c0;        // ret

using BlockTest = ClientTest;

// A load of a register or a pair differs from its store in one bit.
constexpr std::uint32_t load = 1U << 22;

// stp xn, xn+1, [x27, #8 * n] for all general registers but X26 to X28, or ldp.
void append_pairs(words& code, std::uint32_t load_bit) {
  for (const std::uint32_t n : {0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 29}) {
    code.push_back(load_bit | 0xa9000360 | n << 15 | (n + 1) << 10 | n);
  }
}

// str qn, [x27, #z[n]] for all n, or ldr.
void append_vectors(words& code, std::uint32_t load_bit) {
  constexpr std::uint32_t z_units = 288 / 16;                 // the start of z, in Q registers
  constexpr std::uint32_t z_stride = sve::vector_bytes / 16;  // the distance of its vectors
  for (std::uint32_t n = 0; n < 32; ++n) {
    code.push_back(load_bit | 0x3d800360 | (z_units + z_stride * n) << 10 | n);
  }
}

// The sequence for a state at 0x0000aaaa12345670. Marker words stand for the host's own code.
words expected_sequence() {
  words code = {
      0x0000101a,  // save x26 to slot 1
      0x0000111b,  // save x27 to slot 2
      0x0000301b,  // x27 = the application's x28
      0x0000121b,  // save x27 to slot 3
      0xd28ace1b,  // mov  x27, #0x5670
      0xf2a2469b,  // movk x27, #0x1234, lsl #16
      0xf2d5555b,  // movk x27, #0xaaaa, lsl #32
      0x910003fa,  // mov  x26, sp
      0xf9007f7a,  // str  x26, [x27, #248]
  };
  append_pairs(code, 0);
  append_vectors(code, 0);
  append(code, {
                   0xd53b421a,  // mrs  x26, nzcv
                   0xf900877a,  // str  x26, [x27, #264]
                   0xd53b443a,  // mrs  x26, fpsr
                   0xb901137a,  // str  w26, [x27, #272]
                   0xd53b441a,  // mrs  x26, fpcr
                   0xb901177a,  // str  w26, [x27, #276]
                   0x00005000,  // call emulate_instruction
                   0xd28ace1b,  // mov  x27, #0x5670
                   0xf2a2469b,  // movk x27, #0x1234, lsl #16
                   0xf2d5555b,  // movk x27, #0xaaaa, lsl #32
                   0xb941177a,  // ldr  w26, [x27, #276]
                   0xd51b441a,  // msr  fpcr, x26
                   0xb941137a,  // ldr  w26, [x27, #272]
                   0xd51b443a,  // msr  fpsr, x26
                   0xf940877a,  // ldr  x26, [x27, #264]
                   0xd51b421a,  // msr  nzcv, x26
               });
  append_vectors(code, load);
  append_pairs(code, load);
  append(code, {
                   0xf9407f7a,  // ldr  x26, [x27, #248]
                   0x9100035f,  // mov  sp, x26
                   0x0000221b,  // restore x27 from slot 3
                   0x0000401b,  // the application's x28 = x27
                   0x0000211b,  // restore x27 from slot 2
                   0x0000201a,  // restore x26 from slot 1
               });
  return code;
}

TEST_F(BlockTest, ReplacesAnSveInstructionByTheSequence) {
  start();
  application_block block({sve_add});
  block.rewrite(0x10000);
  EXPECT_EQ(block.encoded(), expected_sequence());

  for (instr_t* i = block.first(); i != nullptr; i = instr_get_next(i)) {
    const int opcode = instr_get_opcode(i);
    const bool is_host_code = !instr_is_app(i) || opcode == OP_movz || opcode == OP_movk;
    EXPECT_TRUE(is_host_code || instr_get_app_pc(i) == block.pc());
  }

  ASSERT_EQ(host_script.inserted_calls.size(), 1U);
  const scripted_call& call = host_script.inserted_calls[0];
  EXPECT_EQ(call.pc, block.pc());
  EXPECT_EQ(call.callee, reinterpret_cast<void*>(emulate_instruction));
  ASSERT_EQ(call.arguments.size(), 3U);
  EXPECT_EQ(call.arguments[0].value, sve_add);
  EXPECT_EQ(opnd_get_size(call.arguments[0]), OPSZ_4);
  EXPECT_EQ(call.arguments[1].value, reinterpret_cast<ptr_int_t>(block.pc()));
  EXPECT_EQ(opnd_get_size(call.arguments[1]), OPSZ_8);
  EXPECT_EQ(call.arguments[2].value, reinterpret_cast<ptr_int_t>(is_sve(sve_add)));
  EXPECT_EQ(opnd_get_size(call.arguments[2]), OPSZ_8);
  exit_report();
}

TEST_F(BlockTest, KeepsOtherInstructionsInOrder) {
  start();
  application_block block({mov_x0, sve_add, sve_addvl, neon_add, ret});
  block.rewrite(0x10000);
  words expected = {mov_x0};
  append(expected, expected_sequence());
  append(expected, expected_sequence());
  append(expected, {neon_add, ret});
  EXPECT_EQ(block.encoded(), expected);
  ASSERT_EQ(host_script.inserted_calls.size(), 2U);
  EXPECT_EQ(host_script.inserted_calls[1].arguments[0].value, sve_addvl);
  EXPECT_EQ(host_script.inserted_calls[1].pc, block.pc() + 8);
  EXPECT_NE(exit_report().find("prog: 3 Non-SVE"), std::string::npos);
}

TEST_F(BlockTest, LeavesABlockWithoutSveUnchanged) {
  constexpr std::uint32_t udf = 0x00000000;          // udf #0
  constexpr std::uint32_t unallocated = 0x252c9001;  // setffr with a bit that must be 0
  start();
  application_block block({mov_x0, udf, unallocated, ret});
  block.rewrite(0x10000);
  EXPECT_EQ(block.encoded(), (words{mov_x0, udf, unallocated, ret}));
  application_block empty({});
  empty.rewrite(0x10000);
  EXPECT_TRUE(empty.encoded().empty());
  EXPECT_NE(exit_report().find("prog: 4 Non-SVE"), std::string::npos);
}

TEST_F(BlockTest, NeedsX28AsTheStolenRegister) {
  start();
  host_script.stolen_register = DR_REG_X27;
  application_block block({sve_add});
  EXPECT_EXIT(block.rewrite(0x10000), testing::ExitedWithCode(aborted_status),
              assertion_message("dr_get_stolen_reg\\(\\) == DR_REG_X28"));
}

struct place {
  const char* what;
  std::uintptr_t address;
  bool has_main_module;
  bool rewritten;
};

TEST_F(BlockTest, RewritesTheMainModuleAndCodeOutsideOfModules) {
  const place places[] = {
      {"main module", 0x10000, true, true},
      {"last word of the main module", 0x1fffc, true, true},
      {"outside of any module", 0x20000, true, true},
      {"a shared library", 0x70000, true, false},
      {"a module when the host has no main module", 0x70000, false, false},
      {"outside of any module when the host has no main module", 0x20000, false, true},
  };
  for (const place& p : places) {
    SCOPED_TRACE(p.what);
    SetUp();
    host_script.has_main_module = p.has_main_module;
    start();
    application_block block({neon_add, sve_add, ret});
    block.rewrite(p.address);
    EXPECT_EQ(block.encoded().size(), p.rewritten ? expected_sequence().size() + 2 : 3);
    const char* count = p.rewritten ? ": 2 Non-SVE" : ": 0 Non-SVE";
    EXPECT_NE(exit_report().find(count), std::string::npos);
  }
}

}  // namespace
