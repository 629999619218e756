// Which 5-bit fields of an instruction word are general registers, and whether they are read or
// written. The translator keeps X28 for itself, so it must know every place where an instruction
// names it. A vector register 28 in the same bits must be left alone.
#pragma once

#include <array>
#include <cstdint>

namespace host {

enum class role : std::uint8_t {
  none,  // no general register here
  read,
  written,    // and not read: the whole register is replaced
  both,       // read and written, or one of them, in variants that are not told apart
  pair,       // this register and the next, read and written
  octet,      // eight registers from this one
  ambiguous,  // an encoding that this table does not know
};

inline constexpr std::array<unsigned, 4> field_positions = {0, 5, 10, 16};

// Roles of the fields at bits 4:0, 9:5, 14:10 and 20:16.
using register_roles = std::array<role, 4>;

// For any word except PC-relative and branch instructions; host/translation/control_flow.h and
// host/translation/mangle.h handle those first. A word that no group covers, such as any of SME,
// comes back ambiguous in all fields.
register_roles roles_of(std::uint32_t word);

}  // namespace host
