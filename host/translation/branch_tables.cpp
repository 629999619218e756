#include "host/translation/branch_tables.h"

#include <sys/mman.h>

#include "host/kernel/address.h"
#include "host/kernel/fatal.h"

namespace host {

std::uint64_t* branch_table(void* context, unsigned reg) {
  return pointer_to<std::uint64_t>(address_of(context) + branch_slot_displacement +
                                   branch_table_of(reg) * branch_table_bytes);
}

// Aligned, so that BFI can replace low bits of the record's address.
void* followed_by_branch_tables::operator new(std::size_t size) {
  if (size > branch_slot_displacement) fatal("a record of %zu bytes runs into its tables", size);
  constexpr std::size_t reserved = branch_region_bytes + branch_table_bytes;
  auto* const memory = static_cast<char*>(mmap(nullptr, reserved, PROT_READ | PROT_WRITE,
                                               MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
  if (memory == MAP_FAILED) fatal("cannot map %zu bytes for a thread", reserved);
  const std::size_t before = -address_of(memory) & (branch_table_bytes - 1);
  if (before != 0) munmap(memory, before);
  munmap(memory + before + branch_region_bytes, branch_table_bytes - before);
  return memory + before;
}

void followed_by_branch_tables::operator delete(void* record) {
  munmap(record, branch_region_bytes);
}

}  // namespace host
