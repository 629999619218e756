// How the emulation accesses the emulated program's memory.
//
// The program lives in the emulator's own address space, so a guest address is a host pointer. The
// memory belongs to the program: each access must be a single access of exactly the element's
// width, because neighbouring bytes may be unmapped, belong to an inactive element or be shared
// with another thread. Volatile keeps the compiler from merging, splitting, widening or moving the
// access. Guest addresses may be unaligned, null or wild. A fault on one is the guest's fault, and
// SVESigHandler reports it. So the sanitizers, which check the emulator, are switched off here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace sve {

// The one place where a guest address becomes a pointer.
template <class T>
inline T* guest_pointer(std::uint64_t address) {
  return reinterpret_cast<T*>(address);  // NOLINT(performance-no-int-to-ptr): that is what it is
}

template <class T>
struct [[gnu::packed, gnu::may_alias]] unaligned {
  T value;
};

template <class T>
__attribute__((no_sanitize("address", "undefined"))) inline T read_guest(std::uint64_t address) {
  return guest_pointer<const volatile unaligned<T>>(address)->value;
}

template <class T>
__attribute__((no_sanitize("address", "undefined"))) inline void write_guest(std::uint64_t address,
                                                                             T value) {
  guest_pointer<volatile unaligned<T>>(address)->value = value;
}

// Block copies between guest memory and a whole register. All bytes are wanted, so the accesses may
// be of any width.
template <std::size_t N>
__attribute__((no_sanitize("address", "undefined"))) inline void read_guest_block(
    unsigned char (&to)[N], std::uint64_t address) {
  std::memcpy(to, guest_pointer<const void>(address), N);
}

template <std::size_t N>
__attribute__((no_sanitize("address", "undefined"))) inline void write_guest_block(
    std::uint64_t address, const unsigned char (&from)[N]) {
  std::memcpy(guest_pointer<void>(address), from, N);
}

}  // namespace sve
