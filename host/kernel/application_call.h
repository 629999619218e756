// The only way in which blocking system calls of the application reach the kernel.
#pragma once

#include <cstdint>

extern "C" {
std::int64_t application_call(const std::uint64_t* x, const std::uint64_t* attention);

// Labels in it, for the signal entry. From the first up to the second, the call has not started.
void application_call_checked();
void application_call_made();
void application_call_not_started();
}

namespace host {

// Never a result of the kernel: its lowest error result is -4095.
inline constexpr std::int64_t call_not_started = -4096;

}  // namespace host
