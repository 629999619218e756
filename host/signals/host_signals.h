// The signals that the host needs for itself. The kernel never learns the application's actions and
// mask bits for them. The host stores these, and acts on them as the kernel would.
#pragma once

#include <array>
#include <csignal>
#include <cstdint>

namespace host {

inline constexpr std::array fault_signals = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP};

bool is_fault_signal(int signal);

// The faults and stop_signal.
bool is_host_signal(int signal);
std::uint64_t host_signal_mask();

}  // namespace host
