// Why a program could not be started, for the one line that the user sees, and the exit status that
// a shell would give for it.
#pragma once

#include <stdexcept>
#include <string>

namespace host {

// As env(1) and shells have them.
enum class exit_status : int {
  usage = 2,              // the command line was not understood
  launcher_failed = 125,  // the launcher itself could not go on
  cannot_run = 126,       // the program is there, but cannot be run
  not_found = 127,        // the program, or an interpreter that it names, is not there
};

class launch_error : public std::runtime_error {
 public:
  launch_error(exit_status status, const std::string& message)
      : std::runtime_error(message), status_(status) {}

  [[nodiscard]] exit_status status() const { return status_; }

 private:
  exit_status status_;
};

}  // namespace host
