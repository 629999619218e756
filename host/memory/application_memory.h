// Which memory is the application's. It shares its address space with the launcher, the client and
// their libraries, stacks and caches, and what it reads in /proc/self/maps shall be its own alone.
// So it is noted what the loader has mapped for it and what its system calls map and unmap.
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
  std::string name;  // that the kernel would show; empty: the one that it does show
};

// The program's files and its stack.
void note_loaded_memory(const loaded_program& program);

void note_mapped(std::uint64_t start, std::uint64_t end);
void note_unmapped(std::uint64_t start, std::uint64_t end);

// Ascending, without the program break.
std::vector<memory_range> application_memory();

// The lines of `text`, which has the form of /proc/self/maps or smaps, that lie in one of the
// ranges, cut to it, and those of the vdso. `ranges` are ascending and do not overlap.
std::string mappings_within(std::string_view text, const std::vector<memory_range>& ranges);

}  // namespace host
