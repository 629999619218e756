#include "host/loading/program_search.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "host/loading/launch_error.h"

namespace host {
namespace {

constexpr std::size_t script_line_limit = 256;  // the kernel's BINPRM_BUF_SIZE
constexpr int nesting_limit = 5;                // scripts whose interpreter is again a script
constexpr std::string_view blanks = " \t";

std::string_view as_text(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string_view trim(std::string_view text) {
  const auto first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

[[noreturn]] void bad_script(const std::string& path, const std::string& what) {
  throw launch_error(exit_status::cannot_run, path + ": a script whose first line " + what +
                                                  "; it must be #! and the path of an interpreter");
}

// The text after "#!". If the kernel's buffer cuts off the line, part of the argument may be lost,
// but no part of the interpreter's path.
std::string_view first_line(const std::string& path, std::string_view start) {
  constexpr std::string_view path_ends{" \t\0", 3};
  start = start.substr(0, script_line_limit);
  std::size_t end = start.find('\n');
  if (end == std::string_view::npos && start.size() == script_line_limit) {
    const std::size_t interpreter = start.find_first_not_of(blanks, 2);
    if (start.find_first_of(path_ends, interpreter) == std::string_view::npos) {
      bad_script(path, "is too long");
    }
    end = script_line_limit - 1;
  }
  const std::string_view line = start.substr(2, std::min(end, start.size()) - 2);
  return line.substr(0, line.find('\0'));
}

// The arguments of a script's interpreter: its path, its own argument, the script, and the user's
// arguments after the script's name.
std::vector<std::string> interpreter_arguments(const script_line& line, const std::string& script,
                                               const std::vector<std::string>& arguments) {
  std::vector<std::string> result{line.interpreter};
  if (line.argument) result.push_back(*line.argument);
  result.push_back(script);
  result.insert(result.end(), arguments.begin() + 1, arguments.end());
  return result;
}

}  // namespace

std::string find_in_path(const std::string& name, std::string_view search_path) {
  if (name.empty() || name.find('/') != std::string::npos) return name;
  std::string unusable;
  for (std::size_t start = 0; start <= search_path.size();) {
    const std::size_t end = std::min(search_path.find(':', start), search_path.size());
    std::string path(search_path.substr(start, end - start));
    if (!path.empty()) path += '/';
    path += name;
    const int error = execution_error(path);
    if (error == 0) return path;
    if (error != ENOENT && error != ENOTDIR && unusable.empty()) unusable = path;
    start = end + 1;
  }
  if (!unusable.empty()) return unusable;  // opening it shows what is wrong with it
  throw launch_error(exit_status::not_found,
                     name + ": not found in PATH; a program elsewhere needs a path with a slash");
}

std::optional<script_line> read_script_line(const std::string& path, std::string_view start) {
  if (!start.starts_with("#!")) return std::nullopt;
  const std::string_view content = trim(first_line(path, start));
  if (content.empty()) bad_script(path, "names no interpreter");
  const std::size_t path_end = std::min(content.find_first_of(blanks), content.size());
  script_line result{std::string(content.substr(0, path_end)), std::nullopt};
  const std::string_view argument = trim(content.substr(path_end));
  if (!argument.empty()) result.argument = std::string(argument);
  return result;
}

program_to_run find_program(const std::vector<std::string>& arguments,
                            std::string_view search_path) {
  const std::string name = find_in_path(arguments.front(), search_path);
  return follow_scripts({name, name}, arguments);
}

program_to_run follow_scripts(const executable_file& executable,
                              const std::vector<std::string>& arguments) {
  program_to_run program{input_file(executable.path), executable.name, arguments};
  std::string name = executable.name;  // of the file that is looked at
  for (int depth = 0;; ++depth) {
    const auto line = read_script_line(name, as_text(program.file.bytes()));
    if (!line) return program;
    if (depth == nesting_limit) {
      throw launch_error(exit_status::cannot_run,
                         executable.name + ": scripts that interpret scripts more than " +
                             std::to_string(nesting_limit) + " deep; shorten the chain",
                         ELOOP);
    }
    program = {input_file(line->interpreter, name + ": interpreter "), executable.name,
               interpreter_arguments(*line, name, program.arguments)};
    name = line->interpreter;
  }
}

}  // namespace host
