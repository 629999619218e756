#include "host/launcher/runtime.h"

#include <csignal>
#include <sys/syscall.h>

#include "host/kernel/address.h"
#include "host/kernel/fatal.h"
#include "host/kernel/kernel_call.h"
#include "host/memory/application_memory.h"
#include "host/memory/memory_map.h"
#include "host/memory/own_files.h"
#include "host/memory/program_break.h"
#include "host/processes/dispatch.h"
#include "host/processes/syscalls.h"
#include "host/processes/thread_calls.h"
#include "host/signals/signal_actions.h"
#include "host/signals/signal_delivery.h"
#include "host/signals/signals.h"
#include "host/signals/thread_signals.h"

namespace host {

void initialize(const loaded_program& program) {
  static signal_actions actions;
  set_loaded_modules(program);
  note_loaded_memory(program);
  install_signal_handlers();
  reserve_program_break();
  set_system_call_handler(handle_system_call);
  thread_state* const initial = acquire_thread();
  if (initial == nullptr) fatal("the process is ending before it has begun");
  attach_signals(*initial, actions);
  bind_thread(*initial);
  install_signal_stack(*initial);
}

void run(const loaded_program& program) {
  note_initial_stack(program.stack_pointer);
  thread_state& initial = *current_thread();
  std::uint64_t inherited_mask = 0;
  kernel_call(SYS_rt_sigprocmask, SIG_BLOCK, 0, address_of(&inherited_mask), sizeof inherited_mask);
  set_application_mask(initial, inherited_mask);
  initial.context.pc = program.start_pc;
  initial.context.sp = program.stack_pointer;
  run_thread(initial);
  finish_thread(initial);
  fatal("the initial thread returned from its end");
}

}  // namespace host
