// The ends that the host itself puts to a process. Each prints one line on standard error.
#pragma once

namespace host {

// Exit status when a program needs something that this host does not carry.
inline constexpr int unsupported_status = 125;

// Something this host cannot do or got wrong: "tessaly: " and the text, exit status 125.
[[noreturn]] void fatal(const char* format, ...) __attribute__((format(printf, 1, 2)));

// One such line, without the end.
void print_line(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace host
