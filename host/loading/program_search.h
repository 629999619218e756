// Finds the ELF file to run for a name that the user typed: searches PATH as a shell does, and
// follows scripts to their interpreters as the kernel does.
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
  std::optional<std::string> argument;  // the rest of the line, with its inner blanks
};

// The path for `name`: `name` itself if it has a slash, else the first executable file of that name
// in `search_path` (the value of PATH; an empty component is the current directory). Throws
// launch_error.
std::string find_in_path(const std::string& name, std::string_view search_path);

// Reads the "#!" line of a file that begins with `start`. Like the kernel, looks at no more than
// 256 bytes. Nothing if the file is not a script. Throws launch_error if a script has no usable
// interpreter.
std::optional<script_line> read_script_line(const std::string& path, std::string_view start);

// Finds the program for `arguments` (not empty; the first is the program as the user named it).
program_to_run find_program(const std::vector<std::string>& arguments,
                            std::string_view search_path);

// A file that execve is asked to execute. The path and the name differ if the host opens the file
// in another way than the program named it, for example through a descriptor.
struct executable_file {
  std::string path;  // that the host opens
  std::string name;  // for AT_EXECFN, for the process's name, and as a script's own argument
};

// The same for a known file. arguments.front() is only what the program will see as its argv[0].
program_to_run follow_scripts(const executable_file& executable,
                              const std::vector<std::string>& arguments);

}  // namespace host
