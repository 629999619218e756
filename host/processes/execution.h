// execve, under the same launcher and client.
//
// What can fail shall fail here, in the program that called: the file, its scripts' interpreters
// and its own interpreter are looked at as the launcher will look at them. A file that is not for
// this machine is the kernel's to judge, or a binfmt_misc handler's. Set-user-ID and capabilities
// of a file have no effect, as under ptrace: the kernel executes the launcher.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace host {

struct thread_state;

// How this launcher was started, for programs that the application executes.
struct launch_settings {
  std::string launcher;             // absolute
  std::vector<std::string> client;  // its path, absolute, and its arguments
  bool advertise_sve = false;
};
void set_launch_settings(const launch_settings& settings);

// Both calls. Returns only if the program cannot be executed: a negative error number, or
// call_not_started.
std::int64_t execute_program(thread_state& thread);

}  // namespace host
