// The files in which the kernel describes a process to itself. It would describe the launcher, but
// the application must read what it would read without one. This concerns /proc/self/exe, cmdline,
// maps, smaps and auxv, by any name that leads there (/proc/PID, /proc/thread-self, a directory's
// descriptor), and /proc/cpuinfo if the application is to see SVE. The other files
// under /proc/self are left to the kernel: comm, environ and fd are the same with and without the
// launcher, and the counts in status and stat include what the launcher uses.
//
// A generated file is a copy made when it is opened.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/loading/program.h"

namespace host {

// Remembers where the program's arguments are and what its auxiliary vector holds, before the
// program can change them.
void note_initial_stack(std::uint64_t stack_pointer);

// Whether a path, relative to a directory's descriptor, is one of the names of /proc/self/exe.
bool names_own_executable(std::uint64_t directory, std::uint64_t path);

// openat, with its arguments. Returns nothing if the path is not one of these files.
std::optional<std::int64_t> open_own_file(const std::uint64_t* x);

// readlinkat, with its arguments. Returns nothing if the path is not /proc/self/exe.
std::optional<std::int64_t> read_own_link(const std::uint64_t* x);

// For calls that follow links: the address of the path to use instead. It is `path` itself for
// everything but /proc/self/exe.
std::uint64_t followed_path(std::uint64_t directory, std::uint64_t path);

// A string that the application points to, as the kernel would read it. Nothing if it cannot be
// read or is longer than any path.
std::optional<std::string> read_path(std::uint64_t address);

}  // namespace host
