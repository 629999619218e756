// The signals that the host uses itself. It keeps their actions and mask bits from the kernel, and
// gives the application what it would see if the kernel had them.
#pragma once

#include <array>
#include <csignal>
#include <cstdint>

namespace host {

inline constexpr std::array fault_signals = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP};

bool is_fault_signal(int signal);

// Faults and stop_signal.
bool is_host_signal(int signal);
std::uint64_t host_signal_mask();

}  // namespace host
