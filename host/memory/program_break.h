// The application's program break. The kernel's own break belongs to the host's C library, so the
// application's is a region of its own. It is reserved at the start, and beyond that it grows in
// place if nothing else is mapped there.
#pragma once

#include <cstdint>
#include <utility>

namespace host {

void reserve_program_break();

// Like the brk system call: returns the new break, or the old one if it cannot be moved.
std::uint64_t move_program_break(std::uint64_t wanted);

// From its start to the end of its last page. Both are equal if the program has not moved it.
std::pair<std::uint64_t, std::uint64_t> program_break_range();

}  // namespace host
