// What this host offers to a client beyond DynamoRIO's interface. On a host that lacks these
// functions, a client that declares them weak can still be loaded.
#pragma once

#include "host/include/dr_api.h"

// The user's wishes. They do not change while the program runs.

// --architectural: the program is to see everything that a processor with SVE shows.
DR_EXPORT bool tessaly_is_architectural();
// --warn-v-writes: the user wants to know if the program's results may differ from a processor's
// because a write of a V register left the rest of the Z register as it was.
DR_EXPORT bool tessaly_warns_of_v_writes();

// --- The vector state in signal frames ---------------------------------------------------------

// The functions by which the host puts the client's vector state into a signal frame and takes it
// from there. They run on the thread concerned. The bytes are those of the kernel's sve_context
// behind its header: Z0 to Z31, P0 to P15 and the FFR, for `vector_bytes`. The low 16 bytes of the
// Z registers are the host's business, since they are the V registers.
struct tessaly_vector_state_t {
  uint vector_bytes;
  // Whether the thread has executed an SVE instruction since it began or since its last system
  // call. If not, everything but the V registers is 0.
  bool (*is_live)(void* drcontext);
  void (*save)(void* drcontext, byte* to);
  // `from` is null if the thread is to have no live state.
  void (*restore)(void* drcontext, const byte* from);
};

// Call it once, before the program runs. Without it, signal frames have no sve_context.
DR_EXPORT void tessaly_set_vector_state(const tessaly_vector_state_t* functions);

// --- Faults of emulated instructions -------------------------------------------------------------

// The application's registers. X28 is the application's own.
struct tessaly_registers_t {
  reg_t x[31];
  reg_t sp;
  app_pc pc;
  reg_t nzcv;
  reg_t fpcr;
  reg_t fpsr;
  byte v[32][16];
};

// Raises the signal of the calling thread's last fault in the client's code as if the application's
// instruction at `before->pc` had faulted, and leaves the inserted call for good. The client's
// fault handler must have returned before. `before` holds the registers before that instruction.
DR_EXPORT void tessaly_raise_fault(void* drcontext, const tessaly_registers_t* before)
    __attribute__((noreturn));
