// The values that the reference semantics work on, and the rules for the names of its functions.
//
// A semantic function is plain: it takes values, returns a value, and sees the rest of the machine
// through one CpuContext. It knows nothing of registers, instruction words or the host. It takes
// the vector length from the context at run time, so it can define what an instruction means at any
// length.
//
// Names are Vec + element tag + stem + shape (VecS32AbdVVM). The order of arguments is merge source
// (shapes that end in M), governing predicate, remaining operands, CpuContext*. Vectors and
// predicates are passed by value. These functions, the memory access functions and the integers of
// the pseudocode are exported and at global scope. What they are built from is in sve::semantics.
#pragma once

#include <cstdint>
#include <cstring>

// A vector value. It has room for the architecture's longest vector, of which vl * 8 bytes are
// used. The bytes above are undefined, and nobody reads them. Element 0 is at byte 0,
// little-endian. A vector register may be accessed through this type.
struct [[gnu::may_alias]] VecV {
  alignas(16) unsigned char bytes[256];

  template <class T>
  T get(unsigned e) const {
    T value;
    std::memcpy(&value, bytes + e * sizeof(T), sizeof(T));
    return value;
  }

  template <class T>
  void set(unsigned e, T value) {
    std::memcpy(bytes + e * sizeof(T), &value, sizeof(T));
  }
};

// A predicate value in packed form: bit i belongs to vector byte lane i.
struct PredV {
  std::uint64_t words[4];

  bool lane(unsigned i) const { return ((words[i / 64] >> (i % 64)) & 1) != 0; }

  void set_lane(unsigned i, bool value) {
    const std::uint64_t bit = std::uint64_t{1} << (i % 64);
    words[i / 64] = value ? words[i / 64] | bit : words[i / 64] & ~bit;
  }

  // The governing bit of element e of type T: that of the element's first lane.
  template <class T>
  bool active(unsigned e) const {
    return lane(e * sizeof(T));
  }

  // Clears all lanes of element e of type T, then writes the truth value into the first.
  template <class T>
  void set_active(unsigned e, bool value) {
    for (unsigned i = 1; i < sizeof(T); ++i) set_lane(e * sizeof(T) + i, false);
    set_lane(e * sizeof(T), value);
  }
};

// The abstract machine's registers.
struct CpuContext {
  std::uint32_t nzcv;  // N bit 31, Z 30, C 29, V 28
  std::uint32_t fpsr;
  std::uint32_t fpcr;
  std::uint32_t vl;  // vector length in units of 64 bits
  PredV ffr;

  // Number of elements of type T in a vector, in 32-bit arithmetic: only the low 26 bits of vl
  // count.
  template <class T>
  unsigned elements() const {
    return vl * 64 / static_cast<unsigned>(8 * sizeof(T));
  }
};
