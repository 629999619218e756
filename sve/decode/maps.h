// The decode maps, and the bits of the instruction word that make up the key of each map.
//
// A row is in the map whose ranges are exactly the bits that its pattern fixes. No word matches two
// rows, so the order of probing makes no difference to the result. The maps are probed from the
// widest key to the narrowest. A pattern that fits no map needs a new one: add a line below.
#pragma once

#include <array>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace sve {

struct map_description {
  std::string_view name;   // decode_map__ and the bit ranges of the key, the highest first
  std::uint32_t key_mask;  // the bits of these ranges
};

// The mask of bits hi to lo, for each pair in order.
template <class... Ints>
consteval std::uint32_t ranges(Ints... hi_lo) {
  const std::array<int, sizeof...(hi_lo)> bounds{hi_lo...};
  std::uint32_t mask = 0;
  for (std::size_t i = 0; i < bounds.size(); i += 2)
    for (int bit = bounds[i + 1]; bit <= bounds[i]; ++bit) mask |= 1U << bit;
  return mask;
}

inline constexpr map_description decode_maps[] = {
    {"decode_map__31_0", ranges(31, 0)},
    {"decode_map__31_9__4_0", ranges(31, 9, 4, 0)},
    {"decode_map__31_4", ranges(31, 4)},
    {"decode_map__31_9__4_4", ranges(31, 9, 4, 4)},
    {"decode_map__31_14__9_9__4_0", ranges(31, 14, 9, 9, 4, 0)},
    {"decode_map__31_10__4_4", ranges(31, 10, 4, 4)},
    {"decode_map__31_9", ranges(31, 9)},
    {"decode_map__31_13__9_6", ranges(31, 13, 9, 6)},
    {"decode_map__31_21__15_10__4_0", ranges(31, 21, 15, 10, 4, 0)},
    {"decode_map__31_10", ranges(31, 10)},
    {"decode_map__31_13__9_8", ranges(31, 13, 9, 8)},
    {"decode_map__31_11", ranges(31, 11)},
    {"decode_map__31_14__9_9__4_4", ranges(31, 14, 9, 9, 4, 4)},
    {"decode_map__31_13__9_9", ranges(31, 13, 9, 9)},
    {"decode_map__31_20__15_9__4_4", ranges(31, 20, 15, 9, 4, 4)},
    {"decode_map__31_13__4_4", ranges(31, 13, 4, 4)},
    {"decode_map__31_24__21_10", ranges(31, 24, 21, 10)},
    {"decode_map__31_24__21_21__19_10", ranges(31, 24, 21, 21, 19, 10)},
    {"decode_map__31_19__15_10", ranges(31, 19, 15, 10)},
    {"decode_map__31_13", ranges(31, 13)},
    {"decode_map__31_14__9_9", ranges(31, 14, 9, 9)},
    {"decode_map__31_20__15_10", ranges(31, 20, 15, 10)},
    {"decode_map__31_14", ranges(31, 14)},
    {"decode_map__31_23__21_13", ranges(31, 23, 21, 13)},
    {"decode_map__31_21__15_10__4_4", ranges(31, 21, 15, 10, 4, 4)},
    {"decode_map__31_24__21_21__18_10", ranges(31, 24, 21, 21, 18, 10)},
    {"decode_map__31_17__15_13", ranges(31, 17, 15, 13)},
    {"decode_map__31_24__21_21__17_10", ranges(31, 24, 21, 21, 17, 10)},
    {"decode_map__31_21__15_10", ranges(31, 21, 15, 10)},
    {"decode_map__31_23__21_21__15_10", ranges(31, 23, 21, 21, 15, 10)},
    {"decode_map__31_21__15_11", ranges(31, 21, 15, 11)},
    {"decode_map__31_24__21_21__16_10", ranges(31, 24, 21, 21, 16, 10)},
    {"decode_map__31_20__15_14__9_9__4_4", ranges(31, 20, 15, 14, 9, 9, 4, 4)},
    {"decode_map__31_21__15_13__4_4", ranges(31, 21, 15, 13, 4, 4)},
    {"decode_map__31_21__15_12", ranges(31, 21, 15, 12)},
    {"decode_map__31_20__15_13", ranges(31, 20, 15, 13)},
    {"decode_map__31_21__15_13", ranges(31, 21, 15, 13)},
    {"decode_map__31_20__15_14", ranges(31, 20, 15, 14)},
    {"decode_map__31_18", ranges(31, 18)},
    {"decode_map__31_22__15_13__4_4", ranges(31, 22, 15, 13, 4, 4)},
    {"decode_map__31_22__15_13", ranges(31, 22, 15, 13)},
    {"decode_map__31_21__15_14", ranges(31, 21, 15, 14)},
    {"decode_map__31_21__13_13__4_4", ranges(31, 21, 13, 13, 4, 4)},
    {"decode_map__31_21__15_15", ranges(31, 21, 15, 15)},
};

inline constexpr std::size_t map_count = std::size(decode_maps);
inline constexpr std::size_t no_map = map_count;

// The index of the map whose key consists of exactly the bits of `mask`, or no_map.
constexpr std::size_t map_with_key_mask(std::uint32_t mask) {
  std::size_t i = 0;
  while (i < map_count && decode_maps[i].key_mask != mask) ++i;
  return i;
}

}  // namespace sve
