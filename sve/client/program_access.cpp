// How a fault gets out of a row's handler: the signal handler makes the thread continue in
// abandon_access, on the same stack. From there everything is ordinary code. It either tells the
// host to raise the signal in the program, or goes back to where the access is tried again.
#include "sve/client/program_access.h"

#include <csignal>
#include <cstring>
#include <new>
#include <ucontext.h>

#include "sve/semantics/memory_access.h"
#include "sve/semantics/probe.h"
#include "tessaly_host.h"

#pragma weak tessaly_raise_fault

namespace sve {
namespace {

[[gnu::tls_model("initial-exec")]] thread_local constinit program_access* current = nullptr;

vector_register& destination(const program_access& access, unsigned i) {
  return access.state->z[(access.changed.first_vector + i) % 32];
}

predicate_register& predicate(const program_access& access) {
  return access.state->p[access.changed.predicate];
}

tessaly_registers_t registers_of(const cpu_state& state) {
  tessaly_registers_t registers{};
  std::memcpy(registers.x, state.x, sizeof registers.x);
  registers.sp = state.sp;
  registers.pc = reinterpret_cast<app_pc>(state.pc);
  registers.nzcv = state.nzcv;
  registers.fpcr = state.fpcr;
  registers.fpsr = state.fpsr;
  for (unsigned n = 0; n < 32; ++n) std::memcpy(registers.v[n], state.z[n], group_bytes);
  return registers;
}

[[noreturn]] void abandon_access() {
  program_access& access = *current;
  access.is_under_way = false;
  access.put_back();
  if (access.retry != nullptr) std::longjmp(*access.retry, 1);  // NOLINT(cert-err52-cpp)
  const tessaly_registers_t before = registers_of(*access.state);
  tessaly_raise_fault(access.drcontext, &before);
}

// Probes and guarded reads come first: they take care of their own faults.
void handle_signal(int signal, siginfo_t* info, void* context) {
  auto& interrupted = *static_cast<ucontext_t*>(context);
  if (signal == SIGSEGV && step_over_probe(interrupted)) return;
  if (SVEFaultRegion == 0 && current != nullptr && current->is_under_way) {
    interrupted.uc_mcontext.pc = reinterpret_cast<std::uintptr_t>(&abandon_access);
  } else {
    SVESigHandler(signal, info, context);
  }
}

}  // namespace

std::uint64_t destinations::packed() const {
  return first_vector | vectors << 8 | static_cast<std::uint64_t>(predicate + 1) << 16;
}

destinations destinations::unpacked(std::uint64_t word) {
  return {.first_vector = static_cast<unsigned>(word & 0xff),
          .vectors = static_cast<unsigned>(word >> 8 & 0xff),
          .predicate = static_cast<int>(word >> 16) - 1};
}

void program_access::keep() {
  for (unsigned i = 0; i < changed.vectors; ++i) {
    std::memcpy(z[i], destination(*this, i), sizeof z[i]);
  }
  if (changed.predicate >= 0) std::memcpy(p, predicate(*this), sizeof p);
}

void program_access::put_back() {
  for (unsigned i = 0; i < changed.vectors; ++i) {
    std::memcpy(destination(*this, i), z[i], sizeof z[i]);
  }
  if (changed.predicate >= 0) std::memcpy(predicate(*this), p, sizeof p);
}

aarch64_decode_rc program_access::run(unsigned word) {
  is_under_way = true;
  const aarch64_decode_rc result = handler(state, word);
  is_under_way = false;
  return result;
}

program_access& current_access() { return *current; }

void begin_program_accesses(void* drcontext, cpu_state* state) {
  static_assert(alignof(program_access) <= 16, "dr_thread_alloc aligns to 16 bytes");
  current = new (dr_thread_alloc(drcontext, sizeof(program_access))) program_access{};
  current->drcontext = drcontext;
  current->state = state;
}

void end_program_accesses(void* drcontext) {
  dr_thread_free(drcontext, current, sizeof(program_access));
  current = nullptr;
}

void deliver_faults_to_program() {
  struct sigaction action = {};
  action.sa_sigaction = handle_signal;
  action.sa_flags = SA_SIGINFO | SA_RESTART | SA_NODEFER;
  sigaction(SIGSEGV, &action, nullptr);
  sigaction(SIGBUS, &action, nullptr);
}

}  // namespace sve
