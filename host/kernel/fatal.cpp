#include "host/kernel/fatal.h"

#include <cstdarg>
#include <cstdio>
#include <unistd.h>

namespace host {
namespace {

// One write, so that lines of several threads do not mix.
void print_line_list(const char* format, va_list arguments) {
  char text[512] = "tessaly: ";
  constexpr int prefix = 9;
  const int length = vsnprintf(text + prefix, sizeof text - prefix - 1, format, arguments);
  std::size_t end = prefix + static_cast<std::size_t>(length < 0 ? 0 : length);
  if (end > sizeof text - 2) end = sizeof text - 2;
  text[end] = '\n';
  if (write(STDERR_FILENO, text, end + 1) < 0) return;  // there is nowhere left to report it
}

}  // namespace

void print_line(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  print_line_list(format, arguments);
  va_end(arguments);
}

void fatal(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  print_line_list(format, arguments);
  va_end(arguments);
  _exit(unsupported_status);
}

}  // namespace host
