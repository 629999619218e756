// The application's program break. The kernel's own belongs to the host's C library, so the
// application's is a region of its own, reserved at the start and grown in place beyond that if
// nothing else has come to stand there.
#pragma once

#include <cstdint>
#include <utility>

namespace host {

void reserve_program_break();

// As the brk system call: returns the new break, or the old one if it cannot be moved.
std::uint64_t move_program_break(std::uint64_t wanted);

// From its start to the end of its last page; equal if the program has not moved it.
std::pair<std::uint64_t, std::uint64_t> program_break_range();

}  // namespace host
