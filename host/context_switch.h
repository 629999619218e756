// The routines of context_switch.S.
#pragma once

#include "host/context.h"

extern "C" {
// Runs cache code, which must start with entry_word, until the cache is left; thread_context::exit
// then tells how. All of the application's registers come from the context and go back to it.
void enter_cache(host::thread_context* context, const void* code);

// Not to be called from C++: places where cache code and the signal entry go on.
void leave_cache_with_record();
void leave_cache();
void call_client();

// The exit record of a thread that was stopped.
extern const host::exit_record stop_record;
}
