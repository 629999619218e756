// A fault in the client's code can be one of the application: the client carries out an instruction
// of the application and touches its memory.
#include <algorithm>
#include <cstring>

#include "host/include/tessaly_host.h"
#include "host/kernel/address.h"
#include "host/signals/thread_signals.h"
#include "host/threads/thread.h"
#include "host/translation/context_switch.h"

namespace host {
namespace {

void take_registers(const tessaly_registers_t& from, thread_context& to) {
  std::ranges::copy(from.x, to.x);
  to.sp = from.sp;
  to.pc = address_of(from.pc);
  to.nzcv = from.nzcv;
  to.fpcr = from.fpcr;
  to.fpsr = from.fpsr;
  static_assert(sizeof to.q == sizeof from.v, "the V registers are the context's Q registers");
  std::memcpy(to.q, from.v, sizeof to.q);
}

}  // namespace
}  // namespace host

// The inserted call has put TPIDR_EL0 into the context. Everything else comes from the client.
void tessaly_raise_fault(void* drcontext, const tessaly_registers_t* before) {
  auto& thread = *static_cast<host::thread_state*>(drcontext);
  host::take_registers(*before, thread.context);
  thread.signals->pending.fault = thread.signals->client_fault;
  thread.context.attention = 1;
  leave_call(&thread.context);
}
