// Blocks under --architectural and --warn-v-writes: the code that notes writes of V registers, and
// the calls in place of SVE instructions.
#include <cstring>
#include <string>

#include "sve/client/fault_tolerant_loads.h"
#include "sve/client/memory_emulation.h"
#include "sve/client/pending_writes.h"
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
constexpr std::uint32_t sve_add = 0x04a20020;  // add  z0.s, z1.s, z2.s
constexpr std::uint32_t ld1w_z3 = 0xa540a003;  // ld1w {z3.s}, p0/z, [x0]
constexpr std::uint32_t ldr_p5 = 0x85800005;   // ldr  p5, [x0]
constexpr std::uint32_t ldff1b = 0xa41f6001;   // ldff1b {z1.b}, p0/z, [x0, xzr]
constexpr std::uint32_t ld1b = 0xa41f4001;     // the same with LD1B
constexpr std::uint32_t svc = 0xd4000001;      // svc  #0
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

class ArchitecturalTest : public ClientTest {
 protected:
  void SetUp() override {
    ClientTest::SetUp();
    host_script.architectural = true;
    start();
  }
};

struct run_case {
  const char* what;
  words before;
  words added;  // to the mask, in X0
  words last;   // behind that code
};

TEST_F(ArchitecturalTest, NotesTheRegistersThatABlockWrites) {
  if (sve::vector_bytes == sve::group_bytes) GTEST_SKIP() << "the V registers are all there is";
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
    EXPECT_LE(noted(c.added).size(), 12U);
    append(expected, c.last);
    EXPECT_EQ(block.encoded(), expected);
  }
}

TEST_F(ArchitecturalTest, InsertsNothingWhereNoVRegisterIsWritten) {
  application_block block({mov_x0, umov_w0, ret});
  block.rewrite(0x70000);  // of a shared library
  EXPECT_EQ(block.encoded(), (words{mov_x0, umov_w0, ret}));
  EXPECT_NE(exit_report().find("prog: 3 Non-SVE"), std::string::npos);
}

TEST_F(ArchitecturalTest, ASystemCallEndsTheLiveState) {
  application_block block({mov_x0, svc});
  block.rewrite(0x10000);
  EXPECT_EQ(block.encoded(), (words{mov_x0, save_x0,
                                    0xb24083e0,  // mov x0, #0x1ffffffff
                                    write_mask, restore_x0, svc}));
}

template <class Callee>
void expect_call(const scripted_call& call, Callee* callee, std::uint32_t word,
                 std::uint32_t handled, std::uint32_t run) {
  EXPECT_EQ(call.callee, reinterpret_cast<void*>(callee));
  ASSERT_EQ(call.arguments.size(), 5U);
  EXPECT_EQ(static_cast<std::uint32_t>(call.arguments[0].value), word);
  EXPECT_EQ(call.arguments[2].value, reinterpret_cast<ptr_int_t>(is_sve(handled)));
  EXPECT_EQ(call.arguments[3].value, run);
}

// The run before an emulated instruction goes with its call.
TEST_F(ArchitecturalTest, CallsWhatSuitsTheInstruction) {
  application_block block({movi_v0, fmov_d1, sve_add, ldff1b, ldr_q7, ld1w_z3, ret});
  block.rewrite(0x70000);
  const std::uint32_t rest = sve::vector_bytes == sve::group_bytes ? 0 : ~0U;
  ASSERT_EQ(host_script.inserted_calls.size(), 3U);
  EXPECT_NE(host_script.inserted_calls[0].callee,
            reinterpret_cast<void*>(sve::emulate_memory_instruction));
  EXPECT_EQ(host_script.inserted_calls[0].arguments[3].value, 0b11 & rest);
  expect_call(host_script.inserted_calls[1], sve::emulate_fault_tolerant_load, ldff1b, ld1b, 0);
  expect_call(host_script.inserted_calls[2], sve::emulate_memory_instruction, ld1w_z3, ld1w_z3,
              0x80 & rest);
}

TEST_F(ArchitecturalTest, KeepsWhatALoadMayChange) {
  struct {
    std::uint32_t word;
    unsigned first, vectors;
    int predicate;
  } const cases[] = {
      {ld1w_z3, 3, 1, -1},     {0xa5406000 | 30, 30, 1, -1},  // ldff1w {z30.s}
      {0xa540e01e, 30, 3, -1},                                // ld3w {z30.s, z31.s, z0.s}
      {ldr_p5, 5, 0, 5},                                      // ldr p5
      {0x8580401f, 31, 1, -1},                                // ldr z31
      {0xe540e003, 3, 0, -1},                                 // st1w {z3.s}
  };
  for (const auto& c : cases) {
    const sve::instruction_row* const row = sve::find_row(c.word);
    ASSERT_NE(row, nullptr) << std::hex << c.word;
    SCOPED_TRACE(sve::disassemble(c.word));
    const auto kept = sve::destinations::unpacked(sve::destinations_of(*row, c.word).packed());
    EXPECT_EQ(kept.vectors, c.vectors);
    EXPECT_EQ(kept.predicate, c.predicate);
    EXPECT_EQ(kept.first_vector, c.first);
  }
}

