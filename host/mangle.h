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

// Appends the words for the instruction at `pc` to `out`. False, with nothing appended: the word
// may name X28 in an encoding that this translator does not know.
[[nodiscard]] bool mangle(std::uint32_t word, std::uint64_t pc, words& out);

}  // namespace host
