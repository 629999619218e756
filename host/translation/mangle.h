// Straight-line application instructions as they go into the cache.
//
// Most are copied. An instruction that computes from its own address gets the address as a
// constant. An instruction that reads X28 finds the application's there, loaded from its home, and
// the context's address is loaded again behind it. One that writes X28 gets another register in its
// place, whose value waits in its home meanwhile. No inserted instruction touches the flags or the
// application's stack.
//
// Between a load-exclusive and its store-exclusive no access to memory may be added, or the store
// might never succeed. Where both stand in one block, another register takes the place of X28 from
// before the one until behind the other. Where a branch stands between them, an instruction that
// names X28 still costs an access to the thread's own context, which is never in the granule of an
// application's lock; processors let the sequence succeed, though the architecture does not promise
// it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "host/translation/assembler.h"

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

// Makes ID_AA64PFR0_EL1 tell of SVE, from the next translation on.
void show_sve_in_registers();

// A register to take the place of X28 in all of the words, or nothing if X28 is not named there, or
// in a way that does not allow it.
std::optional<unsigned> substitute_for_x28(std::span<const std::uint32_t> code);

// The word with the register in place of X28.
std::uint32_t with_substitute(std::uint32_t word, unsigned reg);

// Appends the words for the instruction at `pc` to `out`; nothing, if it is not known. A fault of
// the instruction itself leaves all homes and all registers that are not borrowed as they were.
[[nodiscard]] mangling mangle(std::uint32_t word, std::uint64_t pc, words& out);

}  // namespace host
