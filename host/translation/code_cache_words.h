// Words that the code cache writes and must recognise when a signal interrupts a thread there:
// branches, and the routine that looks up the targets of indirect branches.
#pragma once

#include <array>
#include <cstdint>

#include "host/translation/assembler.h"
#include "host/translation/block_code.h"
#include "host/translation/context.h"

namespace host {

inline void synchronise(std::uint32_t* begin, std::uint32_t* end) {
  __builtin___clear_cache(reinterpret_cast<char*>(begin), reinterpret_cast<char*>(end));
}

inline std::int64_t distance(const std::uint32_t* from, const std::uint32_t* to) {
  return (to - from) * 4;
}

inline void write(std::uint32_t* at, std::uint32_t word) {
  *at = word;
  synchronise(at, at + 1);
}

inline bool is_b(std::uint32_t word) { return (word & 0xfc000000) == 0x14000000; }
inline bool is_test_branch(std::uint32_t word) { return (word & 0x7e000000) == 0x36000000; }

inline const std::uint32_t* target_of_b(const std::uint32_t* at) {
  return at + signed_field(*at, 25, 0);
}

inline bool reaches(std::uint32_t word, std::int64_t bytes) {
  const std::int64_t limit = is_b(word) ? 1 << 27 : is_test_branch(word) ? 1 << 15 : 1 << 20;
  return bytes >= -limit && bytes < limit;
}

// The same branch (B, B.cond, CBZ or TBZ) over another distance.
inline std::uint32_t with_distance(std::uint32_t word, std::int64_t bytes) {
  const auto units = static_cast<std::uint32_t>(bytes / 4);
  if (is_b(word)) return a64::b(bytes);
  if (is_test_branch(word)) return (word & ~(0x3fffu << 5)) | (units & 0x3fff) << 5;
  return (word & ~(0x7ffffu << 5)) | (units & 0x7ffff) << 5;
}

inline void unlink(const exit_record& exit) {
  if (exit.branch == nullptr) return;
  write(exit.stub, a64::store_home(30));
  write(exit.branch, with_distance(*exit.branch, distance(exit.branch, exit.stub)));
}

// Expects the target in X0, and the application's X0 and X1 at home. If the target is found, goes
// to its plain entry with all other registers restored. If not, stores the target to
// thread_context::pc.
inline constexpr std::array<std::uint32_t, 16> lookup_words = {
    0xa9010f82,  // stp  x2, x3, [x28, #16]
    0xa9538f82,  // ldp  x2, x3, [x28, #312]   table and mask
    0x8a000861,  // and  x1, x3, x0, lsl #2
    0x8b010041,  // add  x1, x2, x1
    0xa8c10823,  // ldp  x3, x2, [x1], #16     probe: address and entry
    0xb4000102,  // cbz  x2, miss
    0xcb000063,  // sub  x3, x3, x0
    0xb5ffffa3,  // cbnz x3, probe
    0xf900db82,  // str  x2, [x28, #432]       thread_context::entry
    0xa9410f82,  // ldp  x2, x3, [x28, #16]
    0xa9400780,  // ldp  x0, x1, [x28]
    0xf940db9c,  // ldr  x28, [x28, #432]
    0xd61f0380,  // br   x28
    0xa9410f82,  // ldp  x2, x3, [x28, #16]    miss
    0xf9008380,  // str  x0, [x28, #256]       thread_context::pc
    0xa9400780,  // ldp  x0, x1, [x28]
};
static_assert(CONTEXT_BRANCH_TABLE == 312 && CONTEXT_PC == 256 && CONTEXT_ENTRY == 432);

// Indices of words in the routine.
inline constexpr std::size_t lookup_restored = 11;  // X0 and X1 are the application's again
inline constexpr std::size_t lookup_missed = 13;
inline constexpr std::size_t lookup_missed_early = 14;  // if X2 and X3 are still the application's

}  // namespace host
