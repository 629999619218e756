#include "host/memory/advertised_sve.h"

#include <cerrno>
#include <linux/prctl.h>

#include "host/threads/thread.h"
#include "host/translation/mangle.h"

namespace host {
namespace {

constexpr std::uint64_t largest_vector_bytes = 8192;  // the kernel's SVE_VL_MAX
constexpr std::uint64_t vector_granule = 16;

unsigned advertised_bytes = 0;  // 0: no SVE

bool is_vector_length(std::uint64_t bytes) {
  return bytes != 0 && bytes <= largest_vector_bytes && bytes % vector_granule == 0;
}

}  // namespace

void advertise_sve(unsigned vector_bytes) {
  advertised_bytes = vector_bytes;
  show_sve_in_registers();
}

bool sve_is_advertised() { return advertised_bytes != 0; }

std::int64_t get_vector_length(const thread_state& thread) {
  return advertised_bytes | (thread.process.inherits_vector_length ? PR_SVE_VL_INHERIT : 0);
}

// The kernel takes the largest length that it has, up to the requested one. Here there is only one
// length, so nothing but the flag changes, now or at the next exec.
std::int64_t set_vector_length(thread_state& thread, std::uint64_t argument) {
  constexpr std::uint64_t known_flags = PR_SVE_SET_VL_ONEXEC | PR_SVE_VL_INHERIT;
  const std::uint64_t flags = argument & ~std::uint64_t{PR_SVE_VL_LEN_MASK};
  if ((flags & ~known_flags) != 0) return -EINVAL;
  if (!is_vector_length(argument & PR_SVE_VL_LEN_MASK)) return -EINVAL;
  thread.process.inherits_vector_length = (flags & PR_SVE_VL_INHERIT) != 0;
  return get_vector_length(thread);
}

}  // namespace host
