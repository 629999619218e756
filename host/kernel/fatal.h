// How the host itself ends a process, and how it reports one line on standard error.
#pragma once

namespace host {

// Exit status for a program that needs something this host does not support.
inline constexpr int unsupported_status = 125;

// For something that this host cannot do or got wrong. Prints "tessaly: " and the text, and ends
// the process with unsupported_status.
[[noreturn]] void fatal(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Prints such a line, but does not end the process.
void print_line(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace host
