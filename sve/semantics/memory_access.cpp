// The guard covers two reads of single bytes, not the access to the element itself. Those reads
// have no effect but the fault, so they can be abandoned wherever it interrupts them. The probe is
// recognised by the address of its instruction.
#include "sve/semantics/memory_access.h"

#include <cstdio>

#include "sve/semantics/probe.h"
#include "sve/state/guest_memory.h"

[[gnu::tls_model("initial-exec")]] thread_local constinit volatile std::int32_t SVEFaultRegion = 0;
[[gnu::tls_model("initial-exec")]] thread_local constinit sigjmp_buf sveFaultJB = {};

CpuContext cpu_ctxt;
CpuContext* ctxt = nullptr;

namespace {

constexpr int action_flags = SA_SIGINFO | SA_RESTART | SA_NODEFER;
static_assert(action_flags == 0x50000004, "the flags of the kernel's interface");

bool SVELibInitialized = false;

// SIGSEGV and SIGBUS are the signals that a failed access to guest memory raises.
void set_actions(struct sigaction action) {
  sigemptyset(&action.sa_mask);
  action.sa_flags = action_flags;
  sigaction(SIGSEGV, &action, nullptr);
  sigaction(SIGBUS, &action, nullptr);
}

// The fault jumps back into this function, so its locals must not change after sigsetjmp.
template <class T>
std::uint64_t read(std::uint64_t address, bool* fault) {
  if (fault == nullptr) return sve::read_guest<T>(address);
  if (sigsetjmp(sveFaultJB, 1) != 0) {  // NOLINT(cert-err52-cpp): a fault cannot throw
    *fault = true;
    return 0;
  }
  SVEFaultRegion = 1;
  [[maybe_unused]] volatile std::uint8_t touched = sve::read_guest<std::uint8_t>(address);
  touched = sve::read_guest<std::uint8_t>(address + sizeof(T) - 1);
  SVEFaultRegion = 0;
  return sve::read_guest<T>(address);
}

}  // namespace

bool SVEInitialize() {
  if (SVELibInitialized) return true;
  cpu_ctxt.vl = 2;
  ctxt = &cpu_ctxt;
  struct sigaction action = {};
  action.sa_sigaction = SVESigHandler;
  set_actions(action);
  SVELibInitialized = true;
  return true;
}

void SVESigHandler(int signal_number, siginfo_t* /*info*/, void* context) {
  // This comes first, since it needs no thread-local storage.
  if (signal_number == SIGSEGV && context != nullptr &&
      sve::step_over_probe(*static_cast<ucontext_t*>(context))) {
    return;
  }
  if (SVEFaultRegion != 0) {
    SVEFaultRegion = 0;
    siglongjmp(sveFaultJB, 1);  // NOLINT(cert-err52-cpp): leaves a signal handler
  }
  // The process is about to end, and this message is its only trace. It is printed before the
  // default actions are restored: under those, the next probe or guarded read of another thread
  // ends the process.
  std::fprintf(stderr,
               "velox's SVESigHandler caught signal %s from the process being emulated, passing it "
               "to the default signal handler.\n",
               signal_number == SIGSEGV ? "SIGSEGV" : "SIGBUS");
  std::fflush(stderr);
  struct sigaction action = {};
  action.sa_handler = SIG_DFL;
  set_actions(action);
}

std::uint64_t ReadMemLib1(std::uint64_t address, int /*hint*/, bool* fault, CpuContext* /*ctx*/) {
  return read<std::uint8_t>(address, fault);
}
std::uint64_t ReadMemLib2(std::uint64_t address, int /*hint*/, bool* fault, CpuContext* /*ctx*/) {
  return read<std::uint16_t>(address, fault);
}
std::uint64_t ReadMemLib4(std::uint64_t address, int /*hint*/, bool* fault, CpuContext* /*ctx*/) {
  return read<std::uint32_t>(address, fault);
}
std::uint64_t ReadMemLib8(std::uint64_t address, int /*hint*/, bool* fault, CpuContext* /*ctx*/) {
  return read<std::uint64_t>(address, fault);
}

template <>
bool addr_is_readable<char>(volatile char* address) {
  return sve_probe(address) != 0;
}

void WriteMemLib1(std::uint8_t value, std::uint64_t address, CpuContext* /*ctx*/) {
  sve::write_guest(address, value);
}
void WriteMemLib2(std::uint16_t value, std::uint64_t address, CpuContext* /*ctx*/) {
  sve::write_guest(address, value);
}
void WriteMemLib4(std::uint32_t value, std::uint64_t address, CpuContext* /*ctx*/) {
  sve::write_guest(address, value);
}
void WriteMemLib8(std::uint64_t value, std::uint64_t address, CpuContext* /*ctx*/) {
  sve::write_guest(address, value);
}

std::uint64_t ReadMem(std::uint64_t address, int size, int hint, bool* fault, CpuContext* ctx) {
  return ReadMemSim(address, size, hint, fault, false, ctx);
}

std::uint64_t ReadMemSim(std::uint64_t /*address*/, int /*size*/, int /*hint*/, bool* fault,
                         bool /*unread*/, CpuContext* /*ctx*/) {
  if (fault != nullptr) *fault = false;
  return 0;
}

void WriteMem(std::uint64_t /*value*/, std::uint64_t /*address*/, int /*size*/,
              CpuContext* /*ctx*/) {}

void WriteMemSim(std::uint64_t /*value*/, std::uint64_t /*address*/, int /*size*/, bool /*unread*/,
                 CpuContext* /*ctx*/) {}
