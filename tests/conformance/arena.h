// The memory that the instructions under test may touch: 8 KB across a page boundary, with
// unreadable pages around, so that an access outside is a signal.
//
// It lies in the low 4 GB, where vectors of 32-bit addresses reach it, and at the same address in
// every process, so that a case can be made again.
#pragma once

#include <array>
#include <cstdint>

namespace conformance {

inline constexpr std::size_t arena_bytes = 8192;
using arena_content = std::array<unsigned char, arena_bytes>;

inline constexpr std::uint64_t arena_boundary = 0x5a000000;  // the boundary of its two pages
inline constexpr std::uint64_t arena_begin = arena_boundary - arena_bytes / 2;
inline constexpr std::uint64_t arena_end = arena_boundary + arena_bytes / 2;

// Maps the arena; ends the program with a message if its place is taken.
void map_arena();

// The arena itself.
arena_content& arena();

}  // namespace conformance
