// The launcher's command line.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace host {

enum class requested_action { run, show_help, show_version, list_instructions, disassemble };

struct options {
  requested_action action = requested_action::run;
  // argv for dr_client_main: the client library's path, then its arguments. Empty for our own
  // client.
  std::vector<std::string> client;
  // The vector length in bits, as the user wrote it, if the client of that length is to be used.
  std::optional<std::string> vector_length;
  // argv for the program. It starts with the name that the user gave.
  std::vector<std::string> program;
  // The file to run, if it is not the one that argv[0] names; otherwise empty.
  std::string executable;
  // The name of the file in AT_EXECFN and of the process; if empty, `executable` is used.
  std::string executable_name;
  // The instruction words to disassemble.
  std::vector<std::uint32_t> words;
  // A descriptor of the file that the program must not inherit, or -1.
  int executable_descriptor = -1;
  bool advertise_sve = false;
  bool architectural = false;  // implies advertise_sve
  bool warn_v_writes = false;
  bool inherits_vector_length = false;  // PR_SVE_VL_INHERIT of the program that called execve
};

extern const char* const help_text;

// Reads the command line without argv[0]. Throws launch_error (status usage) if it makes no sense.
options parse_options(std::span<const std::string> arguments);

}  // namespace host
