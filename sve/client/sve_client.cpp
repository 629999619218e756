// The client: what it sets up when the host loads it, and what it does with each block.
//
// The host must run with thread-private code caches: a block that was rewritten on a thread
// contains the address of that thread's cpu_state as an immediate.
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>
#include <pthread.h>

#include "dr_api.h"
#include "drmgr.h"
#include "drreg.h"
#include "sve/client/architectural.h"
#include "sve/client/counters.h"
#include "sve/client/modes.h"
#include "sve/client/saved_vectors.h"
#include "sve/client/thread_state.h"
#include "sve/client/transfer.h"
#include "sve/client/v_write_warning.h"
#include "sve/decode/sve_utils.h"

extern "C" {

// The version of the host's interface that this client is written for. The host reads it at load.
DR_EXPORT int _USES_DR_VERSION_;
int _USES_DR_VERSION_ = 602;

// The main module's record, or null if the host has none. Freed in event_exit.
DR_EXPORT module_data_t* exe;
module_data_t* exe = nullptr;

DR_EXPORT void dr_client_main(client_id_t id, int argc, const char* argv[]);

}  // extern "C"

namespace {

app_pc exe_start = nullptr;

// Instructions of rewritten blocks that are in no decode map, counted at translation.
std::atomic<std::uint64_t> aarch64_instr_count{0};

void fail_assertion(int line, const char* condition) {
  dr_fprintf(our_stderr, "ASSERT FAILURE: %s:%d: %s (%s)\n", "sve/client/sve_client", line,
             condition, "");
  dr_abort();
}

// A macro, to get the caller's line number. The text is a separate argument, so that the message
// does not depend on how the condition is written.
#define CLIENT_ASSERT(condition, text) \
  ((condition) ? static_cast<void>(0) : fail_assertion(__LINE__, text))

// --- Blocks ------------------------------------------------------------------------------------

// Whether to emulate the block at `tag`: it is in the main module, or outside of every module.
bool is_rewritten(void* tag) {
  module_data_t* module = dr_lookup_module(dr_fragment_app_pc(tag));
  if (module == nullptr) return true;
  const app_pc start = module->start;
  dr_free_module_data(module);
  return start == exe_start;
}

void rewrite_instruction(void* drcontext, instrlist_t* block, instr_t* instr,
                         decode_handler handler) {
  CLIENT_ASSERT(dr_get_stolen_reg() == DR_REG_X28, "dr_get_stolen_reg() == DR_REG_X28");
  sve::insert_emulation(drcontext, block, instr, sve::thread_state(drcontext), handler);
  instrlist_remove(block, instr);
  instr_destroy(drcontext, instr);
}

dr_emit_flags_t event_instruction_change(void* drcontext, void* tag, instrlist_t* block,
                                         bool /*for_trace*/, bool /*translating*/) {
  if (!is_rewritten(tag)) return DR_EMIT_DEFAULT;
  instr_t* next = nullptr;
  for (instr_t* instr = instrlist_first_app(block); instr != nullptr; instr = next) {
    next = instr_get_next_app(instr);  // before `instr` goes
    std::uint32_t word = 0;
    std::memcpy(&word, instr_get_raw_bits(instr), sizeof(word));
    if (const decode_handler handler = is_sve(word)) {
      rewrite_instruction(drcontext, block, instr, handler);
    } else {
      ++aarch64_instr_count;
    }
  }
  return DR_EMIT_DEFAULT;
}

// With --architectural, all modules are rewritten.
dr_emit_flags_t event_architectural_block(void* drcontext, void* /*tag*/, instrlist_t* block,
                                          bool /*for_trace*/, bool /*translating*/) {
  aarch64_instr_count += sve::rewrite_architectural(drcontext, block, sve::thread_state(drcontext));
  return DR_EMIT_DEFAULT;
}

dr_emit_flags_t event_block_with_warnings(void* drcontext, void* tag, instrlist_t* block,
                                          bool /*for_trace*/, bool /*translating*/) {
  if (!is_rewritten(tag)) return DR_EMIT_DEFAULT;
  aarch64_instr_count += sve::rewrite_with_warnings(drcontext, block, sve::thread_state(drcontext));
  return DR_EMIT_DEFAULT;
}

// --- Threads -----------------------------------------------------------------------------------

void event_thread_init(void* drcontext) {
  static_assert(alignof(cpu_state) <= 16, "dr_thread_alloc aligns to 16 bytes");
  void* memory = dr_thread_alloc(drcontext, sizeof(cpu_state));
  sve::set_thread_state(drcontext, new (memory) cpu_state{});  // cleared
}

void event_thread_exit(void* drcontext) {
  cpu_state* data = sve::thread_state(drcontext);
  CLIENT_ASSERT(data != nullptr, "data != __null");
  dr_thread_free(drcontext, data, sizeof(cpu_state));
}

void event_architectural_thread_init(void* drcontext) {
  event_thread_init(drcontext);
  sve::begin_architectural_thread(drcontext, sve::thread_state(drcontext));
}

void event_architectural_thread_exit(void* drcontext) {
  sve::end_architectural_thread(drcontext);
  event_thread_exit(drcontext);
}

void event_thread_init_with_warnings(void* drcontext) {
  event_thread_init(drcontext);
  sve::forget_v_writes();
}

thread_local sve::saved_vectors vectors_before_signals;

void event_kernel_transfer(void* drcontext, const dr_kernel_xfer_info_t* info) {
  cpu_state* const state = sve::thread_state(drcontext);
  if (info->type == DR_XFER_SIGNAL_DELIVERY) {
    vectors_before_signals.save(info->target_xsp, *state);
  } else if (info->type == DR_XFER_SIGNAL_RETURN) {
    vectors_before_signals.restore(info->source_mcontext->xsp, *state);
  }
}

void event_kernel_transfer_with_warnings(void* drcontext, const dr_kernel_xfer_info_t* info) {
  event_kernel_transfer(drcontext, info);
  sve::forget_v_writes();
}

// --- Modes -------------------------------------------------------------------------------------

bool start_default() { return true; }

// What the client does in each mode. With --architectural, the host has the vectors in its signal
// frames, so no event needs to keep them.
struct client_mode {
  bool (*start)();
  drmgr_xform_cb_t block;
  void (*thread_init)(void*);
  void (*thread_exit)(void*);
  void (*kernel_transfer)(void*, const dr_kernel_xfer_info_t*);  // or null
};

constexpr client_mode default_mode = {start_default, event_instruction_change, event_thread_init,
                                      event_thread_exit, event_kernel_transfer};
constexpr client_mode architectural_mode = {sve::start_architectural, event_architectural_block,
                                            event_architectural_thread_init,
                                            event_architectural_thread_exit, nullptr};
constexpr client_mode warning_mode = {sve::start_v_write_warnings, event_block_with_warnings,
                                      event_thread_init_with_warnings, event_thread_exit,
                                      event_kernel_transfer_with_warnings};

const client_mode& mode() {
  if (sve::is_architectural()) return architectural_mode;
  return sve::warns_of_v_writes() ? warning_mode : default_mode;
}

// --- Process -----------------------------------------------------------------------------------

void print_report() {
  const char* name = exe != nullptr ? basename(exe->full_path) : "(no main module)";
  std::fprintf(stderr, "%s: %lu SVE instructions executed\n", name, sve_instr_count.load());
  std::fprintf(stderr, "%s: %lu Non-SVE AArch64 instructions executed\n", name,
               aarch64_instr_count.load());
}

void event_exit() {
  dr_log(nullptr, DR_LOG_ALL, 1, "SVE client exiting\n");
  print_report();
  if (exe != nullptr) dr_free_module_data(exe);
  exe = nullptr;
  CLIENT_ASSERT(drmgr_unregister_bb_app2app_event(mode().block), "false");
  CLIENT_ASSERT(drreg_exit() == DRREG_SUCCESS, "false");
  drmgr_exit();
}

// The client has no options: a first argument other than "--" is an error. The rest is ignored.
void scan_arguments(int argc, const char* argv[]) {
  if (argc < 2 || std::strcmp(argv[1], "--") == 0) return;
  dr_fprintf(our_stderr, "Usage error: Unknown option: %s\n", argv[1]);
  dr_abort();
}

void register_events() {
  drmgr_register_thread_init_event(mode().thread_init);
  drmgr_register_thread_exit_event(mode().thread_exit);
  dr_register_exit_event(event_exit);
  CLIENT_ASSERT(drmgr_register_bb_app2app_event(mode().block, nullptr), "false");
}

// The counts must not be locked in a child of fork by a thread that does not exist there.
int hold_counts_across_fork() {
  return pthread_atfork([] { icounts_mutex.lock(); }, [] { icounts_mutex.unlock(); },
                        [] { icounts_mutex.unlock(); });
}

}  // namespace

void dr_client_main(client_id_t /*id*/, int argc, const char* argv[]) {
  dr_set_client_name("Tessaly SVE emulation client", "support@tessaly.example");
  drreg_options_t options{};
  options.struct_size = sizeof(options);
  scan_arguments(argc, argv);
  CLIENT_ASSERT(drmgr_init() && drreg_init(&options) == DRREG_SUCCESS, "false");

  exe = dr_get_main_module();
  if (exe != nullptr) exe_start = exe->start;
  register_events();
  sve::register_thread_state_field();

  sve_instr_count = 0;
  aarch64_instr_count = 0;
  if (mode().kernel_transfer != nullptr) drmgr_register_kernel_xfer_event(mode().kernel_transfer);
  CLIENT_ASSERT(mode().start(), "false");
  [[maybe_unused]] static const int registered = hold_counts_across_fork();
  dr_log(nullptr, DR_LOG_ALL, 1, "SVE client initializing\n");
}
