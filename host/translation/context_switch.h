// The routines of context_switch.S.
#pragma once

#include "host/translation/context.h"

extern "C" {
// Runs cache code from a fragment's entry until the cache is left; thread_context::exit
// then tells how. All of the application's registers come from the context and go back to it.
void enter_cache(host::thread_context* context, const void* code);

// Not to be called from C++: places where cache code and the signal entry go on.
void leave_cache_with_record();
void leave_cache();
void call_client();

// Places in the routines, for the signal entry. From the first to before the second, the context
// still holds all of the application's state, and leave_cache undoes what was done. From the third
// to before the fourth the client has returned, X19 is where the block goes on, and the context's
// attention word is not looked at any more.
void enter_cache_prepared();
void enter_cache_end();
void call_client_checked();
void call_client_end();

// Called on the way back from the client if the context asks for attention: the block at
// `return_address` is to leave the cache at its end.
void leave_after_call(host::thread_context* context, std::uint64_t return_address);

// How the cache was left where the signal entry took the thread out of it, or it was not even
// entered; the context is complete.
extern const host::exit_record interrupted_record;
}
