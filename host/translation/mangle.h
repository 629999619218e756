// Mangling: how straight-line application instructions go into the cache.
//
// Most are copied. If an instruction computes from its own address, a constant takes the place of
// that address. If an instruction reads X28, the application's value is loaded from its home before
// it, and the context's address is loaded again after it. If an instruction writes X28, another
// register takes the place of X28, and that register's value waits in its home meanwhile. No
// inserted instruction touches the flags or the application's stack.
//
// No memory access may be added between a load-exclusive and its store-exclusive, or the store
// might never succeed. If both are in one block, another register replaces X28 from before the
// first until after the second. If a branch lies between them, an instruction that names X28 still
// accesses the thread's own context. That context is never in the granule of an application's lock,
// and processors let the sequence succeed, though the architecture does not promise it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "host/translation/assembler.h"

namespace host {

// Words that are still open: an LDR of X28 that will load the context's address again, and an LDR
// of Xt that will load the literal. An application's own LDR (literal) is always mangled, so
// neither word gets into the cache as an application instruction.
inline constexpr std::uint32_t reload_context = a64::ldr_literal(context_register, 0);
constexpr std::uint32_t load_literal(unsigned t) { return a64::ldr_literal(t, 4); }
constexpr bool is_load_literal(std::uint32_t word) { return (word & ~31u) == load_literal(0); }

struct mangling {
  bool known = true;           // false: the word may name X28 in a way that is not known here
  std::uint32_t borrowed = 0;  // registers, by bit, that are at home while the instruction runs
  std::optional<std::uint64_t> literal{};  // what the word load_literal(t) will load

  explicit operator bool() const { return known; }
};

// Makes ID_AA64PFR0_EL1 report SVE, from the next translation on.
void show_sve_in_registers();

// A register that can replace X28 in all of the words. Nothing if no word names X28, or if one of
// them rules out a replacement.
std::optional<unsigned> substitute_for_x28(std::span<const std::uint32_t> code);

// The word with the register in place of X28.
std::uint32_t with_substitute(std::uint32_t word, unsigned reg);

// Appends the words for the instruction at `pc` to `out`, or nothing if it is not known. If the
// instruction itself faults, the registers that are not borrowed still hold their values, and the
// homes of X28 and of the borrowed registers hold theirs.
[[nodiscard]] mangling mangle(std::uint32_t word, std::uint64_t pc, words& out);

}  // namespace host
