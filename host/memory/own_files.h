// The files in which the kernel tells a process about itself. It tells about the launcher; the
// application shall read what it would read without one: /proc/self/exe, cmdline, maps, smaps and
// auxv, by any name that leads there (/proc/PID, /proc/thread-self, a directory's descriptor), and
// /proc/cpuinfo if it is to see SVE. All the others under /proc/self are the kernel's own: comm,
// environ, status, fd and so on are the same with and without the launcher.
//
// What is generated is a copy of the moment of opening.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/loading/program.h"

namespace host {

// Remembers where the program's arguments and auxiliary vector are, before it can change them.
void note_initial_stack(std::uint64_t stack_pointer);

// Whether a path, from the directory of a descriptor, is one of the names of /proc/self/exe.
bool names_own_executable(std::uint64_t directory, std::uint64_t path);

// openat, with its arguments: nothing if the path is none of these files.
std::optional<std::int64_t> open_own_file(const std::uint64_t* x);

// readlinkat, with its arguments: nothing if the path isn't /proc/self/exe.
std::optional<std::int64_t> read_own_link(const std::uint64_t* x);

// For calls that follow the path: the address of the path that they shall be given instead, which
// is `path` for all but /proc/self/exe.
std::uint64_t followed_path(std::uint64_t directory, std::uint64_t path);

// A text that the application points to, as the kernel would read it; nothing if it can't be read
// or is longer than any path.
std::optional<std::string> read_path(std::uint64_t address);

}  // namespace host
