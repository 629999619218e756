// System calls of the host's own, past the C library: no errno, no cancellation, no wrapper of the
// client's.
#pragma once

#include <cstdint>

namespace host {

// Passes a call to the kernel: its result, or a negative error number.
std::int64_t kernel_call(std::int64_t number, std::uint64_t a0 = 0, std::uint64_t a1 = 0,
                         std::uint64_t a2 = 0, std::uint64_t a3 = 0, std::uint64_t a4 = 0,
                         std::uint64_t a5 = 0);

}  // namespace host
