// The command lines of the test programs share this. The C library's argp prints the help. It
// refuses a wrong argument with status 2 and a line that names it.
#pragma once

#include <argp.h>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace test_options {

// A whole number, decimal or with 0x.
inline std::uint64_t number(argp_state* state, const char* option, const char* text,
                            std::uint64_t lowest = 0, std::uint64_t limit = UINT64_MAX) {
  char* end = nullptr;
  errno = 0;
  const std::uint64_t value = std::strtoull(text, &end, 0);
  const bool whole = *text != '\0' && *text != '-' && *end == '\0' && errno == 0;
  if (!whole || value < lowest || value > limit) {
    argp_error(state, "%s takes a number from %ju to %ju, not \"%s\"", option, lowest, limit, text);
  }
  return value;
}

// Which of several equal parts of the work to do.
struct part {
  unsigned number = 1, count = 1;

  bool has(std::uint64_t position) const { return position % count == number - 1; }
};

inline part part_of(argp_state* state, const char* option, const char* text) {
  part result;
  int end = 0;
  const int read = std::sscanf(  // NOLINT(cert-err34-c): the range is checked below
      text, "%9u/%9u%n", &result.number, &result.count, &end);
  if (read != 2 || text[end] != '\0' || result.number < 1 || result.number > result.count) {
    argp_error(state, "%s takes I/N with I from 1 to N, not \"%s\"", option, text);
  }
  return result;
}

inline void parse(int argc, char** argv, const argp_option* described, argp_parser_t parser,
                  const char* purpose) {
  const argp command_line = {described, parser, nullptr, purpose, nullptr, nullptr, nullptr};
  argp_err_exit_status = 2;
  argp_parse(&command_line, argc, argv, 0, nullptr, nullptr);
}

}  // namespace test_options
