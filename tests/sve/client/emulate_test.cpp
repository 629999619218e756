// The call that replaces an instruction, and the counters that it updates.
#include "sve/client/emulate.h"

#include "sve/client/counters.h"
#include "sve/client/thread_state.h"
#include "tests/sve/client/client_fixture.h"

namespace {

// The state and the word that the test's handler was given, and the result that it returns.
cpu_state seen;
unsigned int seen_word;
aarch64_decode_rc outcome;

aarch64_decode_rc handler(cpu_state* state, unsigned int word) {
  seen = *state;
  seen_word = word;
  return outcome;
}

class EmulateTest : public ClientTest {
 protected:
  void SetUp() override {
    ClientTest::SetUp();
    icounts.clear();
    start();
    host_script.current = &thread_;
    host_script.thread_init_event(&thread_);
  }
  void TearDown() override { host_script.thread_exit_event(&thread_); }

  // Emulates `word` at code_[i] and returns what that prints.
  std::string emulate(unsigned i, unsigned word, aarch64_decode_rc result) {
    outcome = result;
    testing::internal::CaptureStderr();
    emulate_instruction(word, reinterpret_cast<unsigned char*>(&code_[i]), handler);
    return testing::internal::GetCapturedStderr();
  }

  static std::string dumped_stats() {
    testing::internal::CaptureStderr();
    dump_sve_stats();
    return testing::internal::GetCapturedStderr();
  }

  scripted_thread thread_;
  std::uint32_t code_[2] = {0x04a20020, 0x04a20020};
};

TEST_F(EmulateTest, CountsSuccessesByAddress) {
  for (int i = 0; i < 3; ++i) EXPECT_EQ(emulate(0, 0x04a20020, aarch64_decode_ok), "");
  emulate(1, 0x04a20020, aarch64_decode_ok);
  emulate(1, 0x04a20021, aarch64_decode_ok);  // the entry keeps its first word
  EXPECT_EQ(sve_instr_count, 5U);

  char expected[100];
  std::snprintf(expected, sizeof(expected), "%p: 0x04a20020 3\n%p: 0x04a20020 2\n",
                static_cast<void*>(&code_[0]), static_cast<void*>(&code_[1]));
  EXPECT_EQ(dumped_stats(), expected);
}

TEST_F(EmulateTest, ReportsFailuresWithTheWordInMemory) {
  code_[0] = 0x12345678;  // changed since the block was translated
  char expected[100];
  std::snprintf(expected, sizeof(expected),
                "Error: failed to emulate SVE instruction 0x12345678 at PC %p\n",
                static_cast<void*>(&code_[0]));
  EXPECT_EQ(emulate(0, 0x04a20020, aarch64_decode_unimplemented), expected);
  EXPECT_EQ(seen_word, 0x04a20020U);
  EXPECT_EQ(seen.pc, &code_[0]);
  EXPECT_EQ(sve_instr_count, 0U);
  EXPECT_TRUE(icounts.empty());
  EXPECT_EQ(dumped_stats(), "");
}

}  // namespace
