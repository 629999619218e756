#include "host/memory/program_break.h"

#include <mutex>
#include <sys/mman.h>
#include <unistd.h>

#include "host/kernel/address.h"
#include "host/kernel/fatal.h"
#include "host/kernel/fork_lock.h"

namespace host {
namespace {

const auto page_bytes = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
constexpr std::uint64_t reserved_bytes = 256u << 20;

fork_safe_mutex mutex;
std::uint64_t region_start = 0;
std::uint64_t region_end = 0;  // of the reservation
std::uint64_t usable_end = 0;  // of what can be read and written
std::uint64_t current = 0;

std::uint64_t page_up(std::uint64_t address) {
  return (address + page_bytes - 1) & ~(page_bytes - 1);
}

bool extend_reservation(std::uint64_t end) {
  void* const at = pointer_to(region_end);
  void* const got = mmap(at, end - region_end, PROT_NONE,
                         MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED_NOREPLACE, -1, 0);
  if (got == MAP_FAILED) return false;
  if (got != at) {  // a kernel that does not know MAP_FIXED_NOREPLACE
    munmap(got, end - region_end);
    return false;
  }
  region_end = end;
  return true;
}

bool make_usable(std::uint64_t end) {
  if (end > region_end && !extend_reservation(end)) return false;
  if (mprotect(pointer_to(usable_end), end - usable_end, PROT_READ | PROT_WRITE) != 0) {
    return false;
  }
  usable_end = end;
  return true;
}

// Memory that is given back must read as zero when it is taken again.
void give_back(std::uint64_t start) {
  void* const at = pointer_to(start);
  if (mmap(at, usable_end - start, PROT_NONE,
           MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED, -1, 0) != MAP_FAILED) {
    usable_end = start;
  }
}

}  // namespace

void reserve_program_break() {
  void* const region = mmap(nullptr, reserved_bytes + page_bytes, PROT_NONE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (region == MAP_FAILED) fatal("cannot reserve memory for the program break");
  region_start = page_up(address_of(region));
  region_end = region_start + reserved_bytes;
  usable_end = region_start;
  current = region_start;
}

std::uint64_t move_program_break(std::uint64_t wanted) {
  const std::lock_guard lock(mutex);
  constexpr std::uint64_t address_space_end = 1ull << 48;
  if (wanted < region_start || wanted >= address_space_end) return current;
  const std::uint64_t end = page_up(wanted);
  if (end > usable_end && !make_usable(end)) return current;
  if (end < usable_end) give_back(end);
  current = wanted;
  return current;
}

std::pair<std::uint64_t, std::uint64_t> program_break_range() {
  const std::lock_guard lock(mutex);
  return {region_start, usable_end};
}

}  // namespace host
