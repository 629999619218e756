#include "tests/conformance/arena.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

namespace conformance {
namespace {

// Pages may be larger than half the arena. The guards are then further away.
std::uint64_t half_mapping() {
  return std::max<std::uint64_t>(arena_bytes / 2,
                                 static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)));
}

void* pointer(std::uint64_t address) {
  return reinterpret_cast<void*>(address);  // NOLINT(performance-no-int-to-ptr): a fixed place
}

bool map_at(std::uint64_t address, std::uint64_t size) {
  return mmap(pointer(address), size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE,
              -1, 0) == pointer(address);
}

}  // namespace

void map_arena() {
  const std::uint64_t half = half_mapping();
  constexpr std::uint64_t guard = std::uint64_t{1} << 20;
  if (map_at(arena_boundary - half - guard, 2 * (half + guard)) &&
      mprotect(pointer(arena_boundary - half), 2 * half, PROT_READ | PROT_WRITE) == 0)
    return;
  std::perror("conformance: cannot map the memory of the instructions under test at 0x5a000000");
  std::exit(2);
}

arena_content& arena() { return *static_cast<arena_content*>(pointer(arena_begin)); }

}  // namespace conformance
