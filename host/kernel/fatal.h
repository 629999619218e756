// The ends that the host itself puts to a process. Each prints one line on standard error.
#pragma once

namespace host {

// Something this host cannot do or got wrong: "tessaly: " and the text, exit status 125.
[[noreturn]] void fatal(const char* format, ...) __attribute__((format(printf, 1, 2)));

// One such line, without the end.
void print_line(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Ends the process by the default action of a signal.
[[noreturn]] void die_by_signal(int signal);

}  // namespace host
