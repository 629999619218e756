// Where indirect branches find their targets' translations at once: a table for each register that
// an application may branch by, behind its thread's record in memory. X28 points at the record, so
// a slot takes two instructions to compute and load, and needs no register but X28:
//
//   add x28, x28, #table          not for X30, whose table comes first, for RET
//   bfi x28, xN, #3, #15
//   ldr x28, [x28, #32760]
//   br  x28
//
// Code at the other end compares XN with its own address, and loads X28 again. A table by register
// is what makes this safe: all who come by one table mean the same register.
#pragma once

#include <cstddef>
#include <cstdint>

namespace host {

inline constexpr unsigned branch_slot_bits = 15;  // of the target's address; no two bytes share one
inline constexpr std::size_t branch_slots = std::size_t{1} << branch_slot_bits;
inline constexpr std::size_t branch_table_bytes = branch_slots * 8;
inline constexpr std::size_t branch_pages = branch_table_bytes / 4096;
inline constexpr unsigned branch_slot_displacement = 32760;  // the most that LDR can add
inline constexpr std::size_t branch_region_bytes = 32 * branch_table_bytes;

// The table's number among the tables.
constexpr unsigned branch_table_of(unsigned reg) { return reg == 30 ? 0 : reg + 1; }

// The slots of a register for the thread whose record is at `context`.
std::uint64_t* branch_table(void* context, unsigned reg);

// What a record derives from to be followed by tables. It must be at most
// branch_slot_displacement bytes.
struct followed_by_branch_tables {
  static void* operator new(std::size_t size);
  static void operator delete(void* record);
};

}  // namespace host
