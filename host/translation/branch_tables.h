// Tables in which indirect branches find their targets' translations quickly. Each register that an
// application can branch through has a table, behind its thread's record in memory. X28 points at
// the record, so computing a slot's address and loading it takes two or three instructions, and no
// register but X28:
//
//   add x28, x28, #table          omitted for X30: its table comes first, for RET
//   bfi x28, xN, #3, #15
//   ldr x28, [x28, #32760]
//   br  x28
//
// The code at the other end compares XN with its own application address, and loads X28 again. This
// is safe because each register has its own table: every branch through a table has its target in
// the same register.
#pragma once

#include <cstddef>
#include <cstdint>

namespace host {

inline constexpr unsigned branch_slot_bits = 15;  // low bits of the target's address, 1:0 included
inline constexpr std::size_t branch_slots = std::size_t{1} << branch_slot_bits;
inline constexpr std::size_t branch_table_bytes = branch_slots * 8;
inline constexpr std::size_t branch_pages = branch_table_bytes / 4096;
inline constexpr unsigned branch_slot_displacement = 32760;  // the most that LDR can add
inline constexpr std::size_t branch_region_bytes = 32 * branch_table_bytes;

// The number of a register's table.
constexpr unsigned branch_table_of(unsigned reg) { return reg == 30 ? 0 : reg + 1; }

// The slots of a register for the thread whose record is at `context`.
std::uint64_t* branch_table(void* context, unsigned reg);

// Base class of a record that tables follow in memory. The record may have at most
// branch_slot_displacement bytes.
struct followed_by_branch_tables {
  static void* operator new(std::size_t size);
  static void operator delete(void* record);
};

}  // namespace host
