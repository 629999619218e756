// Reads and writes at addresses that the application has passed, as the kernel does: a wrong
// address is an error, not a fault.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "host/kernel/address.h"

extern "C" {
// Returns 0, or 1 if one of the two ranges could not be accessed in full; part of it may have been
// copied.
int guarded_copy(void* to, const void* from, std::size_t bytes);
void guarded_copy_failed();  // the signal entry goes on here after such a fault
}

namespace host {

template <typename T>
bool read_from_application(std::uint64_t address, T& value) {
  static_assert(std::is_trivially_copyable_v<T>);
  return guarded_copy(&value, pointer_to<const void>(address), sizeof value) == 0;
}

template <typename T>
bool write_to_application(std::uint64_t address, const T& value) {
  static_assert(std::is_trivially_copyable_v<T>);
  return guarded_copy(pointer_to(address), &value, sizeof value) == 0;
}

}  // namespace host
