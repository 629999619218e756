// A client that replaces UDF #0x5e00 to #0x5e0f as the SVE client replaces an instruction, but by a
// call of its own emulate_instruction. What that does depends on the last digit of the word;
// programs/replaced.cpp tells.
#include <cerrno>
#include <csetjmp>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "host/include/drmgr.h"
#include "sve/client/emulate.h"
#include "sve/client/transfer.h"

namespace {

volatile int* volatile unmapped = nullptr;
thread_local cpu_state state;
thread_local sigjmp_buf recovery;
thread_local volatile sig_atomic_t recovering = 0;

reg_t fpcr_and_fpsr() {
  reg_t fpcr = 0;
  reg_t fpsr = 0;
  asm volatile("mrs %0, fpcr\n\tmrs %1, fpsr" : "=r"(fpcr), "=r"(fpsr));
  return fpcr << 32 | fpsr;
}

void recover_from_fault() {
  recovering = 1;
  if (sigsetjmp(recovery, 1) == 0) *unmapped = 1;
  recovering = 0;
}

bool is_marker(uint word) { return (word & 0xfffffff0) == 0x5e00; }

dr_emit_flags_t on_block(void* drcontext, void*, instrlist_t* block, bool, bool) {
  instr_t* next = nullptr;
  for (instr_t* i = instrlist_first_app(block); i != nullptr; i = next) {
    next = instr_get_next_app(i);
    uint word = 0;
    std::memcpy(&word, instr_get_raw_bits(i), sizeof word);
    if (!is_marker(word)) continue;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a constant to be passed through
    const auto constant = reinterpret_cast<decode_handler>(0x1234567890);
    sve::insert_emulation(drcontext, block, i, &state, constant);
    instrlist_remove(block, i);
    instr_destroy(drcontext, i);
  }
  return DR_EMIT_DEFAULT;
}

void on_fault(int signal, siginfo_t*, void*) {
  if (recovering != 0) siglongjmp(recovery, 1);
  struct sigaction action = {};
  action.sa_handler = SIG_DFL;
  sigaction(signal, &action, nullptr);
  std::fprintf(stderr, "the client saw signal %d\n", signal);
}

}  // namespace

void emulate_instruction(unsigned word, unsigned char* pc, decode_handler constant) {
  const reg_t modes = fpcr_and_fpsr();
  errno = 5;  // the host's own, not the application's
  state.x[0] = modes;
  state.x[1] = reinterpret_cast<reg_t>(pc);
  state.x[2] = reinterpret_cast<reg_t>(constant);
  if (word % 16 == 1) recover_from_fault();
  if (word % 16 == 2) *unmapped = 1;
}

DR_EXPORT int _USES_DR_VERSION_;
int _USES_DR_VERSION_ = 602;

DR_EXPORT void dr_client_main(client_id_t, int, const char**) {
  struct sigaction action = {};
  action.sa_sigaction = on_fault;
  action.sa_flags = SA_SIGINFO | SA_RESTART | SA_NODEFER;
  sigaction(SIGSEGV, &action, nullptr);
  sigaction(SIGBUS, &action, nullptr);
  drmgr_register_bb_app2app_event(on_block, nullptr);
}
