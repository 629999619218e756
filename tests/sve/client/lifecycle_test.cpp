// The client's life in the process: its start, its threads, its end, and each failure that ends it
// early.
#include <algorithm>
#include <array>

#include "sve/client/counters.h"
#include "sve/client/thread_state.h"
#include "tests/sve/client/client_fixture.h"

DR_EXPORT int _USES_DR_VERSION_;

namespace {

TEST_F(ClientTest, StartsAndEndsInOrder) {
  EXPECT_EQ(_USES_DR_VERSION_, 602);
  start();
  exit_report();
  const std::vector<std::string> expected = {
      "dr_set_client_name Tessaly SVE emulation client",
      "drmgr_init",
      "drreg_init",
      "dr_get_main_module",
      "drmgr_register_thread_init_event",
      "drmgr_register_thread_exit_event",
      "dr_register_exit_event",
      "drmgr_register_bb_app2app_event",
      "drmgr_register_tls_field",
      "drmgr_register_kernel_xfer_event",
      "dr_log SVE client initializing\n",
      "dr_log SVE client exiting\n",
      "drmgr_unregister_bb_app2app_event",
      "drreg_exit",
      "drmgr_exit",
  };
  EXPECT_EQ(host_script.calls, expected);
  EXPECT_EQ(host_script.module_records, 0);
}

TEST_F(ClientTest, AcceptsNoOptions) {
  for (const auto& accepted : std::vector<std::vector<const char*>>{{}, {"--"}, {"--", "-x"}}) {
    start(accepted);
    exit_report();
  }
  for (const auto& refused : std::vector<std::vector<const char*>>{{"-x"}, {"-x", "--"}}) {
    EXPECT_EXIT(start(refused), testing::ExitedWithCode(aborted_status),
                "^Usage error: Unknown option: -x\n$");
  }
}

TEST_F(ClientTest, ReportsCountsFromZeroByTheNameOfTheMainModule) {
  for (const std::string name : {"prog", "(no main module)"}) {
    sve_instr_count = 17;
    host_script.has_main_module = name == "prog";
    start();
    const std::string first_line = name + ": 0 SVE instructions executed\n";
    EXPECT_EQ(exit_report(), first_line + name + ": 0 Non-SVE AArch64 instructions executed\n");
  }
}

TEST_F(ClientTest, GivesEachThreadAClearedState) {
  start();
  std::array<scripted_thread, 2> threads;
  for (scripted_thread& thread : threads) host_script.thread_init_event(&thread);
  EXPECT_NE(sve::thread_state(&threads[0]), sve::thread_state(&threads[1]));
  for (scripted_thread& thread : threads) {
    const auto* bytes = static_cast<const unsigned char*>(thread.field);
    EXPECT_TRUE(
        std::all_of(bytes, bytes + sizeof(cpu_state), [](unsigned char b) { return b == 0; }));
    host_script.thread_exit_event(&thread);
  }
  EXPECT_EQ(host_script.thread_records, 0);
  exit_report();
}

TEST_F(ClientTest, FailedAssertionsSayWhereAndAbort) {
  const auto begin = [] { start(); };
  const auto begin_and_end = [] {
    start();
    host_script.exit_event();
  };
  const auto end_unknown_thread = [] {
    start();
    scripted_thread thread;
    host_script.thread_exit_event(&thread);
  };
  struct {
    const char* failing;    // the host function that fails, or what is wrong
    const char* condition;  // as the message has it
    void (*act)();
  } const cases[] = {
      {"drmgr_init", "false", begin},
      {"drreg_init", "false", begin},
      {"drmgr_register_bb_app2app_event", "false", begin},
      {"drmgr_unregister_bb_app2app_event", "false", begin_and_end},
      {"drreg_exit", "false", begin_and_end},
      {"a thread never seen", "data != __null", end_unknown_thread},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.failing);
    host_script.failing = c.failing;
    EXPECT_EXIT(c.act(), testing::ExitedWithCode(aborted_status), assertion_message(c.condition));
  }
}

}  // namespace
