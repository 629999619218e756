// Where to find a thread's cpu_state: in a field of the host's per-thread storage, from the
// thread's init event to its exit event.
#pragma once

#include "sve/state/cpu_state.h"

namespace sve {

// Takes a field from the host. Call it once, when the client starts.
void register_thread_state_field();

cpu_state* thread_state(void* drcontext);
void set_thread_state(void* drcontext, cpu_state* state);

}  // namespace sve
