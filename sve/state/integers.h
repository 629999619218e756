// The integer types of vector elements, under the names of the element tags.
#pragma once

#include <cstdint>

namespace sve::integers {

using U8 = std::uint8_t;
using U16 = std::uint16_t;
using U32 = std::uint32_t;
using U64 = std::uint64_t;
using S8 = std::int8_t;
using S16 = std::int16_t;
using S32 = std::int32_t;
using S64 = std::int64_t;

}  // namespace sve::integers
