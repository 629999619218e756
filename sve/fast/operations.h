// The operations of the fast paths, one expression each, on a unit of unsigned elements.
#pragma once

#include "sve/fast/group.h"

namespace sve::fast {

inline constexpr auto add = [](auto a, auto b) { return a + b; };
inline constexpr auto sub = [](auto a, auto b) { return a - b; };
inline constexpr auto mul = [](auto a, auto b) { return a * b; };
inline constexpr auto neg = [](auto a) { return -a; };

inline constexpr auto bit_and = [](auto a, auto b) { return a & b; };
inline constexpr auto bit_or = [](auto a, auto b) { return a | b; };
inline constexpr auto bit_xor = [](auto a, auto b) { return a ^ b; };
inline constexpr auto bit_clear = [](auto a, auto b) { return a & ~b; };

inline constexpr auto umin = [](auto a, auto b) { return a < b ? a : b; };
inline constexpr auto umax = [](auto a, auto b) { return a > b ? a : b; };
inline constexpr auto smin = [](auto a, auto b) { return as_signed(a) < as_signed(b) ? a : b; };
inline constexpr auto smax = [](auto a, auto b) { return as_signed(a) > as_signed(b) ? a : b; };

}  // namespace sve::fast
