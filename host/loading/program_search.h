// From the name that the user typed to the ELF file that runs: the search in PATH, as a shell has
// it, and scripts that name their interpreter, as the kernel has them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/loading/input_file.h"

namespace host {

// What execve would be asked to start.
struct program_to_run {
  input_file file;                     // the ELF file; a script's last interpreter
  std::string executable_name;         // AT_EXECFN: the path of what the user asked for
  std::vector<std::string> arguments;  // argv of the new program
};

// The interpreter that a script's first line names.
struct script_line {
  std::string interpreter;
  std::optional<std::string> argument;  // all that follows it, inner blanks kept
};

// The path for `name`: itself if it has a slash, else its first executable place in `search_path`
// (the value of PATH; an empty component is the current directory). Throws launch_error.
std::string find_in_path(const std::string& name, std::string_view search_path);

// Reads the "#!" line of a file that begins with `start`, of which the kernel looks at 256 bytes.
// Nothing if it is no script; throws launch_error if it is one without a usable interpreter.
std::optional<script_line> read_script_line(const std::string& path, std::string_view start);

// Finds the program for `arguments` (not empty; the first is the program as the user named it).
program_to_run find_program(const std::vector<std::string>& arguments,
                            std::string_view search_path);

// A file that execve is asked to execute. The two differ where the path is the host's own way to a
// file that the program has named by a descriptor.
struct executable_file {
  std::string path;  // that opens it
  std::string name;  // for AT_EXECFN, for the process's name, and as a script's own argument
};

// The same for a file that is known; arguments.front() is only what the program shall see there.
program_to_run follow_scripts(const executable_file& executable,
                              const std::vector<std::string>& arguments);

}  // namespace host
