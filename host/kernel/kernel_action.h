// The kernel's own record of what a signal does to the process.
#pragma once

#include <cstdint>

namespace host {

inline constexpr int highest_signal = 64;

constexpr std::uint64_t signal_bit(int signal) { return std::uint64_t{1} << (signal - 1); }

// The kernel's struct sigaction, which differs from the C library's.
struct kernel_action {
  std::uint64_t handler;  // 0: SIG_DFL, 1: SIG_IGN
  std::uint64_t flags;
  std::uint64_t restorer;
  std::uint64_t mask;

  [[nodiscard]] bool is_default() const { return handler == 0; }
  [[nodiscard]] bool is_ignored() const { return handler == 1; }
  [[nodiscard]] bool has_handler() const { return handler > 1; }
};

kernel_action action_in_kernel(int signal);

// 0, or a negative error number.
std::int64_t set_action_in_kernel(int signal, const kernel_action& action);

// Ends the process by the default action of a signal.
[[noreturn]] void die_by_signal(int signal);

}  // namespace host
