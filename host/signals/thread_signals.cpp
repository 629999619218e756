#include "host/signals/thread_signals.h"

#include "host/threads/thread.h"

namespace host {

void attach_signals(thread_state& thread, signal_actions& actions) {
  if (thread.signals == nullptr) thread.signals = new thread_signals;
  *thread.signals = {.actions = &actions,
                     .pending = {},
                     .client_fault = {},
                     .last_syndrome = 0,
                     .last_fault_address = 0,
                     .blocked_host_signals = 0,
                     .alternate_stack = {},
                     .entry_stack = thread.signals->entry_stack};
}

}  // namespace host
