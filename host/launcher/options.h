// The launcher's command line.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace host {

enum class requested_action { run, show_help, show_version, list_instructions };

struct options {
  requested_action action = requested_action::run;
  // argv for dr_client_main: the client library's path, then its arguments. Empty: our own client.
  std::vector<std::string> client;
  // argv for the program, from the name that the user gave.
  std::vector<std::string> program;
  // The file to run where it is not the one that argv[0] names; empty: it is.
  std::string executable;
  // What the file is called in AT_EXECFN and as the process's name; empty: as `executable`.
  std::string executable_name;
  // An open descriptor on the file that the program is not to inherit, or -1.
  int executable_descriptor = -1;
  bool advertise_sve = false;
};

extern const char* const help_text;

// Reads the command line without argv[0]. Throws launch_error (status usage) if it makes no sense.
options parse_options(std::span<const std::string> arguments);

}  // namespace host
