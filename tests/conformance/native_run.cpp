#include "tests/conformance/native_run.h"

#include <csetjmp>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/auxv.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <ucontext.h>

#include "fp_registers.h"
#include "sve/decode/sve_utils.h"

extern "C" {
// Shared with native_run.S, which reaches the first four fields by offset.
struct native_context_record {
  std::uint64_t host_sp;
  std::uint64_t host_tpidr;
  std::uint64_t host_fpcr;
  conformance::machine_image* after;
};

native_context_record native_context;

void run_natively(const conformance::machine_image* before, conformance::machine_image* after,
                  const void* stub);
void native_return();
void native_leave();
}

namespace conformance {
namespace {

constexpr std::size_t stub_words = 3;
constexpr std::uint32_t ldp_x0_x1_x0 = 0xa9400400;  // ldp x0, x1, [x0]
constexpr std::uint32_t branch = 0x14000000;        // b

// The code page is in the program's own image, so that a branch, which reaches 128 MB, reaches
// native_return. Its alignment is the size of AArch64's largest page.
constexpr std::size_t code_bytes = 65536;
alignas(code_bytes) std::uint32_t code_page[code_bytes / 4];
static_assert(max_prepared * stub_words <= sizeof code_page / 4);

enum class running : int { neither, native, emulation };
volatile running now_running = running::neither;
volatile int raised_signal;
volatile std::uint64_t raised_address;
std::uint64_t expected_pc;
sigjmp_buf emulation_stopped;

void reinstate_default(int signal) {
  struct sigaction action {};
  action.sa_handler = SIG_DFL;
  sigaction(signal, &action, nullptr);
}

// The native instruction may have run with any value in TPIDR_EL0. The handler restores it first,
// and must not access thread-local storage before that.
void on_signal(int signal, siginfo_t* info, void* context) {
  auto& machine = static_cast<ucontext_t*>(context)->uc_mcontext;
  const running what = now_running;
  if (what == running::native) asm volatile("msr tpidr_el0, %0" : : "r"(native_context.host_tpidr));
  raised_signal = signal;
  raised_address = machine.fault_address;
  if (signal != SIGILL) raised_address = reinterpret_cast<std::uint64_t>(info->si_addr);
  if (what == running::native && machine.pc == expected_pc) {
    machine.pc = reinterpret_cast<std::uint64_t>(&native_leave);
  } else if (what == running::emulation) {
    siglongjmp(emulation_stopped, 1);
  } else {
    reinstate_default(signal);  // a fault of this program itself repeats and ends it
  }
}

void take_signals() {
  static char stack[65536 + 65536];
  const stack_t alternate{.ss_sp = stack, .ss_flags = 0, .ss_size = sizeof stack};
  struct sigaction action {};
  action.sa_sigaction = on_signal;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
  bool ok = sigaltstack(&alternate, nullptr) == 0;
  for (const int signal : {SIGILL, SIGSEGV, SIGBUS})
    ok = ok && sigaction(signal, &action, nullptr) == 0;
  if (ok) return;
  std::perror("conformance: cannot take over signals");
  std::exit(2);
}

void require_vector_length() {
  if ((getauxval(AT_HWCAP) & HWCAP_SVE) == 0) {
    std::fprintf(stderr,
                 "conformance: this processor has no SVE. Run the test under "
                 "qemu-aarch64 -cpu max,sve-default-vector-length=%u\n",
                 sve::vector_bytes);
    std::exit(2);
  }
  const int length = prctl(PR_SVE_GET_VL) & PR_SVE_VL_LEN_MASK;
  if (length == static_cast<int>(sve::vector_bytes)) return;
  std::fprintf(stderr,
               "conformance: the processor's vectors have %d bytes, but this build's have %u. Run "
               "the test under qemu-aarch64 -cpu max,sve-default-vector-length=%u\n",
               length, sve::vector_bytes, sve::vector_bytes);
  std::exit(2);
}

std::uint32_t branch_to_return(const std::uint32_t* from) {
  const auto distance =
      reinterpret_cast<std::intptr_t>(&native_return) - reinterpret_cast<std::intptr_t>(from);
  return branch | (static_cast<std::uint32_t>(distance >> 2) & 0x03ffffff);
}

}  // namespace

void start_native_runs() {
  require_vector_length();
  take_signals();
  if (mprotect(code_page, sizeof code_page, PROT_READ | PROT_WRITE | PROT_EXEC) == 0) return;
  std::perror("conformance: cannot make the code page executable");
  std::exit(2);
}

void prepare(std::span<const std::uint32_t> words) {
  std::uint32_t* code = code_page;
  for (const std::uint32_t word : words) {
    *code++ = ldp_x0_x1_x0;
    *code++ = word;
    *code = branch_to_return(code);
    ++code;
  }
  __builtin___clear_cache(reinterpret_cast<char*>(code_page), reinterpret_cast<char*>(code));
}

run_outcome run_native(std::size_t index, const machine_image& before, machine_image& after) {
  const std::uint32_t* stub = code_page + index * stub_words;
  expected_pc = reinterpret_cast<std::uint64_t>(stub + 1);
  raised_signal = 0;
  raised_address = 0;
  now_running = running::native;
  run_natively(&before, &after, stub);
  now_running = running::neither;
  return {raised_signal, raised_address};
}

emulated_outcome run_emulated(std::uint32_t word, cpu_state& state) {
  static std::uint32_t program[2];  // one address for all words keeps the statistics small
  program[0] = word;
  state.pc = program;
  raised_signal = 0;
  raised_address = 0;
  emulated_outcome outcome;
  {
    const fp_registers_of scope(state);
    if (sigsetjmp(emulation_stopped, 0) == 0) {
      now_running = running::emulation;
      outcome.rc = execute_sve_instruction(&state);
    }
  }
  now_running = running::neither;
  outcome.signal = raised_signal;
  outcome.fault_address = raised_address;
  outcome.pc_advance = state.pc - program;
  return outcome;
}

}  // namespace conformance
