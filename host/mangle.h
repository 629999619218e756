// Straight-line application instructions as they go into the cache.
//
// Most are copied. An instruction that computes from its own address gets the address as a
// constant. An instruction that reads X28 finds the application's there, loaded from its home, and
// the context's address is loaded again behind it. One that writes X28 gets another register in its
// place, whose value waits in its home meanwhile. No inserted instruction touches the flags or the
// application's stack.
//
// Between a load-exclusive and its store-exclusive, an instruction that writes X28 costs a store to
// the thread's own context. The architecture lets the sequence still succeed (the context is never
// in the granule of an application's lock), though it no longer promises so.
#pragma once

#include <cstdint>
#include <optional>

#include "host/assembler.h"

namespace host {

// Words that are still open: LDR of X28, which shall load the context's address again, and of Xt,
// which shall load the literal. As instructions of an application they never get into the cache.
inline constexpr std::uint32_t reload_context = a64::ldr_literal(context_register, 0);
constexpr std::uint32_t load_literal(unsigned t) { return a64::ldr_literal(t, 4); }
constexpr bool is_load_literal(std::uint32_t word) { return (word & ~31u) == load_literal(0); }

struct mangling {
  bool known = true;           // false: the word may name X28 in a way that is not known here
  std::uint32_t borrowed = 0;  // registers, by bit, that are at home while the instruction runs
  std::optional<std::uint64_t> literal{};  // what the word load_literal(t) shall load

  explicit operator bool() const { return known; }
};

// Appends the words for the instruction at `pc` to `out`; nothing, if it is not known. A fault of
// the instruction itself leaves all homes and all registers that are not borrowed as they were.
[[nodiscard]] mangling mangle(std::uint32_t word, std::uint64_t pc, words& out);

}  // namespace host
