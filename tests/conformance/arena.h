// The memory that the instructions under test may access: 8 KB across a page boundary, between
// unreadable pages, so that an access outside raises a signal.
//
// It is in the low 4 GB, where vectors of 32-bit addresses reach it. Its address is the same in
// every process, so that a case can be repeated.
#pragma once

#include <array>
#include <cstdint>

namespace conformance {

inline constexpr std::size_t arena_bytes = 8192;
using arena_content = std::array<unsigned char, arena_bytes>;

inline constexpr std::uint64_t arena_boundary = 0x5a000000;  // the boundary between its two pages
inline constexpr std::uint64_t arena_begin = arena_boundary - arena_bytes / 2;
inline constexpr std::uint64_t arena_end = arena_boundary + arena_bytes / 2;

// Maps the arena. Ends the program with a message if its address is taken.
void map_arena();

// The arena itself.
arena_content& arena();

}  // namespace conformance
