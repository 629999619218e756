#include "host/options.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "host/launch_error.h"

namespace host {
namespace {

[[noreturn]] void usage_error(const std::string& what) {
  throw launch_error(exit_status::usage, what + "; see tessaly --help");
}

struct informational_option {
  std::string_view name;
  requested_action action;
};
constexpr informational_option informational_options[] = {
    {"--help", requested_action::show_help},
    {"--version", requested_action::show_version},
    {"--list-instructions", requested_action::list_instructions},
};

options with_program(std::span<const std::string> program, std::vector<std::string> client = {}) {
  if (program.empty()) usage_error("no program given after --");
  return {requested_action::run, std::move(client), {program.begin(), program.end()}};
}

options with_client(std::span<const std::string> arguments) {
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  if (end == arguments.begin()) usage_error("-c needs the path of a client library");
  if (end == arguments.end()) usage_error("-c needs -- between the client and the program");
  const auto client_size = static_cast<std::size_t>(end - arguments.begin());
  return with_program(arguments.subspan(client_size + 1), {arguments.begin(), end});
}

}  // namespace

const char* const help_text =
    R"(Usage: tessaly PROGRAM [ARGS]
       tessaly [-c CLIENT.so [CLIENT ARGS]] -- PROGRAM [ARGS]

Runs an AArch64 Linux program that was built for SVE on a processor that has none. PROGRAM is
searched in PATH if it has no slash. At exit two lines on standard error tell how many SVE and
other instructions were met.

  -c CLIENT.so         load this client library instead of libsve_client.so
  --list-instructions  list the instruction forms that are known, and what serves each
  --help               show this text
  --version            show the version

The exit status is PROGRAM's own; if a signal kills PROGRAM, it kills tessaly. Otherwise:
    2  the command line is wrong
  125  tessaly itself failed, or the client library cannot be used
  126  PROGRAM cannot be executed, or is not for AArch64
  127  PROGRAM, or an interpreter that it names, was not found
)";

options parse_options(std::span<const std::string> arguments) {
  if (arguments.empty()) usage_error("no program given");
  const std::string& first = arguments.front();
  for (const informational_option& option : informational_options) {
    if (first != option.name) continue;
    if (arguments.size() > 1) usage_error(first + " takes no further arguments");
    return {option.action, {}, {}};
  }
  if (first == "-c") return with_client(arguments.subspan(1));
  if (first == "--") return with_program(arguments.subspan(1));
  if (first.starts_with("-")) usage_error("unknown option " + first);
  return with_program(arguments);
}

}  // namespace host
