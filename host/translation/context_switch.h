// The routines of context_switch.S.
#pragma once

#include "host/translation/context.h"

extern "C" {
// Runs cache code from a fragment's entry until the cache is left; thread_context::exit
// then says how. All of the application's registers come from the context and go back to it.
void enter_cache(host::thread_context* context, const void* code);

// Leaves the cache from within a call to the client. The context must be complete.
[[noreturn]] void leave_call(host::thread_context* context);

// Not to be called from C++. Cache code and the signal entry jump to these.
void leave_cache_with_record();
void leave_cache();
void call_client();

// Labels in the routines, for the signal entry. From the first up to the second, the context still
// holds all of the application's state, and leave_cache undoes what was done. From the third up to
// the fourth, the client has returned, X19 holds the address where the block continues, and the
// attention word has already been read.
void enter_cache_prepared();
void enter_cache_end();
void call_client_checked();
void call_client_end();

// Called on the way back from the client if the attention word is set. Makes the block at
// `return_address` leave the cache at its end.
void leave_after_call(host::thread_context* context, std::uint64_t return_address);

// The exit record of a thread that the signal entry took out of the cache, or that did not even
// enter it. The context is complete.
extern const host::exit_record interrupted_record;
}
