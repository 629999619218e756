// The condition flags, as in the NZCV system register. cpu_state and CpuContext hold them so.
#pragma once

#include <cstdint>

namespace sve {

inline constexpr std::uint32_t flag_n = 1U << 31;
inline constexpr std::uint32_t flag_z = 1U << 30;
inline constexpr std::uint32_t flag_c = 1U << 29;
inline constexpr std::uint32_t flag_v = 1U << 28;
inline constexpr std::uint32_t flags_nzcv = flag_n | flag_z | flag_c | flag_v;

}  // namespace sve
