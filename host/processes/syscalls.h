// The application's system calls. Most go to the kernel as they are; those that concern what the
// host shares with the application (threads, the break, signals, executable memory) are carried
// out here, and those that would take the program out of the translator end it with a message.
#pragma once

#include "host/processes/dispatch.h"

namespace host {

// Carries out the call that the thread's registers describe, and leaves its result in X0.
after_call handle_system_call(thread_state& thread);

}  // namespace host
