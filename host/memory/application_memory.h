// Which memory is the application's. The application shares its address space with the launcher,
// the client and their libraries, stacks and caches, but in /proc/self/maps it must see only its
// own memory. So this records what the loader maps for it, and what its system calls map and unmap.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/loading/program.h"

namespace host {

struct memory_range {
  std::uint64_t start = 0;
  std::uint64_t end = 0;
  std::string name;  // the name to show; empty: the one that the kernel shows
};

// The program's files and its stack.
void note_loaded_memory(const loaded_program& program);

void note_mapped(std::uint64_t start, std::uint64_t end);
void note_unmapped(std::uint64_t start, std::uint64_t end);

// Ascending, without the program break.
std::vector<memory_range> application_memory();

// The lines of `text` that lie in one of the ranges, cut to that range, and the lines of the vdso.
// `text` has the form of /proc/self/maps or smaps. `ranges` are ascending and do not overlap.
std::string mappings_within(std::string_view text, const std::vector<memory_range>& ranges);

}  // namespace host
