// tessaly --advertise-sve: the application is told that the processor has SVE, and that its only
// vector length is the client's. Without it, the kernel's answers describe the real processor.
#pragma once

#include <cstdint>

namespace host {

struct thread_state;

// `vector_bytes` is the vector length in bytes. Call it before the program runs.
void advertise_sve(unsigned vector_bytes);
bool sve_is_advertised();

// prctl(PR_SVE_GET_VL) and prctl(PR_SVE_SET_VL, argument): the result, or a negative error number.
std::int64_t get_vector_length(const thread_state& thread);
std::int64_t set_vector_length(thread_state& thread, std::uint64_t argument);

}  // namespace host
