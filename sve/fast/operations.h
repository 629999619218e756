// The operations of the fast paths, one expression each, on a unit of unsigned elements.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

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

inline constexpr auto minimum = [](auto a, auto b) { return a < b ? a : b; };
inline constexpr auto maximum = [](auto a, auto b) { return a > b ? a : b; };
inline constexpr auto umin = minimum;
inline constexpr auto umax = maximum;
inline constexpr auto smin = [](auto a, auto b) { return minimum(as_signed(a), as_signed(b)); };
inline constexpr auto smax = [](auto a, auto b) { return maximum(as_signed(a), as_signed(b)); };

inline constexpr auto same = [](auto a) { return a; };

// Shifts by the unsigned count n. If it is the element's width or more, LSL and LSR give 0 and ASR
// fills the element with the sign.
inline constexpr auto lsl = []<class Unit>(Unit a, Unit n) {
  constexpr unsigned width = element_bits<Unit>;
  return n < width ? a << (n & (width - 1)) : Unit{};
};
inline constexpr auto lsr = []<class Unit>(Unit a, Unit n) {
  constexpr unsigned width = element_bits<Unit>;
  return n < width ? a >> (n & (width - 1)) : Unit{};
};
inline constexpr auto asr = []<class Unit>(Unit a, Unit n) {
  return as_signed(a) >> as_signed(umin(n, broadcast<Unit>(element_bits<Unit> - 1)));
};

// The low `bits` bits of an element, extended to its width.
template <unsigned bits>
inline constexpr auto sign_extend = []<class Unit>(Unit a) {
  constexpr unsigned unused = element_bits<Unit> - bits;
  return as_signed(a << unused) >> unused;
};
template <unsigned bits>
inline constexpr auto zero_extend = []<class Unit>(Unit a) { return a & ((1UL << bits) - 1); };

// Reverses the bits of each byte by exchanging neighbouring runs of 1, 2 and 4 bits, and then the
// bytes of each element.
inline constexpr auto reverse_bits = []<class Group>(Group a) {
  auto bytes = (group<std::uint8_t>)a;
  for (unsigned step = 1; step < 8; step *= 2) {
    const std::uint8_t low = 0xff / ((1U << step) + 1);  // 0x55, 0x33, 0x0f
    bytes = ((bytes >> step) & low) | ((bytes & low) << step);
  }
  return [&]<std::size_t... k>(std::index_sequence<k...>) {
    return (Group)__builtin_shufflevector(bytes, bytes, (k ^ (element_bits<Group> / 8 - 1))...);
  }
  (std::make_index_sequence<group_bytes>());
};
inline constexpr auto swap_words = [](auto a) { return (a >> 32) | (a << 32); };

}  // namespace sve::fast
