// The host's interface to a client, second part: thread and block events, and per-thread fields.
#pragma once

#include "host/include/dr_api.h"

struct drmgr_priority_t {
  std::size_t struct_size;
  const char* name;
  const char* before;
  const char* after;
  int priority;
};

// Called for each block before it is emitted, on the thread that will run it, with its context, the
// block's tag (see dr_fragment_app_pc), its list, and two flags that this host always passes false.
// The list holds every instruction of the block; a branch or SVC can only be its last.
using drmgr_xform_cb_t = dr_emit_flags_t (*)(void* drcontext, void* tag, instrlist_t* bb,
                                             bool for_trace, bool translating);

DR_EXPORT bool drmgr_init();
DR_EXPORT void drmgr_exit();
DR_EXPORT bool drmgr_register_thread_init_event(void (*func)(void* drcontext));
DR_EXPORT bool drmgr_register_thread_exit_event(void (*func)(void* drcontext));
// Events run in the order of their registration. `priority` is ignored and may be null.
DR_EXPORT bool drmgr_register_bb_app2app_event(drmgr_xform_cb_t func, drmgr_priority_t* priority);
DR_EXPORT bool drmgr_unregister_bb_app2app_event(drmgr_xform_cb_t func);

// Called on a thread whose application state the kernel is about to change. In signal delivery,
// this is before the handler's first block, and the frame is at target_xsp. In rt_sigreturn, this
// is before the block where the thread goes on, and the frame is at the source's xsp.
DR_EXPORT bool drmgr_register_kernel_xfer_event(void (*func)(void* drcontext,
                                                             const dr_kernel_xfer_info_t* info));
DR_EXPORT bool drmgr_unregister_kernel_xfer_event(void (*func)(void* drcontext,
                                                               const dr_kernel_xfer_info_t* info));

// Called on a thread whose application has faulted, before the signal reaches the application. In
// this host the state is already the application's: the event is for what a client keeps of it.
// `restore_memory` is always true, and the result is ignored.
DR_EXPORT bool drmgr_register_restore_state_ex_event(bool (*func)(void* drcontext,
                                                                  bool restore_memory,
                                                                  dr_restore_state_info_t* info));
DR_EXPORT bool drmgr_unregister_restore_state_ex_event(bool (*func)(void* drcontext,
                                                                    bool restore_memory,
                                                                    dr_restore_state_info_t* info));

// Returns the index of a field that every thread has, null at first, or -1 if all 16 are taken.
DR_EXPORT int drmgr_register_tls_field();
DR_EXPORT bool drmgr_unregister_tls_field(int index);
DR_EXPORT void* drmgr_get_tls_field(void* drcontext, int index);
DR_EXPORT bool drmgr_set_tls_field(void* drcontext, int index, void* value);
