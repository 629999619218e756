// Blocks under --architectural: the code that notes writes of V registers, word for word. The
// programs in architectural/ show what the notes are for.
#include "sve/state/vector_length.h"
#include "tests/sve/client/application_block.h"
#include "tests/sve/client/client_fixture.h"

namespace {

using host::append;
using host::words;

constexpr std::uint32_t mov_x0 = 0xd2800540;   // mov  x0, #42
constexpr std::uint32_t movi_v0 = 0x6f00e400;  // movi v0.2d, #0
constexpr std::uint32_t fmov_d1 = 0x1e6e1001;  // fmov d1, #1.0
constexpr std::uint32_t ldr_q7 = 0x3dc00007;   // ldr  q7, [x0]
constexpr std::uint32_t ldp_q30 = 0xad407c1e;  // ldp  q30, q31, [x0]
constexpr std::uint32_t ld4_v30 = 0x4c40081e;  // ld4  {v30.4s-v1.4s}, [x0]
constexpr std::uint32_t dup_v12 = 0x4e040c0c;  // dup  v12.4s, w0
constexpr std::uint32_t dup_v20 = 0x4e040c14;  // dup  v20.4s, w0
constexpr std::uint32_t umov_w0 = 0x0e043c00;  // mov  w0, v0.s[0]
constexpr std::uint32_t ret = 0xd65f03c0;      // ret

// Marker words of the scripted host.
constexpr std::uint32_t save_x0 = 0x1000, save_x1 = 0x1101;
constexpr std::uint32_t restore_x0 = 0x2000, restore_x1 = 0x2101;
constexpr std::uint32_t read_mask = 0x6000, write_mask = 0x7000;

// The code that adds registers to the mask.
words noted(const words& added) {
  words code = {save_x0, read_mask};
  append(code, added);
  append(code, {write_mask, restore_x0});
  return code;
}

using ArchitecturalTest = ClientTest;

struct run_case {
  const char* what;
  words before;
  words added;  // to the mask, in X0
  words last;   // behind that code
};

TEST_F(ArchitecturalTest, NotesTheRegistersThatABlockWrites) {
  if (sve::vector_bits == 128) GTEST_SKIP() << "the V registers are all there is";
  host_script.architectural = true;
  start();
  const run_case cases[] = {
      {"one", {mov_x0, movi_v0, ret}, {0xb2400000}, {ret}},     // orr x0, x0, #1
      {"a row", {movi_v0, fmov_d1, ret}, {0xb2400400}, {ret}},  // orr x0, x0, #3
      {"a list that wraps",
       {ld4_v30, ret},
       {0xb2400400, 0xb2620400},
       {ret}},  // orr x0, x0, #3; orr x0, x0, #0xc0000000
      {"no branch at the end", {mov_x0, ldr_q7}, {0xb2790000}, {}},  // orr x0, x0, #0x80
      {"a general instruction at the end", {ldr_q7, mov_x0}, {0xb2790000}, {mov_x0}},
      {"five rows",
       {movi_v0, ldr_q7, dup_v12, dup_v20, ldp_q30, ret},
       {save_x1,
        0xd2821021,  // mov  x1, #0x1081
        0xf2b80201,  // movk x1, #0xc010, lsl #16
        0xaa010000,  // orr  x0, x0, x1
        restore_x1},
       {ret}},
  };
  for (const run_case& c : cases) {
    SCOPED_TRACE(c.what);
    application_block block(c.before);
    block.rewrite(0x10000);
    words expected(c.before.begin(), c.before.end() - static_cast<std::ptrdiff_t>(c.last.size()));
    append(expected, noted(c.added));
    append(expected, c.last);
    EXPECT_EQ(block.encoded(), expected);
  }
}

TEST_F(ArchitecturalTest, InsertsNothingWhereNoVRegisterIsWritten) {
  host_script.architectural = true;
  start();
  application_block block({mov_x0, umov_w0, ret});
  block.rewrite(0x70000);  // of a shared library
  EXPECT_EQ(block.encoded(), (words{mov_x0, umov_w0, ret}));
  EXPECT_NE(exit_report().find("prog: 3 Non-SVE"), std::string::npos);
}

TEST_F(ArchitecturalTest, WarningsLeaveSharedLibrariesAlone) {
  constexpr std::uint32_t sve_add = 0x04a20020;  // add z0.s, z1.s, z2.s
  host_script.warn_v_writes = true;
  start();
  application_block block({movi_v0, sve_add, ret});
  block.rewrite(0x70000);
  EXPECT_EQ(block.encoded(), (words{movi_v0, sve_add, ret}));
}

}  // namespace
