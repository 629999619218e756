// Addresses as numbers and as pointers. The application lives in the host's own address space, so
// the translator's numbers are pointers to its memory.
#pragma once

#include <cstdint>

namespace host {

template <typename T = void>
T* pointer_to(std::uint64_t address) {
  return reinterpret_cast<T*>(address);  // NOLINT(performance-no-int-to-ptr): that is what it is
}

template <typename T>
std::uint64_t address_of(T* pointer) {
  return reinterpret_cast<std::uint64_t>(pointer);
}

}  // namespace host
