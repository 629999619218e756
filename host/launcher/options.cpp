#include "host/launcher/options.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include "host/loading/launch_error.h"
#include "host/loading/option_names.h"

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
constexpr std::string_view disassemble_option = "--disassemble";

// Reads the words of the command line from the left.
class command_line {
 public:
  explicit command_line(std::span<const std::string> words) : rest_(words) {}

  options read() {
    if (rest_.empty()) usage_error("no program given");
    if (const auto action = information_asked_for()) {
      chosen_.action = *action;
      return std::move(chosen_);
    }
    if (rest_.front() == disassemble_option) {
      read_words();
      return std::move(chosen_);
    }
    while (!rest_.empty() && rest_.front().starts_with("-") && !at_end_) read_option();
    if (rest_.empty()) usage_error(at_end_ ? "no program given after --" : "no program given");
    if (chosen_.vector_length && !chosen_.client.empty()) {
      usage_error("--vl and -c each choose a client library; use only one of them");
    }
    chosen_.program = {rest_.begin(), rest_.end()};
    return std::move(chosen_);
  }

 private:
  std::string take() {
    std::string word = rest_.front();
    rest_ = rest_.subspan(1);
    return word;
  }

  [[nodiscard]] std::optional<requested_action> information_asked_for() const {
    for (const informational_option& option : informational_options) {
      if (rest_.front() != option.name) continue;
      if (rest_.size() > 1) usage_error(rest_.front() + " takes no further arguments");
      return option.action;
    }
    return std::nullopt;
  }

  void read_words() {
    chosen_.action = requested_action::disassemble;
    take();
    if (rest_.empty()) usage_error("--disassemble needs an instruction word, such as 04a20020");
    for (const std::string& text : rest_) chosen_.words.push_back(instruction_word(text));
  }

  static std::uint32_t instruction_word(const std::string& text) {
    const std::string digits = text.starts_with("0x") ? text.substr(2) : text;
    std::uint32_t word = 0;
    const char* const end = digits.data() + digits.size();
    const auto [parsed_to, error] = std::from_chars(digits.data(), end, word, 16);
    if (error != std::errc() || parsed_to != end) {
      usage_error("--disassemble needs words of 32 bits in hexadecimal, not \"" + text + "\"");
    }
    return word;
  }

  std::string value_of(const std::string& option) {
    if (rest_.empty()) usage_error(option + " needs a value");
    return take();
  }

  void read_option() {
    const std::string option = take();
    if (option == "--") {
      at_end_ = true;
    } else if (option == option_name::client) {
      read_client();
    } else if (option == "--vl") {
      chosen_.vector_length = value_of(option);
    } else if (option == option_name::advertise_sve) {
      chosen_.advertise_sve = true;
    } else if (option == option_name::architectural) {
      chosen_.architectural = chosen_.advertise_sve = true;
    } else if (option == option_name::warn_v_writes) {
      chosen_.warn_v_writes = true;
    } else if (option == option_name::inherits_vector_length) {
      chosen_.inherits_vector_length = true;
    } else if (option == option_name::executable) {
      chosen_.executable = value_of(option);
    } else if (option == option_name::executable_name) {
      chosen_.executable_name = value_of(option);
    } else if (option == option_name::executable_descriptor) {
      chosen_.executable_descriptor = number(option, value_of(option));
    } else {
      usage_error("unknown option " + option);
    }
  }

  static int number(const std::string& option, const std::string& text) {
    int value = 0;
    const char* const end = text.data() + text.size();
    const auto [parsed_to, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || parsed_to != end || value < 0) {
      usage_error(option + " needs a number, not " + text);
    }
    return value;
  }

  void read_client() {
    const auto end = std::find(rest_.begin(), rest_.end(), "--");
    if (end == rest_.begin()) usage_error("-c needs the path of a client library");
    if (end == rest_.end()) usage_error("-c needs -- between the client and the program");
    chosen_.client = {rest_.begin(), end};
    rest_ = rest_.subspan(static_cast<std::size_t>(end - rest_.begin()) + 1);
    at_end_ = true;
  }

  std::span<const std::string> rest_;
  options chosen_;
  bool at_end_ = false;  // of the options
};

}  // namespace

const char* const help_text =
    R"(Usage: tessaly [OPTIONS] PROGRAM [ARGS]
       tessaly [OPTIONS] [-c CLIENT.so [CLIENT ARGS]] -- PROGRAM [ARGS]

Runs an AArch64 Linux program that was built for SVE on a processor that has none. PROGRAM is
searched in PATH if it has no slash. At exit two lines on standard error tell how many SVE and
other instructions were met. Programs that PROGRAM executes run in the same way.

  -c CLIENT.so         load this client library instead of libsve_client.so
  --vl BITS            emulate vectors of BITS bits, by the client library for that length
  --advertise-sve      tell PROGRAM that the processor has SVE (AT_HWCAP, prctl, /proc/cpuinfo)
  --architectural      show PROGRAM all that a processor with SVE shows; needed for SVE in shared
                       libraries, for programs of Clang 22, and for programs that handle SIGSEGV
                       or SIGBUS of SVE instructions; implies --advertise-sve, and is slower
  --warn-v-writes      say once if PROGRAM writes a V register and an SVE instruction then reads
                       all of the Z register; its result may be wrong without --architectural
  --executable FILE    run FILE; PROGRAM is only what it finds as argv[0]
  --list-instructions  list the instruction forms that are known: pattern, what serves each, name,
                       syntax
  --disassemble WORD...
                       print what each instruction word means, and what serves it; words are in
                       hexadecimal
  --help               show this text
  --version            show the version
  --executable-name, --executable-descriptor, --inherits-vector-length
                       used by tessaly itself when PROGRAM calls execve

The exit status is PROGRAM's own; if a signal kills PROGRAM, it kills tessaly. Otherwise:
    2  the command line is wrong
  125  tessaly itself failed, or the client library cannot be used
  126  PROGRAM cannot be executed, or is not for AArch64
  127  PROGRAM, or an interpreter that it names, was not found
)";

options parse_options(std::span<const std::string> arguments) {
  return command_line(arguments).read();
}

}  // namespace host
