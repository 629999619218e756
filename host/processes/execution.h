// execve, under the same launcher and client.
//
// The program that called can handle an error only before the kernel executes the new launcher. So
// the file, the interpreters of scripts and the program's own interpreter are checked here, as the
// launcher will check them. A file for another machine goes to the kernel, which may have a
// binfmt_misc handler for it. The set-user-ID bits and capabilities of a file have no effect, as
// under ptrace, because the kernel executes the launcher.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace host {

struct thread_state;

// How this launcher was started. Programs that the application executes start in the same way.
struct launch_settings {
  std::string launcher;             // absolute
  std::vector<std::string> client;  // its path, absolute, and its arguments
  bool advertise_sve = false;
  bool architectural = false;
  bool warn_v_writes = false;
};
void set_launch_settings(const launch_settings& settings);

// execve and execveat. Returns only if the program cannot be executed: a negative error number, or
// call_not_started.
std::int64_t execute_program(thread_state& thread);

}  // namespace host
