// Why a program could not be started: the one line that the user sees, and the exit status that a
// shell would give. If the running program has called execve, it gets the error number instead.
#pragma once

#include <cerrno>
#include <stdexcept>
#include <string>

namespace host {

// The same as in env(1) and shells.
enum class exit_status : int {
  usage = 2,              // the command line was not understood
  launcher_failed = 125,  // the launcher itself could not go on
  cannot_run = 126,       // the program is there, but cannot be run
  not_found = 127,        // the program, or an interpreter that it names, is not there
};

class launch_error : public std::runtime_error {
 public:
  // If no error number is given, a file that cannot be run gets ENOEXEC: the kernel does not know
  // its format.
  launch_error(exit_status status, const std::string& message)
      : launch_error(status, message, status == exit_status::not_found ? ENOENT : ENOEXEC) {}
  launch_error(exit_status status, const std::string& message, int error_number)
      : std::runtime_error(message), status_(status), error_number_(error_number) {}

  [[nodiscard]] exit_status status() const { return status_; }
  [[nodiscard]] int error_number() const { return error_number_; }

 private:
  exit_status status_;
  int error_number_;
};

}  // namespace host
