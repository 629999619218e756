// The application's system calls. Most go to the kernel as they are. The host itself implements
// those that concern what it shares with the application: threads, the program break, signals,
// executable memory. A call that would take the program out of the translator ends it with a
// message.
#pragma once

#include "host/processes/dispatch.h"

namespace host {

// Makes the call that the thread's registers describe, and puts its result into X0.
after_call handle_system_call(thread_state& thread);

}  // namespace host
