// Straight-line application instructions as they go into the cache.
//
// Most are copied. An instruction that computes from its own address gets the address as a
// constant. An instruction that names X28 gets another register in its place, whose value waits in
// its home meanwhile. No inserted instruction touches the flags or the application's stack.
//
// Between a load-exclusive and its store-exclusive, an instruction that names X28 costs a store to
// the thread's own context. The architecture lets the sequence still succeed (the context is never
// in the granule of an application's lock), though it no longer promises so.
#pragma once

#include <cstdint>

#include "host/assembler.h"

namespace host {

struct mangling {
  bool known = true;           // false: the word may name X28 in a way that is not known here
  std::uint32_t borrowed = 0;  // registers, by bit, that are at home while the instruction runs

  explicit operator bool() const { return known; }
};

// Appends the words for the instruction at `pc` to `out`; nothing, if it is not known. A fault of
// the instruction itself leaves all homes and all registers that are not borrowed as they were.
[[nodiscard]] mangling mangle(std::uint32_t word, std::uint64_t pc, words& out);

}  // namespace host
