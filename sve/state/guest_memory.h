// How the emulation touches the emulated program's memory.
//
// The program lives in the emulator's own address space, so that a guest address is a host pointer.
// Its memory is not ours: an access must be one access of exactly that width, because neighbouring
// bytes may be unmapped, may belong to an inactive element or may be shared with another thread.
// Volatile keeps the compiler from merging, splitting, widening or moving it. Guest addresses may
// be unaligned, null or wild, and a fault on them is the guest's, to be reported by SVESigHandler;
// so the sanitizers, which watch the emulator, stay out of here.
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

// Block copies between guest memory and a whole register, where every byte is wanted: their
// accesses may be of any width.
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
