// Where a thread's cpu_state is found: in a field of the host's per-thread storage, from the
// thread's init event to its exit event.
#pragma once

#include "drmgr.h"
#include "sve/state/cpu_state.h"

// Index of the field, set when the client starts.
inline int tls_idx = -1;

inline cpu_state* thread_state(void* drcontext) {
  return static_cast<cpu_state*>(drmgr_get_tls_field(drcontext, tls_idx));
}
