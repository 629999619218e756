// The one way in which system calls of the application that may wait reach the kernel.
#pragma once

#include <cstdint>

extern "C" {
std::int64_t application_call(const std::uint64_t* x, const std::uint64_t* attention);

// Places in it, for the signal entry: from the first to before the second, the call hasn't started.
void application_call_checked();
void application_call_made();
void application_call_not_started();
}

namespace host {

// No result of the kernel's: those of errors end at -4095.
inline constexpr std::int64_t call_not_started = -4096;

}  // namespace host
