// Reading and writing where the application has said, as the kernel does it: an address that is
// wrong is an error and no fault.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "host/kernel/address.h"

extern "C" {
// 0, or 1 if one of the two ranges could not be accessed in full; some may have been copied.
int guarded_copy(void* to, const void* from, std::size_t bytes);
void guarded_copy_failed();  // where the signal entry goes on after such a fault
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
