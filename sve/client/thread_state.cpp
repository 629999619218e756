#include "sve/client/thread_state.h"

#include "drmgr.h"

namespace {

// Index of the field.
int tls_idx = -1;

}  // namespace

namespace sve {

void register_thread_state_field() { tls_idx = drmgr_register_tls_field(); }

cpu_state* thread_state(void* drcontext) {
  return static_cast<cpu_state*>(drmgr_get_tls_field(drcontext, tls_idx));
}

void set_thread_state(void* drcontext, cpu_state* state) {
  drmgr_set_tls_field(drcontext, tls_idx, state);
}

}  // namespace sve