// A fault in a run counts the writes before it in the run.
TEST_F(ArchitecturalTest, CountsTheWritesBeforeAFault) {
  if (sve::vector_bytes == sve::group_bytes) GTEST_SKIP() << "the V registers are all there is";
  std::uint32_t code[] = {dup_v12, sve_add, movi_v0, ldr_q7, fmov_d1, ret};
  scripted_thread thread;
  host_script.current = &thread;
  host_script.thread_init_event(&thread);
  for (const auto& [faulting, mask] : {std::pair{0, 0x0U}, {1, 0x1000U}, {3, 0x1U}, {4, 0x81U}}) {
    sve::pending_writes() = 0;
    dr_mcontext_t machine = {.size = sizeof machine,
                             .flags = DR_MC_CONTROL,
                             .xsp = 0,
                             .pc = reinterpret_cast<byte*>(code + faulting)};
    dr_restore_state_info_t info = {.mcontext = &machine, .fragment_info = {.tag = code}};
    host_script.restore_state_event(&thread, true, &info);
    EXPECT_EQ(sve::pending_writes(), mask) << "fault of instruction " << faulting;
  }
  host_script.thread_exit_event(&thread);
}

TEST_F(ArchitecturalTest, PaysOffWhatIsPending) {
  scripted_thread thread;
  host_script.current = &thread;
  host_script.thread_init_event(&thread);
  auto& state = *static_cast<cpu_state*>(thread.field);
  const auto fill = [&state] {
    std::memset(state.z, 1, sizeof state.z);
    std::memset(state.p, 1, sizeof state.p + sizeof state.ffr);
  };
  const auto is_cleared = [](const vector_register& z) {
    const std::string bytes(reinterpret_cast<const char*>(z), sizeof z);
    return bytes.find('\1', sve::group_bytes) == std::string::npos && bytes[15] == 1;
  };
  fill();
  sve::pending_writes() = 0b100;
  sve::pay_off_pending_writes(state, 0b10);
  EXPECT_EQ(sve::pending_writes(), 0U);
  EXPECT_TRUE(is_cleared(state.z[1]) && is_cleared(state.z[2]));
  EXPECT_EQ(is_cleared(state.z[3]), sve::vector_bytes == sve::group_bytes);
  EXPECT_EQ(state.p[15][0] + state.ffr[0], 2);
  fill();
  sve::pending_writes() = sve::no_live_state;
  sve::pay_off_pending_writes(state, 0);
  EXPECT_EQ(state.p[15][0] + state.ffr[0], 0);
  host_script.thread_exit_event(&thread);
}

// --- --warn-v-writes -----------------------------------------------------------------------------

class WarningTest : public ClientTest {
 protected:
  void SetUp() override {
    ClientTest::SetUp();
    host_script.warn_v_writes = true;
    start();
  }

  // The vector registers whose reading by the last SVE instruction of the code would be reported.
  static std::uint64_t reported(const words& code) {
    host_script.inserted_calls.clear();
    application_block block(code);
    block.rewrite(0x10000);
    return static_cast<std::uint32_t>(host_script.inserted_calls.back().arguments[4].value);
  }
};

TEST_F(WarningTest, KnowsWhichReadsCount) {
  struct {
    const char* what;
    words code;
    std::uint64_t registers;
  } const cases[] = {
      {"add z0.s, z1.s, z2.s", {sve_add}, 0b110},
      {"mov z1.s, s0: the low element", {0x05242001}, 0},
      {"ptrue p0.s; add z0.s, p0/m, z0.s, z1.s", {0x2598e3e0, 0x04800020}, 0b11},
      {"ptrue p0.s, vl4; the same", {0x2598e080, 0x04800020}, 0},
      {"ptrue p0.s, vl5; the same", {0x2598e0a0, 0x04800020}, 0b11},
      {"ptrue p1.s, vl4; the same under p0", {0x2598e081, 0x04800020}, 0b11},
      {"ptrue p0.s, vl4; ptrue p0.s; the same", {0x2598e080, 0x2598e3e0, 0x04800020}, 0b11},
  };
  for (const auto& c : cases) EXPECT_EQ(reported(c.code), c.registers) << c.what;
}

TEST_F(WarningTest, LeavesSharedLibrariesAlone) {
  application_block block({movi_v0, sve_add, ret});
  block.rewrite(0x70000);
  EXPECT_EQ(block.encoded(), (words{movi_v0, sve_add, ret}));
}

}  // namespace
